#pragma once

#include "AbstractLogParser.h"
#include "MapForCounts.h"

#include <QDateTime>

// Counts events by priority and source in the last hour, day and week; records no positions.
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
    void scanRange(qint64 start, qint64 end);

    MapForCounts m_counts;
};
