// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "AbstractLogParser.h"
#include "MapForCounts.h"

#include <QHash>
#include <QPair>

#include <vector>

class LineReader;

// Counts events by priority and source in the last hour, day and week; records no positions.
//
// The windows move with the clock while the counting is incremental, so the scan keeps
// the time of every event of the last week (8 bytes each) and the windows are tallied
// when the counts are asked for. Events stamped in the future are kept until they are due.
class SummaryParser : public AbstractLogParser
{
    Q_OBJECT
public:
    using AbstractLogParser::AbstractLogParser;

    // An empty map when the file cannot be opened.
    MapForCounts countForSummary();

protected:
    void scan(QIODevice &file) override;

private:
    class Collector;

    RangeEnd scanRange(qint64 start, qint64 end, qint64 oldest);
    // Runs read(take) with a collector of its own and merges what it found.
    template<typename Read>
    RangeEnd collect(qint64 oldest, Read read);
    qint64 scanTail(LineReader &reader, qint64 oldest);
    // Moves a worker's findings into the shared stamps under the mutex.
    void merge(Collector &collector);
    void clearCounts();

    MapForCounts m_counts;
    // Priority and source of each group; a stamp names its group by index.
    std::vector<QPair<Event::Priority, QString>> m_groups;
    QHash<QPair<int, QString>, quint16> m_groupIds;
    // Event time in milliseconds since the epoch, shifted left by 16, or'ed with the group.
    std::vector<quint64> m_stamps;
};
