#include "LogParser.h"

#include "LineParser.h"
#include "LineReader.h"

#include <QIODevice>

namespace
{
constexpr std::size_t kBatch = 4096;
// Lines read before the index is sized from the average line length seen so far.
constexpr qint64 kSampleLines = 8192;
}

void LogParser::scan(QIODevice &file)
{
    const qint64 size = file.size();
    const bool tail = canContinue(file, size);
    qint64 from = 0;
    if (tail) {
        if (m_resumePosition >= size)
            return;
        from = m_resumePosition;
        reservePositions(size - from, from, m_positions.size());
        m_scannedSize = size;
    } else {
        beginFullScan(file, size);
    }

    LineReader reader(file);
    if (!reader.seek(from))
        return;
    std::vector<qint64> batch;
    batch.reserve(kBatch);
    qint64 linesRead = 0;
    const RangeEnd end = readLines(reader, std::numeric_limits<qint64>::max(),
                                   [&](qint64 position, const QByteArray &line) {
        const bool accepted = LineParser::acceptsLine(line);
        if (accepted) {
            batch.push_back(position);
            if (batch.size() == kBatch)
                flushPositions(batch);
        }
        // A full scan repeats 0 on purpose, so that the bar shows life during the first percent.
        reportPercent(position, size, !tail);
        if (!tail && ++linesRead == kSampleLines) {
            flushPositions(batch);
            reservePositions(size - reader.position(), reader.position(), m_positions.size());
        }
        return accepted;
    });
    flushPositions(batch);
    // Also after a stop: the next scan continues where this one ended.
    setResumePosition(file, end.resume);
    trimPositions();
}
