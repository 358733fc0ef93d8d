#pragma once

#include "AbstractLogParser.h"
#include "FilterPack.h"

// Lines whose events pass a filter; full scans are split over worker threads.
class FilteringLogParser : public AbstractLogParser
{
    Q_OBJECT
public:
    using AbstractLogParser::AbstractLogParser;

    void setFilter(const FilterPack &filter);
    const FilterPack &filter() const { return m_filter; }

protected:
    void scan(QIODevice &file) override;

private:
    void scanRange(qint64 start, qint64 end, bool reportsProgress);

    FilterPack m_filter;
};
