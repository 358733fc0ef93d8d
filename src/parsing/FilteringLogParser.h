// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "AbstractLogParser.h"
#include "FilterPack.h"
#include "LineFilter.h"

class EventTimes;
class LineAcceptor;
class LineReader;

// Lines whose events pass a filter; full scans are split over worker threads.
class FilteringLogParser : public AbstractLogParser
{
    Q_OBJECT
public:
    using AbstractLogParser::AbstractLogParser;

    // Takes effect with the next scan, which then reads the whole file again.
    void setFilter(const FilterPack &filter);
    // Only for the thread that sets the filter.
    const FilterPack &filter() const { return m_filter; }

protected:
    void scan(QIODevice &file) override;

private:
    static Outcome outcomeOf(LineFilter::Result result);
    // Reads from the reader's position to the end of the data on the calling thread.
    qint64 scanTail(LineReader &reader, qint64 size);
    // The filter's answer; with `times`, a passing line's time and priority go there.
    static Outcome judge(LineFilter &filter, LineAcceptor &acceptor, EventTimes *times, const char *data,
                         qint64 size);

    FilterPack m_filter;
    // The filter the running scan applies; worker threads only read it.
    FilterPack m_scanFilter;
};
