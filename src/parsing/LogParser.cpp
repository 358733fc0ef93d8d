// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "LogParser.h"

#include "EventTimes.h"
#include "LineAcceptor.h"
#include "LineParser.h"
#include "LineReader.h"

#include <QIODevice>

AbstractLogParser::Outcome LogParser::judge(LineAcceptor &acceptor, EventTimes *times, const char *data,
                                            qint64 size)
{
    if (!times)
        return acceptor.accepts(data, size) ? Outcome::Counted : Outcome::Unreadable;
    qint64 msecs = EventTimes::kNoTime;
    Event::Priority priority = Event::Unknown;
    if (!EventTimes::readLine(acceptor, data, size, &msecs, &priority))
        return Outcome::Unreadable;
    times->add(msecs, priority);
    return Outcome::Counted;
}

void LogParser::scan(QIODevice &file)
{
    const qint64 size = file.size();
    auto tail = [this](LineReader &reader, qint64 end) { return scanTail(reader, end); };
    if (!continueScan(file, size, tail)) {
        beginFullScan(file, size);
        scanInParallel(
            file, size,
            [this](qint64 start, qint64 end, bool last) {
                LineAcceptor acceptor;
                EventTimes times = newTimes();
                EventTimes *noted = recordsTimes() ? &times : nullptr;
                RangeEnd result = readRange(start, end, last, [&](qint64, const char *data, qint64 size) {
                    return judge(acceptor, noted, data, size);
                });
                result.times = std::move(times);
                return result;
            },
            tail);
    }
    trimPositions();
}

qint64 LogParser::scanTail(LineReader &reader, qint64 size)
{
    LineAcceptor acceptor;
    EventTimes times = newTimes();
    EventTimes *noted = recordsTimes() ? &times : nullptr;
    return readTail(
        reader, size, [&](qint64, const char *data, qint64 lineSize) { return judge(acceptor, noted, data, lineSize); },
        &times);
}
