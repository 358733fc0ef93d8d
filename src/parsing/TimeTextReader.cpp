// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "TimeTextReader.h"

#include "Dictionary.h"
#include "LineParser.h"

#include <QDateTime>

#include <ctime>

namespace
{
constexpr qint64 kDaySeconds = 24 * 3600;

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// The number in `count` digits at `text`, or -1 when one of them is no digit.
int digits(const char *text, int count)
{
    int value = 0;
    for (int i = 0; i < count; ++i) {
        if (!isDigit(text[i]))
            return -1;
        value = value * 10 + (text[i] - '0');
    }
    return value;
}

// Days from 1970-01-01 to a date of the proleptic Gregorian calendar.
qint64 daysFromCivil(int year, int month, int day)
{
    year -= month <= 2;
    const qint64 era = (year >= 0 ? year : year - 399) / 400;
    const qint64 yearOfEra = year - era * 400;
    const qint64 dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const qint64 dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra - 719468;
}

// A part of a legacy time as QString::toUInt() reads it: its digits, 0 when it is not a
// number. False for numbers too long to be sure of.
bool legacyNumber(const char *begin, const char *end, uint *value)
{
    if (end - begin > 9)
        return false;
    uint number = 0;
    for (const char *p = begin; p < end; ++p) {
        if (!isDigit(*p)) {
            *value = 0;
            return true;
        }
        number = number * 10 + uint(*p - '0');
    }
    *value = number;
    return true;
}

enum class Shape { Valid, Invalid, Other };
}

TimeTextReader::TimeTextReader()
{
    const QHash<QString, int> &months = Dictionary::instance().months();
    for (auto it = months.cbegin(); it != months.cend(); ++it)
        m_months.append({it.key().toUtf8(), it.value()});
}

TimeTextReader::Result TimeTextReader::readIso(const char *data, int size)
{
    // "2024-03-01T10:15:00Z" and "2024-03-01T10:15:00+03:00", as the logger writes them.
    const bool zulu = size == 20 && data[19] == 'Z';
    const bool offset = size == 25 && (data[19] == '+' || data[19] == '-') && data[22] == ':';
    if ((zulu || offset) && data[4] == '-' && data[7] == '-' && data[10] == 'T' && data[13] == ':'
        && data[16] == ':') {
        const int year = digits(data, 4);
        const int month = digits(data + 5, 2);
        const int day = digits(data + 8, 2);
        const int hour = digits(data + 11, 2);
        const int minute = digits(data + 14, 2);
        const int second = digits(data + 17, 2);
        const int offsetHours = zulu ? 0 : digits(data + 20, 2);
        const int offsetMinutes = zulu ? 0 : digits(data + 23, 2);
        // 24:00 is the next day's midnight to Qt: rare enough to leave to it.
        if (year >= 0 && month >= 0 && day >= 0 && hour >= 0 && hour != 24 && minute >= 0 && second >= 0
            && offsetHours >= 0 && offsetMinutes >= 0) {
            Result result;
            // Qt's own bounds: a year from 1, a real date and clock time, offsets up to 23:59.
            result.valid = year > 0 && QDate::isValid(year, month, day) && hour < 24 && minute < 60 && second < 60
                && offsetHours <= 23 && offsetMinutes <= 59;
            if (result.valid) {
                const int offsetSeconds = (data[19] == '-' ? -1 : 1) * (offsetHours * 3600 + offsetMinutes * 60);
                result.hasInstant = true;
                result.msecs = (daysFromCivil(year, month, day) * kDaySeconds + hour * 3600 + minute * 60 + second
                                - offsetSeconds)
                    * 1000;
            }
            return result;
        }
    }
    return readIso(QString::fromUtf8(data, size));
}

TimeTextReader::Result TimeTextReader::readIso(const QString &text)
{
    const QDateTime time = QDateTime::fromString(text, Qt::ISODate);
    Result result;
    result.valid = time.isValid();
    if (result.valid && time.timeSpec() != Qt::LocalTime) {
        result.hasInstant = true;
        result.msecs = time.toMSecsSinceEpoch();
    }
    return result;
}

bool TimeTextReader::legacyIsValid(const char *data, int size)
{
    // "Mar  1 10:15:00": three parts between spaces, of letters, digits and colons only.
    const char *parts[3][2];
    int count = 0;
    bool plain = true;
    for (const char *p = data, *end = data + size; p < end && plain;) {
        if (*p == ' ') {
            ++p;
            continue;
        }
        const char *begin = p;
        while (p < end && *p != ' ') {
            const char c = *p;
            plain = plain && (isDigit(c) || c == ':' || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'));
            ++p;
        }
        if (count < 3) {
            parts[count][0] = begin;
            parts[count][1] = p;
        }
        ++count;
    }
    if (!plain)
        return legacyIsValid(QString::fromUtf8(data, size));
    if (count != 3)
        return false;

    int month = 0;
    const QByteArray monthName = QByteArray::fromRawData(parts[0][0], int(parts[0][1] - parts[0][0]));
    for (const auto &entry : qAsConst(m_months)) {
        if (entry.first == monthName)
            month = entry.second;
    }
    if (month == 0)
        return false;
    uint numbers[4] = {};
    const char *clock[4] = {parts[2][0]};
    int fields = 1;
    for (const char *p = parts[2][0]; p < parts[2][1]; ++p) {
        if (*p == ':') {
            if (fields == 3)
                return false;
            clock[fields++] = p + 1;
        }
    }
    if (fields != 3)
        return false;
    clock[3] = parts[2][1] + 1;
    if (!legacyNumber(parts[1][0], parts[1][1], &numbers[0]))
        return legacyIsValid(QString::fromUtf8(data, size));
    for (int i = 0; i < 3; ++i) {
        if (!legacyNumber(clock[i], clock[i + 1] - 1, &numbers[i + 1]))
            return legacyIsValid(QString::fromUtf8(data, size));
    }
    const uint day = numbers[0], hour = numbers[1], minute = numbers[2], second = numbers[3];
    if (day >= 32 || hour >= 25 || minute >= 61 || second >= 61)
        return false;
    const int year = m_localYear.current();
    if (!QDate::isValid(year, month, int(day)) || hour >= 24 || minute >= 60 || second >= 60)
        return false;
    if (isRegularLocalDay(year, month, int(day)))
        return true;
    return legacyIsValid(QString::fromUtf8(data, size));
}

bool TimeTextReader::legacyIsValid(const QString &text)
{
    return LineParser::parseLegacyDate(text).isValid();
}

bool TimeTextReader::isRegularLocalDay(int year, int month, int day)
{
    const QDate date(year, month, day);
    const auto known = m_regularDays.constFind(date.toJulianDay());
    if (known != m_regularDays.constEnd())
        return known.value();
    // A clock change leaves a gap of local times that Qt calls invalid. A day whose hours
    // all exist at one offset has none.
    bool regular = true;
    int offset = 0;
    for (int hour = 0; hour <= 24 && regular; ++hour) {
        const QDateTime probe(date, hour < 24 ? QTime(hour, 0) : QTime(23, 59, 59), Qt::LocalTime);
        regular = probe.isValid() && (hour == 0 || probe.offsetFromUtc() == offset);
        offset = probe.offsetFromUtc();
    }
    m_regularDays.insert(date.toJulianDay(), regular);
    return regular;
}
