// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "LineParser.h"

#include "AuxParFamilies.h"
#include "AuxParRegistry.h"
#include "Dictionary.h"
#include "LineAcceptor.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QStringList>

#include <array>
#include <ctime>

namespace
{
const QString kFacility = QStringLiteral("FACILITY");
const QString kPriority = QStringLiteral("PRIORITY");
const QString kHost = QStringLiteral("HOST");
const QString kMsg = QStringLiteral("MSG");
const QString kIsoDate = QStringLiteral("ISODATE");
const QString kDate = QStringLiteral("DATE");
const QString kMessageId = QStringLiteral("message_id");
const QString kNameEn = QStringLiteral("name_en");
const QString kNameRu = QStringLiteral("name_ru");

// The pieces every consumer of a line needs before anything is built.
struct LineFrame {
    QJsonObject root;
    QString source;
    QJsonObject body;
};

bool readFrame(const QByteArray &line, LineFrame &frame)
{
    const QJsonDocument document = QJsonDocument::fromJson(line);
    if (!document.isObject())
        return false;
    frame.root = document.object();
    if (frame.root.isEmpty())
        return false;
    const QJsonObject msg = frame.root.value(kMsg).toObject();
    if (msg.size() != 1)
        return false;
    const auto member = msg.constBegin();
    frame.source = member.key();
    frame.body = member.value().toObject();
    return true;
}

bool present(const QJsonValue &value)
{
    return !value.isUndefined() && !value.isNull();
}

QString textOf(const QJsonValue &value)
{
    if (value.isString())
        return value.toString();
    if (value.isBool() || value.isDouble())
        return value.toVariant().toString();
    return QString();
}

QVariant booleanValue(const QJsonValue &value)
{
    const QString text = textOf(value);
    // Substring tests in this order on purpose: "10" and "not yes" count as true.
    static const char *const truthy[] = {"true", "1", "success", "yes"};
    static const char *const falsy[] = {"false", "0", "fail", "no", "failed"};
    for (const char *word : truthy)
        if (text.contains(QLatin1String(word)))
            return QVariant(true);
    for (const char *word : falsy)
        if (text.contains(QLatin1String(word)))
            return QVariant(false);
    return QVariant();
}

bool isBooleanKind(int type)
{
    return kAuxParKinds[type].family == AuxParFamily::Bool;
}

QVariant valueFor(int type, const QJsonValue &member)
{
    if (isBooleanKind(type))
        return booleanValue(member);
    if (type == AuxParId::Time)
        return QVariant(QDateTime::fromString(member.toString(), Qt::ISODate));
    return member.toVariant();
}

struct TimeChoice {
    QDateTime time;
    bool accepted = false;
};

// The event time by precedence: body time, unixtime, end_time, ISODATE, DATE.
TimeChoice chooseTime(const LineFrame &frame, const ParameterMap &parameters)
{
    const QVariant time = parameters.value(AuxParId::Time)->value();
    if (AuxParBaseTime::carriesValue(time))
        return {time.toDateTime(), true};
    const QVariant unixTime = parameters.value(AuxParId::UnixTime)->value();
    if (AuxParBaseLongLong::carriesValue(unixTime))
        return {LineParser::fromEpochSeconds(static_cast<qint64>(unixTime.toULongLong())), true};
    const QVariant endTime = parameters.value(AuxParId::EndTime)->value();
    if (AuxParBaseLongLong::carriesValue(endTime))
        return {LineParser::fromEpochSeconds(endTime.toLongLong()), true};
    const QDateTime isoDate = QDateTime::fromString(frame.root.value(kIsoDate).toString(), Qt::ISODate);
    if (isoDate.isValid())
        return {isoDate, true};
    const QDateTime legacy = LineParser::parseLegacyDate(frame.root.value(kDate).toString());
    return {legacy, legacy.isValid()};
}

QString undefinedText(const QStringList &leftKeys, const QJsonObject &body)
{
    QStringList parts;
    for (const QString &key : leftKeys) {
        const QJsonValue value = body.value(key);
        // Never empty nor a lone line feed: the key and its separator are always there.
        parts.append(key + QStringLiteral(": ") + (value.isString() ? value.toString() : QString()));
    }
    return parts.join(QStringLiteral("; "));
}
}

std::unique_ptr<Event> LineParser::parseLine(const QByteArray &line)
{
    LineFrame frame;
    if (!readFrame(line, frame))
        return nullptr;

    auto event = std::make_unique<Event>();
    event->facility = frame.root.value(kFacility).toString();
    event->priority = Event::priorityFromWord(frame.root.value(kPriority).toString());

    const QJsonObject &body = frame.body;
    auto readText = [&body](const QString &key, QString &target) {
        const QJsonValue value = body.value(key);
        if (present(value))
            target = value.toString();
    };
    readText(kMessageId, event->messageId);
    readText(kNameEn, event->nameEn);
    readText(kNameRu, event->nameRu);

    const AuxParRegistry &registry = AuxParRegistry::instance();
    for (const CustomParameter &custom : registry.customParameters()) {
        const QJsonValue value = body.value(custom.name);
        if (present(value))
            event->customParameters.insert(custom.name, textOf(value));
    }

    auto host = registry.create(AuxParId::Host);
    host->setValue(frame.root.value(kHost).toString());
    event->parameters.insert(std::move(host));
    auto source = registry.create(AuxParId::Source);
    source->setValue(frame.source);
    event->parameters.insert(std::move(source));

    // One pass over the body sorts its members into known kinds and leftovers.
    std::array<QJsonValue, kAuxParKindCount> members;
    QStringList unknownKeys;
    for (auto it = body.constBegin(); it != body.constEnd(); ++it) {
        const QString key = it.key();
        if (key == kMessageId || key == kNameEn || key == kNameRu)
            continue;
        const int type = registry.typeOf(key);
        if (type >= 0)
            members[type] = it.value();
        else if (!registry.isCustom(key))
            unknownKeys.append(key);
    }
    for (int type = 0; type < registry.count(); ++type) {
        if (type == AuxParId::Host || type == AuxParId::Source || type == AuxParId::Undefined)
            continue;
        auto parameter = registry.create(type);
        if (present(members[type]))
            parameter->setValue(valueFor(type, members[type]));
        event->parameters.insert(std::move(parameter));
    }
    auto undefined = registry.create(AuxParId::Undefined);
    undefined->setValue(undefinedText(unknownKeys, body));
    event->parameters.insert(std::move(undefined));

    const TimeChoice choice = chooseTime(frame, event->parameters);
    if (!choice.accepted)
        return nullptr;
    event->time = choice.time;
    return event;
}

bool LineParser::acceptsLine(const QByteArray &line)
{
    return LineAcceptor().accepts(line);
}

QVariant LineParser::parameterValue(int type, const QJsonValue &member)
{
    return valueFor(type, member);
}

QString LineParser::memberText(const QJsonValue &member)
{
    return textOf(member);
}

QDateTime LineParser::fromEpochSeconds(qint64 seconds)
{
    // The offset comes straight from the C library: Qt's local-time path serialises
    // every call on a process-wide lock and re-reads the zone file, which made the
    // counting threads take turns. Both consult the same zone rules.
    const time_t instant = static_cast<time_t>(seconds);
    struct tm broken {};
    if (static_cast<qint64>(instant) == seconds && localtime_r(&instant, &broken))
        return QDateTime::fromSecsSinceEpoch(seconds, Qt::OffsetFromUTC, static_cast<int>(broken.tm_gmtoff));
    const QDateTime local = QDateTime::fromSecsSinceEpoch(seconds, Qt::LocalTime);
    return QDateTime::fromSecsSinceEpoch(seconds, Qt::OffsetFromUTC, local.offsetFromUtc());
}

QDateTime LineParser::parseLegacyDate(const QString &text)
{
    QStringList parts = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    parts.removeAll(QStringLiteral("\n"));
    if (parts.size() != 3)
        return QDateTime();
    const int month = Dictionary::instance().month(parts.at(0).simplified());
    if (month == 0)
        return QDateTime();
    const uint day = parts.at(1).toUInt();
    if (day >= 32)
        return QDateTime();
    const QStringList clock = parts.at(2).split(QLatin1Char(':'), Qt::KeepEmptyParts);
    if (clock.size() != 3)
        return QDateTime();
    const uint hour = clock.at(0).toUInt();
    const uint minute = clock.at(1).toUInt();
    const uint second = clock.at(2).toUInt();
    if (hour >= 25 || minute >= 61 || second >= 61)
        return QDateTime();
    const QDate date(QDate::currentDate().year(), month, static_cast<int>(day));
    const QTime time(static_cast<int>(hour), static_cast<int>(minute), static_cast<int>(second));
    if (!date.isValid() || !time.isValid())
        return QDateTime();
    return QDateTime(date, time, Qt::LocalTime);
}
