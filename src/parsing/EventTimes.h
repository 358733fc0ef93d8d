// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "Event.h"

#include <QByteArray>
#include <QDateTime>
#include <QtGlobal>

#include <array>
#include <cstddef>
#include <limits>
#include <map>
#include <vector>

class LineAcceptor;

// What counting learns about the times of the counted rows, in row order: the latest
// time of every run of rows (so that a time is found by reading one run instead of the
// file, however the journal's clock stepped back), and optionally the number of events
// per UTC hour and priority.
//
// A time is milliseconds since the epoch of the event's time exactly as the line parser
// gives it. An event whose time is not a valid date-time has none: it is found by no
// time and counts in no hour.
class EventTimes
{
public:
    static constexpr qint64 kNoTime = std::numeric_limits<qint64>::min();
    // Rows per run; a run ends early only where a scan of a range or a tail ended.
    static constexpr std::size_t kRunRows = 128;
    // Counts of one hour: priorities 1 to 8, then the unknown priority.
    using Counts = std::array<qint64, 9>;

    struct Run {
        std::size_t firstRow;
        qint64 latest;
    };

    explicit EventTimes(bool byHour = false) : m_byHour(byHour) {}

    bool byHour() const { return m_byHour; }
    std::size_t rows() const { return m_rows; }
    const std::vector<Run> &runs() const { return m_runs; }
    // Hour number (hours since the epoch, UTC) to counts, of every row.
    const std::map<qint64, Counts> &hours() const { return m_hours; }

    void add(qint64 msecs, Event::Priority priority);
    // Rows counted after those held, in order.
    void append(const EventTimes &later);
    void clear();

    // The hour number of a time (floor, also before the epoch) and back.
    static qint64 hourOf(qint64 msecs);
    static qint64 hourStart(qint64 hour) { return hour * 3600000; }
    static void addCounts(Counts &to, const Counts &from, int sign = 1);

    // The time and priority the line parser gives a line, read from a scan where the scan
    // is exact and by parsing otherwise; false when the line does not parse.
    static bool readLine(LineAcceptor &acceptor, const char *data, qsizetype size, qint64 *msecs,
                         Event::Priority *priority);
    // The same after acceptor.judge() answered Accepted for the line.
    static void readAccepted(LineAcceptor &acceptor, const char *data, qsizetype size, qint64 *msecs,
                             Event::Priority *priority);
    static qint64 timeOf(const Event &event);
    static qint64 timeOf(const QDateTime &time) { return time.isValid() ? time.toMSecsSinceEpoch() : kNoTime; }

private:
    bool m_byHour;
    std::size_t m_rows = 0;
    std::vector<Run> m_runs;
    std::map<qint64, Counts> m_hours;
    // The hour added to last: journals stay in one hour for many lines.
    qint64 m_lastHour = kNoTime;
    Counts *m_lastCounts = nullptr;
};
