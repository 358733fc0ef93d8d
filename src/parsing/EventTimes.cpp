// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later
#include "EventTimes.h"

#include "LineAcceptor.h"
#include "LineParser.h"
#include "LocalYear.h"

#include <QHash>

#include <algorithm>
#include <cstring>
#include <ctime>

namespace
{
constexpr qint64 kHourMsecs = 3600000;

// Legacy times are local times of the current year. Turning each into an instant through
// the C library asks for the time zone anew every time; a day without a clock change
// is its midnight plus the time of day, so one conversion per day does.
class LegacyClock
{
public:
    // The instant of a plain "Mar  1 10:15:00"; false for other shapes and for days with
    // a clock change, which the line parser's reader then handles.
    bool read(const char *data, int size, qint64 *msecs)
    {
        const char *p = data;
        const char *const end = data + size;
        auto spaces = [&] {
            const char *from = p;
            while (p < end && *p == ' ')
                ++p;
            return p > from;
        };
        auto digits = [&](int most, int *value) {
            int count = 0;
            *value = 0;
            for (; p < end && *p >= '0' && *p <= '9' && count < most; ++p, ++count)
                *value = *value * 10 + (*p - '0');
            return count;
        };
        spaces();
        if (end - p < 3)
            return false;
        static const char kMonths[] = "JanFebMarAprMayJunJulAugSepOctNovDec";
        int month = 0;
        for (int i = 0; i < 12 && month == 0; ++i) {
            if (std::memcmp(p, kMonths + 3 * i, 3) == 0)
                month = i + 1;
        }
        p += 3;
        int day = 0, hour = 0, minute = 0, second = 0;
        if (month == 0 || !spaces() || digits(2, &day) == 0 || !spaces() || digits(2, &hour) != 2 || p == end
            || *p++ != ':' || digits(2, &minute) != 2 || p == end || *p++ != ':' || digits(2, &second) != 2)
            return false;
        spaces();
        if (p != end || hour >= 24 || minute >= 60 || second >= 60)
            return false;
        const int year = m_localYear.current();
        if (!QDate::isValid(year, month, day))
            return false;
        const qint64 midnight = midnightOf(QDate(year, month, day));
        if (midnight == EventTimes::kNoTime)
            return false;
        *msecs = midnight + ((hour * 60 + minute) * 60 + second) * qint64(1000);
        return true;
    }

private:

    // The instant of local midnight of a day whose every hour has one offset, else none.
    qint64 midnightOf(const QDate &date)
    {
        const auto known = m_midnights.constFind(date.toJulianDay());
        if (known != m_midnights.constEnd())
            return known.value();
        qint64 midnight = EventTimes::kNoTime;
        int offset = 0;
        bool regular = true;
        for (int hour = 0; hour <= 24 && regular; ++hour) {
            const QDateTime probe(date, hour < 24 ? QTime(hour, 0) : QTime(23, 59, 59), Qt::LocalTime);
            regular = probe.isValid() && (hour == 0 || probe.offsetFromUtc() == offset);
            offset = probe.offsetFromUtc();
            if (hour == 0 && regular)
                midnight = probe.toMSecsSinceEpoch();
        }
        if (!regular)
            midnight = EventTimes::kNoTime;
        if (m_midnights.size() > 4096)
            m_midnights.clear();
        m_midnights.insert(date.toJulianDay(), midnight);
        return midnight;
    }

    LocalYear m_localYear;
    QHash<qint64, qint64> m_midnights;
};

thread_local LegacyClock t_legacyClock;

std::size_t countIndex(Event::Priority priority)
{
    return priority >= Event::Emergency && priority <= Event::Debug ? std::size_t(priority) - 1 : 8;
}
}

qint64 EventTimes::hourOf(qint64 msecs)
{
    return msecs >= 0 ? msecs / kHourMsecs : -((-(msecs + 1)) / kHourMsecs) - 1;
}

void EventTimes::addCounts(Counts &to, const Counts &from, int sign)
{
    for (std::size_t i = 0; i < to.size(); ++i)
        to[i] += sign * from[i];
}

void EventTimes::add(qint64 msecs, Event::Priority priority)
{
    if (m_runs.empty() || m_rows - m_runs.back().firstRow >= kRunRows)
        m_runs.push_back(Run{m_rows, msecs});
    else
        m_runs.back().latest = std::max(m_runs.back().latest, msecs);
    ++m_rows;
    if (!m_byHour || msecs == kNoTime)
        return;
    const qint64 hour = hourOf(msecs);
    if (hour != m_lastHour || !m_lastCounts) {
        m_lastCounts = &m_hours[hour];
        m_lastHour = hour;
    }
    ++(*m_lastCounts)[countIndex(priority)];
}

void EventTimes::append(const EventTimes &later)
{
    for (const Run &run : later.m_runs) {
        const std::size_t firstRow = m_rows + run.firstRow;
        // A short run left by a tail takes in what follows, so that a journal followed
        // line by line does not end up with a run per line.
        if (!m_runs.empty() && run.firstRow == 0 && m_rows - m_runs.back().firstRow < kRunRows / 2)
            m_runs.back().latest = std::max(m_runs.back().latest, run.latest);
        else
            m_runs.push_back(Run{firstRow, run.latest});
    }
    m_rows += later.m_rows;
    for (const auto &hour : later.m_hours)
        addCounts(m_hours[hour.first], hour.second);
    m_lastCounts = nullptr;
}

void EventTimes::clear()
{
    m_rows = 0;
    m_runs.clear();
    m_hours.clear();
    m_lastCounts = nullptr;
    m_lastHour = kNoTime;
}

qint64 EventTimes::timeOf(const Event &event)
{
    return timeOf(event.time);
}

void EventTimes::readAccepted(LineAcceptor &acceptor, const char *data, qsizetype size, qint64 *msecs,
                              Event::Priority *priority)
{
    const JsonLineScanner::Value &word = acceptor.scanner().root(JsonLineScanner::Priority);
    *priority = Event::Unknown;
    if (word.kind == JsonLineScanner::Kind::String) {
        *priority = word.text.escaped ? Event::priorityFromWord(JsonLineScanner::text(word.text))
                                      : Event::priorityFromWord(QLatin1String(word.text.data, word.text.size));
    }
    switch (acceptor.timeRule()) {
    case LineAcceptor::TimeRule::BodyTime:
    case LineAcceptor::TimeRule::IsoDate:
        if (acceptor.timeText().hasInstant) {
            *msecs = acceptor.timeText().msecs;
            return;
        }
        *msecs = timeOf(QDateTime::fromString(JsonLineScanner::text(acceptor.timeValue().text), Qt::ISODate));
        return;
    case LineAcceptor::TimeRule::Date: {
        const JsonLineScanner::Text &text = acceptor.timeValue().text;
        if (text.escaped || !t_legacyClock.read(text.data, text.size, msecs))
            *msecs = timeOf(LineParser::parseLegacyDate(JsonLineScanner::text(text)));
        return;
    }
    case LineAcceptor::TimeRule::UnixTime:
    case LineAcceptor::TimeRule::EndTime:
        if (acceptor.hasEpochSeconds()) {
            // Seconds known here are within plain arithmetic, where the parser's date-time
            // is that very instant.
            *msecs = acceptor.epochSeconds() * 1000;
            return;
        }
        break;
    }
    const std::unique_ptr<Event> event = LineParser::parseLine(QByteArray::fromRawData(data, int(size)));
    *msecs = event ? timeOf(*event) : kNoTime;
}

bool EventTimes::readLine(LineAcceptor &acceptor, const char *data, qsizetype size, qint64 *msecs,
                          Event::Priority *priority)
{
    switch (acceptor.judge(data, size)) {
    case LineAcceptor::Answer::Rejected: return false;
    case LineAcceptor::Answer::Accepted: readAccepted(acceptor, data, size, msecs, priority); return true;
    case LineAcceptor::Answer::Unsure: break;
    }
    const std::unique_ptr<Event> event = LineParser::parseLine(QByteArray::fromRawData(data, int(size)));
    if (!event)
        return false;
    *msecs = timeOf(*event);
    *priority = event->priority;
    return true;
}
