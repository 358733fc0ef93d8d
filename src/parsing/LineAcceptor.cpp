// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "LineAcceptor.h"

#include "LineParser.h"

#include <cstring>

namespace
{
using Kind = JsonLineScanner::Kind;
using Value = JsonLineScanner::Value;

// Body members that give the time, in the order of precedence.
enum TimeMember { BodyTime, UnixTime, EndTime, TimeMemberCount };

// The time member a name spells, or -1.
int timeMemberOf(const JsonLineScanner::Text &name)
{
    if (name.size == 4)
        return std::memcmp(name.data, "time", 4) == 0 ? BodyTime : -1;
    if (name.size != 8)
        return -1;
    if (std::memcmp(name.data, "unixtime", 8) == 0)
        return UnixTime;
    return std::memcmp(name.data, "end_time", 8) == 0 ? EndTime : -1;
}

// More digits than this may not fit the 64-bit conversions; such values go to Qt.
constexpr int kMaxSecondsDigits = 18;
// Seconds that are a valid date-time of plain arithmetic (some thousands of years
// around the epoch); times beyond are left to the parser.
constexpr qint64 kMaxPlainSeconds = qint64(100) * 1000 * 1000 * 1000;

// The whole number a plain "-123" text stands for; false for any other text.
bool plainInteger(const JsonLineScanner::Text &text, qint64 *number)
{
    if (text.escaped)
        return false;
    const char *p = text.data;
    const char *end = p + text.size;
    const bool negative = p < end && *p == '-';
    p += negative;
    if (p == end || end - p > kMaxSecondsDigits)
        return false;
    qint64 result = 0;
    for (; p < end; ++p) {
        if (*p < '0' || *p > '9')
            return false;
        result = result * 10 + (*p - '0');
    }
    *number = negative ? -result : result;
    return true;
}
}

LineAcceptor::Answer LineAcceptor::judge(const char *data, qsizetype size)
{
    using Verdict = JsonLineScanner::Verdict;
    switch (m_scanner.scan(data, size)) {
    case Verdict::Object: break;
    case Verdict::Unsure: return Answer::Unsure;
    case Verdict::OtherDocument:
    case Verdict::Invalid: return Answer::Rejected;
    }
    if (m_scanner.rootIsEmpty() || m_scanner.root(JsonLineScanner::Msg).kind != Kind::Object)
        return Answer::Rejected;
    const int sources = m_scanner.messageMembers();
    if (sources != 1) {
        // Members of one name collapse into one; which one stays is Qt's affair.
        return sources == 0 || m_scanner.messageNamesDiffer() ? Answer::Rejected : Answer::Unsure;
    }

    static const Value kMissing;
    const Value *members[TimeMemberCount] = {&kMissing, &kMissing, &kMissing};
    for (const JsonLineScanner::Member &member : m_scanner.body()) {
        const int which = timeMemberOf(member.name);
        if (which < 0)
            continue;
        if (members[which] != &kMissing)
            return Answer::Unsure;
        members[which] = &member.value;
    }

    // The body's time counts when it reads as a valid date-time; anything but text reads as none.
    if (members[BodyTime]->kind == Kind::String) {
        m_timeText = readIso(*members[BodyTime]);
        if (m_timeText.valid) {
            m_timeRule = TimeRule::BodyTime;
            m_timeValue = members[BodyTime];
            return Answer::Accepted;
        }
    }
    const TimeRule secondsRules[] = {TimeRule::UnixTime, TimeRule::EndTime};
    for (const TimeRule rule : secondsRules) {
        const Value &value = *members[rule == TimeRule::UnixTime ? UnixTime : EndTime];
        const Answer carries = carriesSeconds(value);
        if (carries == Answer::Rejected)
            continue;
        if (carries == Answer::Accepted) {
            m_timeRule = rule;
            m_timeValue = &value;
        }
        return carries;
    }
    const Value &isoDate = m_scanner.root(JsonLineScanner::IsoDate);
    if (isoDate.kind == Kind::String) {
        m_timeText = readIso(isoDate);
        if (m_timeText.valid) {
            m_timeRule = TimeRule::IsoDate;
            m_timeValue = &isoDate;
            return Answer::Accepted;
        }
    }
    const Value &date = m_scanner.root(JsonLineScanner::Date);
    if (date.kind != Kind::String)
        return Answer::Rejected;
    const bool valid = date.text.escaped ? TimeTextReader::legacyIsValid(JsonLineScanner::text(date.text))
                                         : m_timeReader.legacyIsValid(date.text.data, date.text.size);
    if (!valid)
        return Answer::Rejected;
    m_timeRule = TimeRule::Date;
    m_timeValue = &date;
    return Answer::Accepted;
}

bool LineAcceptor::accepts(const char *data, qsizetype size)
{
    const Answer answer = judge(data, size);
    if (answer == Answer::Unsure)
        return LineParser::parseLine(QByteArray::fromRawData(data, int(size))) != nullptr;
    return answer == Answer::Accepted;
}

bool LineAcceptor::hasEpochSeconds() const
{
    return m_secondsKnown;
}

LineAcceptor::Answer LineAcceptor::carriesSeconds(const Value &value)
{
    qint64 number = 0;
    m_secondsKnown = true;
    switch (value.kind) {
    case Kind::Missing:
    case Kind::Null: return Answer::Rejected;
    // A boolean converts to 1 or 0, both of them values.
    case Kind::True:
    case Kind::False: m_epochSeconds = value.kind == Kind::True; return Answer::Accepted;
    case Kind::Number:
    case Kind::String:
        if (!plainInteger(value.text, &number))
            return Answer::Unsure;
        break;
    case Kind::Array:
    case Kind::Object: return Answer::Unsure;
    }
    // The unsigned reading of "unixtime" turns a negative text into 0: such event times
    // are left to the parser.
    m_secondsKnown = (value.kind == Kind::Number || number >= 0) && number <= kMaxPlainSeconds
        && number >= -kMaxPlainSeconds;
    m_epochSeconds = number;
    // A value whose low 32 bits are all ones means none.
    return qint32(number) == -1 ? Answer::Rejected : Answer::Accepted;
}

TimeTextReader::Result LineAcceptor::readIso(const Value &value)
{
    if (value.text.escaped)
        return TimeTextReader::readIso(JsonLineScanner::text(value.text));
    return m_timeReader.readIso(value.text.data, value.text.size);
}
