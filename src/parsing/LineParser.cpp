#include "LineParser.h"

#include "AuxParFamilies.h"
#include "AuxParRegistry.h"
#include "Dictionary.h"

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

// Whether QDateTime::fromString(text, Qt::ISODate) gives a valid time. The shape the
// logger writes ("2024-03-01T10:15:00+03:00" or "...Z") is checked here, because
// Qt's reader costs as much as a tenth of a count; any other text is left to Qt, so
// the answer is always Qt's.
bool isoDateIsValid(const QString &text)
{
    const int size = text.size();
    const QChar *chars = text.constData();
    auto number = [chars](int from, int count, int *value) {
        int result = 0;
        for (int i = from; i < from + count; ++i) {
            const ushort c = chars[i].unicode();
            if (c < '0' || c > '9')
                return false;
            result = result * 10 + (c - '0');
        }
        *value = result;
        return true;
    };
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0, offsetHour = 0, offsetMinute = 0;
    const bool usualShape = (size == 20 || size == 25) && chars[4] == QLatin1Char('-') && chars[7] == QLatin1Char('-')
        && chars[10] == QLatin1Char('T') && chars[13] == QLatin1Char(':') && chars[16] == QLatin1Char(':')
        && number(0, 4, &year) && number(5, 2, &month) && number(8, 2, &day) && number(11, 2, &hour)
        && number(14, 2, &minute) && number(17, 2, &second)
        && (size == 20 ? chars[19] == QLatin1Char('Z')
                       : (chars[19] == QLatin1Char('+') || chars[19] == QLatin1Char('-')) && chars[22] == QLatin1Char(':')
                   && number(20, 2, &offsetHour) && number(23, 2, &offsetMinute));
    if (usualShape && year > 0 && QDate::isValid(year, month, day) && hour < 24 && minute < 60 && second < 60
        && offsetHour <= 14 && offsetMinute < 60)
        return true;
    return QDateTime::fromString(text, Qt::ISODate).isValid();
}

struct TimeChoice {
    QDateTime time;
    bool accepted = false;
};

// The event time by precedence: body time, unixtime, end_time, ISODATE, DATE.
// Shared by parsing and by acceptance so that both decide alike; the first three
// accept without looking at the result, so acceptance skips their conversion to local
// time (a time-zone lookup per line, which dominated counting).
template<typename ValueOf>
TimeChoice chooseTime(const LineFrame &frame, ValueOf valueOf, bool wantTime = true)
{
    const QVariant time = valueOf(AuxParId::Time);
    if (AuxParBaseTime::carriesValue(time))
        return {time.toDateTime(), true};
    const QVariant unixTime = valueOf(AuxParId::UnixTime);
    if (AuxParBaseLongLong::carriesValue(unixTime))
        return {wantTime ? LineParser::fromEpochSeconds(static_cast<qint64>(unixTime.toULongLong())) : QDateTime(),
                true};
    const QVariant endTime = valueOf(AuxParId::EndTime);
    if (AuxParBaseLongLong::carriesValue(endTime))
        return {wantTime ? LineParser::fromEpochSeconds(endTime.toLongLong()) : QDateTime(), true};
    const QString isoText = frame.root.value(kIsoDate).toString();
    if (wantTime) {
        const QDateTime isoDate = QDateTime::fromString(isoText, Qt::ISODate);
        if (isoDate.isValid())
            return {isoDate, true};
    } else if (isoDateIsValid(isoText)) {
        return {QDateTime(), true};
    }
    const QDateTime legacy = LineParser::parseLegacyDate(frame.root.value(kDate).toString());
    return {legacy, legacy.isValid()};
}

QVariant bodyValue(const QJsonObject &body, int type)
{
    const QJsonValue member = body.value(kAuxParKinds[type].key);
    return present(member) ? valueFor(type, member) : QVariant();
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

    const ParameterMap &parameters = event->parameters;
    const TimeChoice choice = chooseTime(frame, [&parameters](int type) { return parameters.value(type)->value(); });
    if (!choice.accepted)
        return nullptr;
    event->time = choice.time;
    return event;
}

bool LineParser::acceptsLine(const QByteArray &line)
{
    LineFrame frame;
    if (!readFrame(line, frame))
        return false;
    const QJsonObject &body = frame.body;
    return chooseTime(frame, [&body](int type) { return bodyValue(body, type); }, false).accepted;
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
