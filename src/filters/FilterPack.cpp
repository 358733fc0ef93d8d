// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "FilterPack.h"

#include "AuxParRegistry.h"

#include <QCoreApplication>
#include <QRegExp>

#include <memory>
#include <mutex>

namespace
{
template<typename T>
bool sameEntries(const QVector<T> &a, const QVector<T> &b)
{
    if (a.size() != b.size())
        return false;
    for (const T &entry : a)
        if (!b.contains(entry))
            return false;
    for (const T &entry : b)
        if (!a.contains(entry))
            return false;
    return true;
}

// Separator: anything but a Latin or basic Cyrillic letter or a digit (Ё/ё included).
const QString kSeparator = QStringLiteral("[^A-Za-z\u0410-\u042F\u0430-\u044F0-9]");

QString keywordPattern(const QString &search, bool wholeWord)
{
    const QString e = QRegExp::escape(search);
    if (!wholeWord)
        return e;
    return kSeparator + e + kSeparator + QLatin1Char('|') + QLatin1Char('^') + e + kSeparator
        + QLatin1Char('|') + kSeparator + e + QLatin1Char('$') + QLatin1Char('|') + QLatin1Char('^') + e
        + QLatin1Char('$');
}

// Qt compiles every QRegExp through one process-wide engine cache, whose keys share
// their text with the expressions, and guards it with a lock that ThreadSanitizer
// cannot see. Building and dropping expressions under a lock of our own keeps that
// traffic ordered for it; the matching itself never touches the cache.
std::mutex &expressionLock()
{
    static std::mutex lock;
    return lock;
}

struct ThreadKeyword {
    QString pattern; // a copy of our own: the expression's copy is shared with the cache
    Qt::CaseSensitivity sensitivity = Qt::CaseSensitive;
    std::unique_ptr<QRegExp> expression;

    ~ThreadKeyword()
    {
        const std::lock_guard<std::mutex> locked(expressionLock());
        expression.reset();
    }
};

// The compiled keyword, kept per thread: a QRegExp carries match state and must not be
// shared, but compiling it again for every event of a large journal is wasted work.
const QRegExp &keywordExpression(const QString &pattern, Qt::CaseSensitivity sensitivity)
{
    thread_local ThreadKeyword keyword;
    if (!keyword.expression || keyword.sensitivity != sensitivity || keyword.pattern != pattern) {
        const std::lock_guard<std::mutex> locked(expressionLock());
        keyword.expression = std::make_unique<QRegExp>(QString(pattern.constData(), pattern.size()), sensitivity,
                                                       QRegExp::RegExp);
        keyword.pattern = QString(pattern.constData(), pattern.size());
        keyword.sensitivity = sensitivity;
    }
    return *keyword.expression;
}
}

bool FilterPack::operator==(const FilterPack &other) const
{
    return checkFrom == other.checkFrom && checkTo == other.checkTo && checkId == other.checkId
        && checkEventTypes == other.checkEventTypes && checkTypeExcludes == other.checkTypeExcludes
        && checkNameContains == other.checkNameContains && checkNameExcludes == other.checkNameExcludes
        && checkPriorities == other.checkPriorities && checkSearch == other.checkSearch
        && caseSensitive == other.caseSensitive && wholeWord == other.wholeWord && from == other.from
        && to == other.to && id == other.id && typeExcludes == other.typeExcludes
        && nameContains == other.nameContains && nameExcludes == other.nameExcludes && search == other.search
        && sameEntries(eventTypes, other.eventTypes) && sameEntries(priorities, other.priorities)
        && auxConditions == other.auxConditions && customConditions == other.customConditions;
}

bool FilterPack::match(const Event &event) const
{
    if (checkFrom && event.time < from)
        return false;
    if (checkTo && to < event.time)
        return false;
    if (checkId && event.messageId != id)
        return false;
    if (checkEventTypes) {
        if (eventTypes.isEmpty() || !eventTypes.contains(event.typeText()))
            return false;
    }
    if (checkTypeExcludes && event.typeText().indexOf(typeExcludes, 0, Qt::CaseInsensitive) != -1)
        return false;
    if (checkNameContains && event.eventName().indexOf(nameContains, 0, Qt::CaseInsensitive) == -1)
        return false;
    if (checkNameExcludes && event.eventName().indexOf(nameExcludes, 0, Qt::CaseInsensitive) != -1)
        return false;
    if (checkPriorities && !priorities.contains(int(event.priority)))
        return false;

    if (!auxConditions.isEmpty()) {
        bool passes = true;
        event.parameters.forEach([this, &passes](const AuxPar &parameter) {
            if (!passes || AuxParRegistry::isExcludedFromMatching(parameter.typeId()))
                return;
            const auto condition = auxConditions.constFind(parameter.typeId());
            // An object without a value stands for a parameter the line did not carry:
            // the condition does not apply to this event.
            if (condition == auxConditions.constEnd() || !parameter.isValid())
                return;
            if (!(condition.value() == parameter.value()))
                passes = false;
        });
        if (!passes)
            return false;
    }
    for (auto it = event.customParameters.cbegin(); it != event.customParameters.cend(); ++it) {
        const auto condition = customConditions.constFind(it.key());
        if (condition != customConditions.constEnd() && !(condition.value() == QVariant(it.value())))
            return false;
    }
    return checkSearch ? searchMatch(event) : true;
}

bool FilterPack::keywordFoundIn(const QString &text) const
{
    const QRegExp &expression = keywordExpression(keywordPattern(search, wholeWord),
                                                  caseSensitive ? Qt::CaseSensitive : Qt::CaseInsensitive);
    return expression.indexIn(text, 0) != -1;
}

bool FilterPack::searchMatch(const Event &event) const
{
    const QRegExp &expression = keywordExpression(keywordPattern(search, wholeWord),
                                                  caseSensitive ? Qt::CaseSensitive : Qt::CaseInsensitive);
    auto hit = [&expression](const QString &text) { return expression.indexIn(text, 0) != -1; };

    bool found = false;
    event.parameters.forEach([&](const AuxPar &parameter) {
        if (!found && !AuxParRegistry::isExcludedFromMatching(parameter.typeId()))
            found = hit(parameter.toString());
    });
    return found || hit(event.time.toString(Qt::ISODate)) || hit(event.messageId) || hit(event.typeText())
        || hit(event.eventName()) || hit(searchPriorityWord(event.priority));
}

QString FilterPack::searchPriorityWord(Event::Priority priority)
{
    static const char *const words[] = {
        QT_TRANSLATE_NOOP("QObject", "emergency"), QT_TRANSLATE_NOOP("QObject", "alert"),
        QT_TRANSLATE_NOOP("QObject", "critical"),  QT_TRANSLATE_NOOP("QObject", "error"),
        QT_TRANSLATE_NOOP("QObject", "warning"),   QT_TRANSLATE_NOOP("QObject", "notice"),
        QT_TRANSLATE_NOOP("QObject", "informational"), QT_TRANSLATE_NOOP("QObject", "debug")};
    if (priority < Event::Emergency || priority > Event::Debug)
        return QString();
    return QCoreApplication::translate("QObject", words[priority - 1]);
}
