// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "Event.h"
#include "EventTimes.h"
#include "LineIndex.h"
#include "LineReader.h"
#include "RegularFile.h"

#include <QByteArray>
#include <QFile>
#include <QObject>
#include <QPair>
#include <QString>

#include <algorithm>
#include <atomic>
#include <functional>
#include <map>
#include <limits>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <thread>
#include <vector>

class QIODevice;

// Scans a journal once and remembers where the counted lines start, so that a page
// is read by seeking instead of keeping events in memory. Later calls scan only
// what was appended; a file that shrank is scanned again from the start.
//
// Scans, counts and loads run on one thread (the loader's). hideCounted(), showAll(),
// setStopFlag(), positionCount() and the filter setter may be called from any thread.
//
// The operations a loader runs are virtual, so that something made of several parsers
// can stand in for one.
class AbstractLogParser : public QObject
{
    Q_OBJECT
public:
    explicit AbstractLogParser(const QString &filePath, QObject *parent = nullptr);
    ~AbstractLogParser() override;

    QString filePath() const { return m_filePath; }

    // Counted lines less the hidden ones, or -1 when the file cannot be opened.
    virtual int count();
    // What the file test found, worst first for the user.
    enum class FileCheck {
        Journal,
        Missing,
        AccessDenied,
        Folder,
        NotRegularFile,
        NotJournal,
    };
    // A journal is a readable regular file holding at least one line that is a
    // non-empty JSON object. A positive answer is remembered for the same file as long
    // as it keeps the line that proved it, so that a followed journal's every change
    // costs an open instead of a parse. On the thread that scans.
    virtual FileCheck checkFile();
    bool isJournal() { return checkFile() == FileCheck::Journal; }

    // From the first file test that finds a journal on, keeps reading that very file
    // even when it is renamed, replaced or removed under its path, as rotated journals
    // are: what the parser counted stays what it shows. Before the first test.
    void setPinned(bool pinned) { m_pinRequested = pinned; }
    // Reads, from now on, the file that `other` has pinned; nothing when it has none.
    // On the thread that owns both parsers, while no scan of this one runs.
    void pinSameFileAs(const AbstractLogParser &other);

    virtual std::unique_ptr<Event> loadSingle(int index);
    virtual std::string loadSingleString(int index);
    // Events of rows first .. first+n-1, numbered first+1 ...; false when the file cannot be opened.
    virtual std::pair<bool, std::vector<Event *>> load(int first, int n);
    std::pair<bool, std::vector<Event *>> loadAll();

    // Hide every line counted so far / show them all again.
    void hideCounted();
    void showAll();
    int indexBase() const { return m_indexBase.load(std::memory_order_relaxed); }

    virtual void setStopFlag(bool stop) { m_stop.store(stop, std::memory_order_relaxed); }
    bool stopRequested() const { return m_stop.load(std::memory_order_relaxed); }

    // Number of recorded positions, hidden ones included.
    std::size_t positionCount() const;
    // A copy of the recorded positions, hidden ones included. Consistent only between
    // scans: take it on the thread that runs them.
    std::vector<qint64> positions() const;
    // What the index of positions occupies in memory.
    std::size_t indexBytes() const;
    qint64 scannedSize() const { return m_scannedSize; }
    // Lines passed over because they are no event (blank lines aside), or -1 until a
    // scan has read the file to its end. From any thread.
    int malformedLineCount() const { return m_malformedShown.load(std::memory_order_relaxed); }

    // Worker threads for full scans of the parallel parsers; 0 means one per
    // hardware thread. Tests and benchmarks vary it.
    void setWorkerCount(unsigned workers) { m_workerCount = workers; }
    unsigned workerCount() const;

    // Counting notes the latest event time of every run of rows, so that rowAtTime() reads
    // one run instead of the file; on unless turned off before counting.
    void setTimeMarksEnabled(bool enabled);
    // Counting also counts the events per UTC hour and priority for timeline(). Off until
    // turned on; turning it on after a count makes the next scan read the file again.
    virtual void setTimelineEnabled(bool enabled);
    bool timelineEnabled() const { return m_timelineWanted.load(std::memory_order_relaxed); }

    // The shown row of the first counted event in file order whose time is at or after
    // `time` (compared as instants); -1 when there is none, the file cannot be opened or
    // the stop flag ended the search. Events whose time is not a valid date-time are
    // never found. Takes in growth first, as load() does; without time marks the file is
    // counted again with them. On the thread that scans.
    virtual int rowAtTime(const QDateTime &time);

    enum class TimelineBucket { Hour, Day };
    struct TimelineEntry {
        qint64 startMsecs = 0; // the bucket's start, milliseconds since the epoch (UTC)
        qint64 total = 0;
        EventTimes::Counts byPriority{}; // priorities 1 to 8, then the unknown one
    };
    // The shown rows of the last count per UTC bucket, non-empty buckets in time order.
    // Events whose time is not a valid date-time are in no bucket. Empty while the
    // timeline is off or before a count with it. On the thread that scans (rows hidden
    // since a full rescan may have to be read again).
    virtual std::vector<TimelineEntry> timeline(TimelineBucket bucket);

Q_SIGNALS:
    void percentRead(int percent);

protected:
    virtual void scan(QIODevice &file) = 0;

    // The incremental rule: true when only an appended tail needs reading. A scan that
    // was cut short or whose results were invalidated forces a full scan instead.
    bool onlyGrown(qint64 currentSize) const
    {
        return m_scannedSize != 0 && m_scannedSize <= currentSize && m_resumePosition >= 0
            && !m_invalidated.load(std::memory_order_relaxed);
    }
    // The incremental rule, and the file is still the one read before: the same file
    // system object with the same bytes in front of the resume position. A rotation
    // that replaced or truncated the journal and let it grow past the old size before
    // this scan would otherwise be read from the middle of some line.
    bool canContinue(QIODevice &file, qint64 currentSize) const;
    // Prepares a full scan of a file of the given size: clears the positions and the
    // progress. A file that shrank was replaced, so nothing of it stays hidden.
    void beginFullScan(QIODevice &file, qint64 size);
    // Where the next tail scan begins (-1: the next scan reads everything again).
    void setResumePosition(QIODevice &file, qint64 position);
    // Line starts that split [0, size) into one range per worker.
    std::vector<qint64> rangeStarts(QIODevice &file, qint64 size) const;
    // Sends the percentage of `total` that `position` stands for, when it grew.
    void reportPercent(qint64 position, qint64 total);

    // Moves positions counted elsewhere behind those in the index, under the mutex.
    // With `times`, the times of those lines join the parser's at the same time.
    void appendPositions(LineIndex &&counted, const EventTimes *times = nullptr);
    // Whether the scan that runs notes the times of counted lines, and a fresh holder for
    // the times of one range or tail.
    bool recordsTimes() const { return m_recordsTimes; }
    EventTimes newTimes() const { return EventTimes(m_times.byHour()); }
    // Gives back spare index capacity after a scan.
    void trimPositions();
    // Forces the next scan to start from the beginning (e.g. after the filter changed).
    void invalidateResults() { m_invalidated.store(true, std::memory_order_relaxed); }

    // What reading made of one line.
    enum class Outcome {
        Unreadable, // the line does not parse
        Skipped,    // it parses but does not count
        Counted,    // its position goes into the index
    };

    // How far one run of reading got, and the positions of the lines it counted.
    struct RangeEnd {
        qint64 resume = -1; // start of the first line not read in full
        int lastPercent = 0;
        bool opened = false;
        bool stopped = false;
        qint64 malformed = 0;
        LineIndex counted;
        // Times of the counted lines when the scan records them.
        EventTimes times;
    };

    // Hands every line from the reader's position up to `end` (or the end of the data)
    // to judge(position, data, size) -> Outcome; the bytes stay valid during the call.
    // The stop flag is polled once per line. An unreadable line without its line feed is
    // probably still being written: reading ends before it, so the next scan starts there.
    template<typename Judge>
    RangeEnd readLines(LineReader &reader, qint64 end, Judge judge)
    {
        RangeEnd result;
        result.opened = true;
        const char *data = nullptr;
        qint64 size = 0;
        for (;;) {
            if (stopRequested()) {
                result.stopped = true;
                break;
            }
            const qint64 position = reader.position();
            if (position >= end || !reader.readLine(&data, &size))
                break;
            const Outcome outcome = judge(position, data, size);
            if (outcome == Outcome::Counted) {
                result.counted.append(position);
            } else if (outcome == Outcome::Unreadable) {
                if (!reader.lastLineTerminated()) {
                    result.resume = position;
                    return result;
                }
                const bool blank = std::all_of(data, data + size, [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); });
                if (!blank || reader.lastLineOverlong())
                    ++result.malformed;
            }
        }
        result.resume = reader.position();
        return result;
    }

    // readLines over [start, end) through a file handle of the calling worker's own.
    // With `reportsProgress` the percentage of the range read goes out as percentRead.
    template<typename Judge>
    RangeEnd readRange(qint64 start, qint64 end, bool reportsProgress, Judge judge)
    {
        QFile file;
        RangeEnd result;
        result.resume = start;
        if (!RegularFile::open(file, readPath(), QIODevice::ReadOnly | QIODevice::Unbuffered))
            return result;
        LineReader reader(file);
        if (!reader.seek(start)) {
            result.opened = true;
            return result;
        }
        int lastPercent = 0;
        result = readLines(reader, end, [&](qint64 position, const char *data, qint64 size) {
            const Outcome outcome = judge(position, data, size);
            if (reportsProgress && position > start) {
                const int percent = static_cast<int>(float(position - start) / float(end - start) * 100.0f);
                if (percent != lastPercent) {
                    lastPercent = percent;
                    Q_EMIT percentRead(percent);
                }
            }
            return outcome;
        });
        result.lastPercent = lastPercent;
        return result;
    }

    // The incremental path: reads only the appended tail with scanTail(reader, size),
    // which returns where the next scan resumes. False when a full scan is needed.
    template<typename Tail>
    bool continueScan(QIODevice &file, qint64 size, Tail scanTail)
    {
        if (!canContinue(file, size))
            return false;
        if (m_resumePosition >= size)
            return true;
        const qint64 from = m_resumePosition;
        m_scannedSize = size;
        LineReader reader(file);
        if (reader.seek(from))
            setResumePosition(file, scanTail(reader, size));
        return true;
    }

    // The tail from the reader's position to the end of the data, read on the calling
    // thread with percentRead whenever the percentage grows; the counted positions join
    // the index. Returns where the next scan resumes.
    template<typename Judge>
    qint64 readTail(LineReader &reader, qint64 size, Judge judge, const EventTimes *times = nullptr)
    {
        RangeEnd end = readLines(reader, std::numeric_limits<qint64>::max(),
                                 [&](qint64 position, const char *data, qint64 lineSize) {
                                     reportPercent(position, size);
                                     return judge(position, data, lineSize);
                                 });
        appendPositions(std::move(end.counted), times);
        m_malformed += end.malformed;
        return end.resume;
    }

    // A full scan over the ranges of rangeStarts(), one thread each running
    // scanRange(start, end, isLastRange) -> RangeEnd; then the lines appended while they
    // ran are read on this thread with scanTail(reader, size). The ranges' positions join
    // the index in file order.
    template<typename Range, typename Tail>
    void scanInParallel(QIODevice &file, qint64 size, Range scanRange, Tail scanTail)
    {
        const std::vector<qint64> starts = rangeStarts(file, size);
        std::vector<RangeEnd> results(starts.size());
        std::vector<std::thread> workers;
        workers.reserve(starts.size());
        for (std::size_t i = 0; i < starts.size(); ++i) {
            const bool last = i + 1 == starts.size();
            const qint64 end = last ? size : starts[i + 1];
            workers.emplace_back([&results, &scanRange, i, start = starts[i], end, last] {
                results[i] = scanRange(start, end, last);
            });
        }
        for (std::thread &worker : workers)
            worker.join();
        for (RangeEnd &result : results) {
            appendPositions(std::move(result.counted), &result.times);
            m_malformed += result.malformed;
        }
        m_lastPercent = results.back().lastPercent;
        const bool complete = std::all_of(results.begin(), results.end(),
                                          [](const RangeEnd &r) { return r.opened && !r.stopped; });
        if (!complete) {
            // Gaps in several ranges cannot be continued; the next scan starts afresh.
            setResumePosition(file, -1);
            return;
        }
        // A range that ends in a line still being written ends what was read in full;
        // the ranges after it are empty (their starts were pushed to the end of the data).
        qint64 resume = results.back().resume;
        for (std::size_t i = 0; i + 1 < results.size(); ++i) {
            if (results[i].resume < starts[i + 1]) {
                resume = results[i].resume;
                break;
            }
        }
        const qint64 current = file.size();
        if (current > resume) {
            m_scannedSize = std::max(m_scannedSize, current);
            LineReader reader(file);
            if (reader.seek(resume))
                resume = scanTail(reader, current);
        }
        setResumePosition(file, resume);
    }

    // The path files are opened by: the journal's, or one that reaches the pinned file.
    QString readPath() const;

    QString m_filePath;
    std::atomic<int> m_indexBase{0};
    qint64 m_scannedSize = 0;
    int m_lastPercent = 0;
    mutable std::mutex m_mutex;
    LineIndex m_index;
    std::atomic<bool> m_stop{false};
    unsigned m_workerCount = 0;
    // Where the next tail scan begins: the start of the first line not yet read in
    // full, or -1 when the last scan was cut short and cannot be continued.
    qint64 m_resumePosition = -1;
    std::atomic<bool> m_invalidated{false};
    // Malformed lines of the scans since the last full one, and the figure of the last
    // scan that reached the end.
    qint64 m_malformed = 0;
    std::atomic<int> m_malformedShown{-1};
    // The bytes just before the resume position, and the file system object read.
    QByteArray m_resumeGuard;
    QPair<quint64, quint64> m_fileIdentity{0, 0};

private:
    // Times of the indexed rows, in step with m_index under m_mutex while recorded.
    EventTimes m_times;
    bool m_recordsTimes = false;
    std::atomic<bool> m_marksWanted{true};
    std::atomic<bool> m_timelineWanted{false};
    // Hours of the rows hidden by hideCounted(), valid while m_hiddenRows is the index base.
    std::map<qint64, EventTimes::Counts> m_hiddenHours;
    std::size_t m_hiddenRows = 0;
    // The counted time and priority of the rows [first, end), read from the file.
    // `take` returns false to stop early; false when the stop flag or the file cut reading short.
    bool readTimesOfRows(QIODevice &file, std::size_t first, std::size_t end,
                         const std::function<bool(qint64, Event::Priority)> &take);

    bool openJournal(QFile &file);
    QString pinnedPath() const;

    std::atomic<bool> m_pinRequested{false};
    // Held open for as long as the parser lives; guarded by m_mutex.
    std::unique_ptr<QFile> m_pinned;
    QString m_pinnedPath;
    // The file that last passed the journal test and the end of the line that proved it.
    QPair<quint64, quint64> m_journalIdentity{0, 0};
    qint64 m_journalEvidenceEnd = -1;
    // The raw line of shown row `index`, after taking in growth; false when there is none.
    bool readRow(int index, QByteArray *line);
    // Reads the line at an absolute position through the reader; false at the end of the data.
    static bool lineAt(LineReader &reader, qint64 position, QByteArray *line);
    std::pair<bool, std::vector<Event *>> loadRows(std::size_t first, std::size_t n, quint32 firstNumber,
                                                   qint64 blockSize);
};
