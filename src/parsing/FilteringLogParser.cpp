#include "FilteringLogParser.h"

#include "LineFilter.h"
#include "LineReader.h"

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
                return readRange(start, end, last, [&filter](qint64, const char *data, qint64 size) {
                    return outcomeOf(filter.test(data, size));
                });
            },
            tail);
    }
    trimPositions();
}

qint64 FilteringLogParser::scanTail(LineReader &reader, qint64 size)
{
    LineFilter filter(m_scanFilter);
    return readTail(reader, size,
                    [&filter](qint64, const char *data, qint64 lineSize) { return outcomeOf(filter.test(data, lineSize)); });
}
