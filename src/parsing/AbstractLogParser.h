#pragma once

#include "Event.h"

#include <QByteArray>
#include <QObject>
#include <QPair>
#include <QString>

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

class QFile;
class QIODevice;
class LineReader;

// Scans a journal once and remembers where the counted lines start, so that a page
// is read by seeking instead of keeping events in memory. Later calls scan only
// what was appended; a file that shrank is scanned again from the start.
//
// Scans, counts and loads run on one thread (the loader's). hideCounted(), showAll(),
// setStopFlag(), positionCount() and the filter setter may be called from any thread.
class AbstractLogParser : public QObject
{
    Q_OBJECT
public:
    explicit AbstractLogParser(const QString &filePath, QObject *parent = nullptr);
    ~AbstractLogParser() override;

    QString filePath() const { return m_filePath; }

    // Counted lines less the hidden ones, or -1 when the file cannot be opened.
    int count();
    // The file holds at least one line that is a non-empty JSON object.
    bool isJournal() const;

    std::unique_ptr<Event> loadSingle(int index);
    std::string loadSingleString(int index);
    // Events of rows first .. first+n-1, numbered first+1 ...; false when the file cannot be opened.
    std::pair<bool, std::vector<Event *>> load(int first, int n);
    std::pair<bool, std::vector<Event *>> loadAll();

    // Hide every line counted so far / show them all again.
    void hideCounted();
    void showAll();
    int indexBase() const { return m_indexBase.load(std::memory_order_relaxed); }

    void setStopFlag(bool stop) { m_stop.store(stop, std::memory_order_relaxed); }
    bool stopRequested() const { return m_stop.load(std::memory_order_relaxed); }

    // Number of recorded positions, hidden ones included.
    std::size_t positionCount() const;
    qint64 scannedSize() const { return m_scannedSize; }

    // Worker threads for full scans of the parallel parsers; 0 means one per
    // hardware thread. Tests and benchmarks vary it.
    void setWorkerCount(unsigned workers) { m_workerCount = workers; }
    unsigned workerCount() const;

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
    void reportPercent(qint64 position, qint64 total, bool always = false);

    // Moves a batch of positions into the index under the mutex and empties the batch.
    void flushPositions(std::vector<qint64> &batch);
    // Makes room for the lines expected in `bytes` more bytes, judged by what was counted so far.
    void reservePositions(qint64 bytes, qint64 sampleBytes, std::size_t sampleLines);
    // Gives back spare index capacity after a scan.
    void trimPositions();
    // Forces the next scan to start from the beginning (e.g. after the filter changed).
    void invalidateResults() { m_invalidated.store(true, std::memory_order_relaxed); }

    QString m_filePath;
    std::atomic<int> m_indexBase{0};
    qint64 m_scannedSize = 0;
    int m_lastPercent = 0;
    mutable std::mutex m_mutex;
    std::vector<qint64> m_positions;
    std::atomic<bool> m_stop{false};
    unsigned m_workerCount = 0;
    // Where the next tail scan begins: the start of the first line not yet read in
    // full, or -1 when the last scan was cut short and cannot be continued.
    qint64 m_resumePosition = -1;
    std::atomic<bool> m_invalidated{false};
    // The bytes just before the resume position, and the file system object read.
    QByteArray m_resumeGuard;
    QPair<quint64, quint64> m_fileIdentity{0, 0};

private:
    bool openJournal(QFile &file);
    // Reads the line at an absolute position through the reader; false at the end of the data.
    static bool lineAt(LineReader &reader, qint64 position, QByteArray *line);
    std::pair<bool, std::vector<Event *>> loadRows(std::size_t first, std::size_t n, quint32 firstNumber,
                                                   qint64 blockSize);
};
