#include "FilteringLogParser.h"

#include "LineParser.h"
#include "LineReader.h"

#include <QFile>

#include <algorithm>
#include <thread>

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
    if (canContinue(file, size)) {
        if (m_resumePosition >= size)
            return;
        const qint64 from = m_resumePosition;
        reservePositions(size - from, from, m_positions.size());
        m_scannedSize = size;
        LineReader reader(file);
        if (reader.seek(from))
            setResumePosition(file, scanTail(reader, size));
        trimPositions();
        return;
    }

    beginFullScan(file, size);
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_scanFilter = m_filter;
    }
    const std::vector<qint64> starts = rangeStarts(file, size);
    std::vector<RangeResult> results(starts.size());
    std::vector<std::thread> workers;
    workers.reserve(starts.size());
    for (std::size_t i = 0; i < starts.size(); ++i) {
        const bool last = i + 1 == starts.size();
        const qint64 end = last ? size : starts[i + 1];
        workers.emplace_back([this, &results, i, start = starts[i], end, last] {
            results[i] = scanRange(start, end, last);
        });
    }
    for (std::thread &worker : workers)
        worker.join();

    {
        std::lock_guard<std::mutex> lock(m_mutex);
        std::sort(m_positions.begin(), m_positions.end());
    }
    const RangeResult &lastRange = results.back();
    m_lastPercent = lastRange.lastPercent;
    const bool complete = std::all_of(results.begin(), results.end(),
                                      [](const RangeResult &r) { return r.opened && !r.stopped; });
    if (!complete) {
        // Gaps in several ranges cannot be continued; the next scan starts afresh.
        setResumePosition(file, -1);
        trimPositions();
        return;
    }

    // Lines appended while the workers ran.
    qint64 resume = lastRange.resume;
    const qint64 current = file.size();
    if (current > resume) {
        m_scannedSize = std::max(m_scannedSize, current);
        LineReader reader(file);
        if (reader.seek(resume))
            resume = scanTail(reader, current);
    }
    setResumePosition(file, resume);
    trimPositions();
}

qint64 FilteringLogParser::scanTail(LineReader &reader, qint64 size)
{
    std::vector<qint64> batch;
    QByteArray line;
    for (;;) {
        if (stopRequested())
            break;
        const qint64 position = reader.position();
        reportPercent(position, size);
        if (!reader.readLine(&line))
            break;
        const std::unique_ptr<Event> event = LineParser::parseLine(line);
        if (!event && !reader.lastLineTerminated()) {
            flushPositions(batch);
            return position;
        }
        if (event && m_scanFilter.match(*event)) {
            batch.push_back(position);
            if (batch.size() == kBatch)
                flushPositions(batch);
        }
    }
    flushPositions(batch);
    return reader.position();
}

FilteringLogParser::RangeResult FilteringLogParser::scanRange(qint64 start, qint64 end, bool reportsProgress)
{
    RangeResult result;
    QFile file(m_filePath);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return result;
    result.opened = true;
    LineReader reader(file);
    result.resume = start;
    if (!reader.seek(start))
        return result;

    // Positions are handed over in batches: one lock per line would make the two
    // workers take turns on the mutex instead of parsing.
    std::vector<qint64> batch;
    batch.reserve(kBatch);
    auto flush = [this, &batch] { flushPositions(batch); };
    int lastPercent = -1;
    QByteArray line;
    for (;;) {
        if (stopRequested()) {
            result.stopped = true;
            break;
        }
        const qint64 position = reader.position();
        if (position >= end)
            break;
        if (!reader.readLine(&line))
            break;
        const std::unique_ptr<Event> event = LineParser::parseLine(line);
        if (!event && !reader.lastLineTerminated()) {
            // The last line is being written; the tail reads it again.
            flush();
            result.resume = position;
            result.lastPercent = std::max(lastPercent, 0);
            return result;
        }
        if (event && m_scanFilter.match(*event)) {
            batch.push_back(position);
            if (batch.size() == kBatch)
                flush();
        }
        if (reportsProgress && position > start) {
            // Only the last range reports, so the bar shows how far that one got.
            const int percent = static_cast<int>(float(position - start) / float(end - start) * 100.0f);
            if (percent != lastPercent) {
                lastPercent = percent;
                Q_EMIT percentRead(percent);
            }
        }
    }
    flush();
    result.resume = reader.position();
    result.lastPercent = std::max(lastPercent, 0);
    return result;
}
