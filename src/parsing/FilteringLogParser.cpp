#include "FilteringLogParser.h"

#include "LineParser.h"
#include "LineReader.h"

#include <QFile>

namespace
{
constexpr std::size_t kBatch = 4096;
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
        scanInParallel(file, size, [this](qint64 start, qint64 end, bool last) { return scanRange(start, end, last); },
                       tail);
    }
    trimPositions();
}

bool FilteringLogParser::take(const QByteArray &line, qint64 position, std::vector<qint64> &batch)
{
    const std::unique_ptr<Event> event = LineParser::parseLine(line);
    if (event && m_scanFilter.match(*event)) {
        batch.push_back(position);
        if (batch.size() == kBatch)
            flushPositions(batch);
    }
    return event != nullptr;
}

qint64 FilteringLogParser::scanTail(LineReader &reader, qint64 size)
{
    std::vector<qint64> batch;
    const RangeEnd end = readLines(reader, std::numeric_limits<qint64>::max(),
                                   [this, size, &batch](qint64 position, const QByteArray &line) {
                                       reportPercent(position, size);
                                       return take(line, position, batch);
                                   });
    flushPositions(batch);
    return end.resume;
}

AbstractLogParser::RangeEnd FilteringLogParser::scanRange(qint64 start, qint64 end, bool reportsProgress)
{
    // Positions are handed over in batches: one lock per line would make the two
    // workers take turns on the mutex instead of parsing.
    std::vector<qint64> batch;
    batch.reserve(kBatch);
    int lastPercent = 0;
    RangeEnd result = readRange(start, end, [&](qint64 position, const QByteArray &line) {
        const bool readable = take(line, position, batch);
        if (reportsProgress && position > start) {
            // Only the last range reports, so the bar shows how far that one got.
            const int percent = static_cast<int>(float(position - start) / float(end - start) * 100.0f);
            if (percent != lastPercent) {
                lastPercent = percent;
                Q_EMIT percentRead(percent);
            }
        }
        return readable;
    });
    flushPositions(batch);
    result.lastPercent = lastPercent;
    return result;
}
