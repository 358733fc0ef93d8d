// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "FilteringLogParser.h"

#include "EventTimes.h"
#include "LineAcceptor.h"
#include "LineFilter.h"
#include "LineReader.h"

AbstractLogParser::Outcome FilteringLogParser::judge(LineFilter &filter, LineAcceptor &acceptor, EventTimes *times,
                                                     const char *data, qint64 size)
{
    const Outcome outcome = outcomeOf(filter.test(data, size));
    if (outcome == Outcome::Counted && times) {
        // Only lines that pass are read again, for their time: those a filter lets
        // through are usually few.
        qint64 msecs = EventTimes::kNoTime;
        Event::Priority priority = Event::Unknown;
        if (!EventTimes::readLine(acceptor, data, size, &msecs, &priority))
            msecs = EventTimes::kNoTime;
        times->add(msecs, priority);
    }
    return outcome;
}

AbstractLogParser::Outcome FilteringLogParser::outcomeOf(LineFilter::Result result)
{
    switch (result) {
    case LineFilter::Result::Passed: return Outcome::Counted;
    case LineFilter::Result::Failed: return Outcome::Skipped;
    case LineFilter::Result::Unreadable: break;
    }
    return Outcome::Unreadable;
}

void FilteringLogParser::setFilter(const FilterPack &filter)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_filter = filter;
    }
    invalidateResults();
}

void FilteringLogParser::scan(QIODevice &file)
{
    const qint64 size = file.size();
    auto tail = [this](LineReader &reader, qint64 end) { return scanTail(reader, end); };
    if (!continueScan(file, size, tail)) {
        beginFullScan(file, size);
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_scanFilter = m_filter;
        }
        scanInParallel(
            file, size,
            [this](qint64 start, qint64 end, bool last) {
                LineFilter filter(m_scanFilter);
                LineAcceptor acceptor;
                EventTimes times = newTimes();
                EventTimes *noted = recordsTimes() ? &times : nullptr;
                RangeEnd result = readRange(start, end, last, [&](qint64, const char *data, qint64 size) {
                    return judge(filter, acceptor, noted, data, size);
                });
                result.times = std::move(times);
                return result;
            },
            tail);
    }
    trimPositions();
}

qint64 FilteringLogParser::scanTail(LineReader &reader, qint64 size)
{
    LineFilter filter(m_scanFilter);
    LineAcceptor acceptor;
    EventTimes times = newTimes();
    EventTimes *noted = recordsTimes() ? &times : nullptr;
    return readTail(
        reader, size,
        [&](qint64, const char *data, qint64 lineSize) { return judge(filter, acceptor, noted, data, lineSize); },
        &times);
}
