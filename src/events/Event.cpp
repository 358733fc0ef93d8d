// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "Event.h"

#include "AuxParKinds.h"
#include "Dictionary.h"
#include "Language.h"

#include <QCoreApplication>

const AuxPar *ParameterMap::value(int type) const
{
    if (type < 0 || type >= kAuxParKindCount)
        return nullptr;
    return m_slots[type].get();
}

void ParameterMap::insert(std::unique_ptr<AuxPar> parameter)
{
    if (!parameter)
        return;
    const int type = parameter->typeId();
    if (type < 0 || type >= kAuxParKindCount)
        return;
    if (!m_slots[type])
        ++m_size;
    m_slots[type] = std::move(parameter);
}

Event::Priority Event::priorityFromWord(QLatin1String word)
{
    struct Word {
        const char *text;
        Priority priority;
    };
    static const Word words[] = {
        {"info", Info},         {"notice", Notice},       {"warning", Warning},
        {"error", Error},       {"err", Error},           {"debug", Debug},
        {"critical", Critical}, {"crit", Critical},       {"alert", Alert},
        {"emergency", Emergency}, {"emerg", Emergency},   {"informational", Info},
    };
    for (const Word &candidate : words) {
        if (word == QLatin1String(candidate.text))
            return candidate.priority;
    }
    return Unknown;
}

Event::Priority Event::priorityFromWord(const QString &word)
{
    // Every accepted word is plain ASCII, so anything longer or wider cannot match.
    if (word.isEmpty() || word.size() > 13)
        return Unknown;
    const QByteArray latin = word.toLatin1();
    if (QString::fromLatin1(latin) != word)
        return Unknown;
    return priorityFromWord(QLatin1String(latin));
}

QString Event::typeText() const
{
    if (Language::isRussian()) {
        if (const AuxPar *typeRu = parameters.value(AuxParId::TypeRu))
            return typeRu->toString();
    }
    if (const AuxPar *typeEn = parameters.value(AuxParId::TypeEn))
        return typeEn->toString();
    return QString();
}

QString Event::eventName() const
{
    return Language::isRussian() ? nameRu : nameEn;
}

QString Event::host() const
{
    const AuxPar *hostParameter = parameters.value(AuxParId::Host);
    return hostParameter ? hostParameter->toString() : QString();
}

QString Event::source() const
{
    const AuxPar *sourceParameter = parameters.value(AuxParId::Source);
    return sourceParameter ? sourceParameter->value().toString() : QString();
}

QString Event::sourceText() const
{
    const AuxPar *sourceParameter = parameters.value(AuxParId::Source);
    return sourceParameter ? sourceParameter->toString() : QString();
}

QString Event::priorityText() const
{
    return Dictionary::instance().priorityText(priority);
}

QVector<Event::Row> Event::detailRows() const
{
    QVector<Row> rows;
    rows.reserve(parameters.size() + customParameters.size());
    parameters.forEach([&rows](const AuxPar &parameter) {
        // Time and types have rows of their own at the top.
        const int type = parameter.typeId();
        if (type == AuxParId::Time || type == AuxParId::TypeEn || type == AuxParId::TypeRu)
            return;
        if (parameter.isValid())
            rows.append({parameter.label(), parameter.toString()});
    });
    for (auto it = customParameters.cbegin(); it != customParameters.cend(); ++it) {
        if (!it.value().isEmpty())
            rows.append({it.key(), it.value()});
    }
    return rows;
}

QVector<Event::Row> Event::parameterList() const
{
    QVector<Row> rows;
    rows.append({QCoreApplication::translate("Event", "Event name"), eventName()});
    rows.append({QCoreApplication::translate("Event", "Message ID"), messageId});
    rows.append({QCoreApplication::translate("Event", "Date and time"), time.toString(Qt::ISODate)});
    rows.append({QCoreApplication::translate("Event", "Event type"), typeText()});
    const QString priorityWord = priorityText();
    if (!priorityWord.isEmpty())
        rows.append({QCoreApplication::translate("Event", "Priority"), priorityWord});
    rows.append(detailRows());
    return rows;
}

QString Event::copyLine() const
{
    QStringList fields;
    fields << time.toString(Qt::ISODate) << messageId << typeText();
    const QString priorityWord = priorityText();
    if (!priorityWord.isEmpty())
        fields << priorityWord;
    fields << eventName();
    const QVector<Row> details = detailRows();
    for (const Row &row : details)
        fields << row.first + QStringLiteral(": ") + row.second;
    return fields.join(QLatin1Char('\t'));
}
