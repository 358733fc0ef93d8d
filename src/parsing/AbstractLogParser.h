#pragma once

#include "Event.h"

#include <QObject>
#include <QString>

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

class QIODevice;

// Scans a journal once and remembers where the counted lines start, so that a page
// is read by seeking instead of keeping events in memory. Later calls scan only
// what was appended; a file that shrank is scanned again from the start.
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
    int indexBase() const { return m_indexBase; }

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

    // The incremental rule: true when only an appended tail needs reading.
    bool onlyGrown(qint64 currentSize) const { return m_scannedSize != 0 && m_scannedSize <= currentSize; }
    // Line starts that split [0, size) into one range per worker.
    std::vector<qint64> rangeStarts(QIODevice &file, qint64 size) const;
    void reportPercent(qint64 position, qint64 total, bool always = false);

    QString m_filePath;
    int m_indexBase = 0;
    qint64 m_scannedSize = 0;
    int m_lastPercent = 0;
    mutable std::mutex m_mutex;
    std::vector<qint64> m_positions;
    std::atomic<bool> m_stop{false};
    unsigned m_workerCount = 0;
};
