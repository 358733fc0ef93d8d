// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "AbstractLogParser.h"

#include "LineAcceptor.h"

#include "LineParser.h"
#include "LineReader.h"
#include "RegularFile.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <functional>
#include <set>
#include <thread>

#include <sys/stat.h>

namespace
{
// The file test looks no further than this, so that opening some unrelated large
// file by mistake does not read all of it.
constexpr qint64 kJournalTestBytes = 8 * 1024 * 1024;
constexpr qint64 kBoundaryChunk = 4096;
constexpr std::size_t kRowSlice = 4096;
}

AbstractLogParser::AbstractLogParser(const QString &filePath, QObject *parent)
    : QObject(parent)
    , m_filePath(filePath)
{
}

AbstractLogParser::~AbstractLogParser() = default;

unsigned AbstractLogParser::workerCount() const
{
    if (m_workerCount > 0)
        return m_workerCount;
    return std::max(1u, std::thread::hardware_concurrency());
}

bool AbstractLogParser::openJournal(QFile &file)
{
    // LineReader does its own buffering; a second buffer in QIODevice only copies.
    return RegularFile::open(file, readPath(), QIODevice::ReadOnly | QIODevice::Unbuffered);
}

int AbstractLogParser::count()
{
    QFile file;
    if (!openJournal(file))
        return -1;
    scan(file);
    file.close();
    if (m_resumePosition >= 0 && !stopRequested())
        m_malformedShown.store(static_cast<int>(std::min<qint64>(m_malformed, std::numeric_limits<int>::max())),
                               std::memory_order_relaxed);
    const std::size_t counted = positionCount();
    const int base = indexBase();
    return std::max(0, static_cast<int>(counted) - base);
}

namespace
{
QPair<quint64, quint64> identityOf(QIODevice &file)
{
    auto *fileDevice = qobject_cast<QFileDevice *>(&file);
    struct stat status;
    if (!fileDevice || fileDevice->handle() < 0 || ::fstat(fileDevice->handle(), &status) != 0)
        return {0, 0};
    return {quint64(status.st_dev), quint64(status.st_ino)};
}

// The end of the first line that is a non-empty JSON object, within the test's
// allowance; -1 when there is none.
qint64 journalEvidence(QFile &file)
{
    LineReader reader(file, LineReader::kPageBlock);
    const char *data = nullptr;
    qint64 size = 0;
    while (reader.readLine(&data, &size)) {
        // A line cut by the allowance is no evidence either way.
        if (reader.position() > kJournalTestBytes)
            return -1;
        // Lines that are not journal lines are skipped: a journal may begin with a
        // line the logger left half-written before a crash. Most lines of other files
        // do not even begin like an object, and are passed over without parsing.
        const char *first = data;
        const char *const end = data + size;
        while (first != end && std::isspace(static_cast<unsigned char>(*first)))
            ++first;
        if (first == end || *first != '{')
            continue;
        const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromRawData(data, int(size)));
        if (document.isObject() && !document.object().isEmpty())
            return reader.position();
    }
    return -1;
}
}

QString AbstractLogParser::pinnedPath() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_pinnedPath;
}

QString AbstractLogParser::readPath() const
{
    const QString pinned = pinnedPath();
    return pinned.isEmpty() ? m_filePath : pinned;
}

AbstractLogParser::FileCheck AbstractLogParser::checkFile()
{
    const QString path = readPath();
    auto file = std::make_unique<QFile>();
    if (!RegularFile::open(*file, path)) {
        switch (RegularFile::problemWith(path)) {
        case RegularFile::Problem::AccessDenied:
            return FileCheck::AccessDenied;
        case RegularFile::Problem::Folder:
            return FileCheck::Folder;
        case RegularFile::Problem::NotRegularFile:
            return FileCheck::NotRegularFile;
        default:
            return FileCheck::Missing;
        }
    }
    const QPair<quint64, quint64> identity = identityOf(*file);
    if (identity != m_journalIdentity || file->size() < m_journalEvidenceEnd) {
        const qint64 evidence = journalEvidence(*file);
        if (evidence < 0)
            return FileCheck::NotJournal;
        m_journalIdentity = identity;
        m_journalEvidenceEnd = evidence;
    }
    if (m_pinRequested && pinnedPath().isEmpty()) {
        // The magic link opens the same file however its names change, each open with
        // a file position of its own, as the parallel scan needs.
        const QString magic = QStringLiteral("/proc/self/fd/%1").arg(file->handle());
        std::lock_guard<std::mutex> lock(m_mutex);
        m_pinnedPath = magic;
        m_pinned = std::move(file);
    }
    return FileCheck::Journal;
}

void AbstractLogParser::pinSameFileAs(const AbstractLogParser &other)
{
    const QString path = other.pinnedPath();
    auto file = std::make_unique<QFile>();
    if (path.isEmpty() || !RegularFile::open(*file, path))
        return;
    const QString magic = QStringLiteral("/proc/self/fd/%1").arg(file->handle());
    std::lock_guard<std::mutex> lock(m_mutex);
    m_pinRequested = true;
    m_pinnedPath = magic;
    m_pinned = std::move(file);
}

std::size_t AbstractLogParser::positionCount() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_index.size();
}

std::vector<qint64> AbstractLogParser::positions() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<qint64> all;
    all.reserve(m_index.size());
    m_index.copyTo(0, m_index.size(), all);
    return all;
}

std::size_t AbstractLogParser::indexBytes() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_index.memoryBytes();
}

void AbstractLogParser::hideCounted()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_indexBase.store(static_cast<int>(m_index.size()), std::memory_order_relaxed);
    // Everything counted is hidden now: the timeline of the hidden rows is the whole one.
    if (m_recordsTimes && m_times.byHour() && m_times.rows() == m_index.size()) {
        m_hiddenHours = m_times.hours();
        m_hiddenRows = m_index.size();
    }
}

void AbstractLogParser::showAll()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_indexBase.store(0, std::memory_order_relaxed);
    m_hiddenHours.clear();
    m_hiddenRows = 0;
}

bool AbstractLogParser::lineAt(LineReader &reader, qint64 position, QByteArray *line)
{
    return reader.seek(position) && reader.readLine(line);
}

bool AbstractLogParser::readRow(int index, QByteArray *line)
{
    QFile file;
    if (!openJournal(file))
        return false;
    scan(file);
    const qint64 row = qint64(indexBase()) + index;
    if (index < 0 || row >= qint64(m_index.size()))
        return false;
    LineReader reader(file, LineReader::kPageBlock);
    const char *data = nullptr;
    qint64 size = 0;
    if (!reader.seek(m_index.at(static_cast<std::size_t>(row))) || !reader.readLine(&data, &size))
        return false;
    // A copy: the reader's buffer goes with the reader.
    *line = QByteArray(data, static_cast<int>(size));
    return true;
}

std::unique_ptr<Event> AbstractLogParser::loadSingle(int index)
{
    QByteArray line;
    if (!readRow(index, &line))
        return nullptr;
    std::unique_ptr<Event> event = LineParser::parseLine(line);
    if (event)
        event->number = static_cast<quint32>(index) + 1;
    return event;
}

std::string AbstractLogParser::loadSingleString(int index)
{
    QByteArray line;
    if (!readRow(index, &line))
        return std::string();
    return line.toStdString();
}

std::pair<bool, std::vector<Event *>> AbstractLogParser::load(int first, int n)
{
    if (first < 0 || n < 0)
        first = n = 0;
    return loadRows(static_cast<std::size_t>(first), static_cast<std::size_t>(n), static_cast<quint32>(first) + 1,
                    LineReader::kPageBlock);
}

std::pair<bool, std::vector<Event *>> AbstractLogParser::loadAll()
{
    // Every row, hidden ones included, read front to back: large blocks pay off.
    return loadRows(0, std::size_t(-1), 1, LineReader::kScanBlock);
}

std::pair<bool, std::vector<Event *>> AbstractLogParser::loadRows(std::size_t first, std::size_t n,
                                                                  quint32 firstNumber, qint64 blockSize)
{
    QFile file;
    if (!openJournal(file))
        return {false, {}};
    scan(file);

    // load() rows are shown rows, behind the hidden ones; loadAll() starts at the first line.
    const std::size_t base = n == std::size_t(-1) ? 0 : static_cast<std::size_t>(indexBase());
    const std::size_t total = m_index.size();
    const std::size_t begin = std::min(total, base + first);
    // The caller promises the rows exist, but the file may have been replaced by a shorter one since.
    const std::size_t end = n == std::size_t(-1) ? total : std::min(total, begin + n);

    std::vector<Event *> events;
    events.reserve(end - begin);
    LineReader reader(file, blockSize);
    QByteArray line;
    // Positions are unpacked a slice at a time, so that reading everything never holds
    // them all unpacked.
    std::vector<qint64> slice;
    for (std::size_t from = begin; from < end; from += kRowSlice) {
        slice.clear();
        m_index.copyTo(from, std::min(kRowSlice, end - from), slice);
        for (std::size_t i = 0; i < slice.size(); ++i) {
            if (!lineAt(reader, slice[i], &line))
                return {true, std::move(events)};
            std::unique_ptr<Event> event = LineParser::parseLine(line);
            if (!event)
                continue;
            event->number = firstNumber + static_cast<quint32>(from + i - begin);
            events.push_back(event.release());
        }
    }
    return {true, std::move(events)};
}

namespace
{
constexpr qint64 kGuardBytes = 32;

QByteArray bytesBefore(QIODevice &file, qint64 position)
{
    const qint64 from = std::max<qint64>(0, position - kGuardBytes);
    if (position <= 0 || !file.seek(from))
        return QByteArray();
    return file.read(position - from);
}
}

bool AbstractLogParser::canContinue(QIODevice &file, qint64 currentSize) const
{
    if (!onlyGrown(currentSize) || identityOf(file) != m_fileIdentity)
        return false;
    return m_resumePosition == 0 || bytesBefore(file, m_resumePosition) == m_resumeGuard;
}

void AbstractLogParser::setResumePosition(QIODevice &file, qint64 position)
{
    m_resumePosition = position;
    m_resumeGuard = position > 0 ? bytesBefore(file, position) : QByteArray();
}

void AbstractLogParser::beginFullScan(QIODevice &file, qint64 size)
{
    m_fileIdentity = identityOf(file);
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_scannedSize > size)
        m_indexBase.store(0, std::memory_order_relaxed);
    m_index.clear();
    m_recordsTimes = m_marksWanted.load(std::memory_order_relaxed) || m_timelineWanted.load(std::memory_order_relaxed);
    m_times = EventTimes(m_timelineWanted.load(std::memory_order_relaxed));
    // Rows that stay hidden may now be other lines than those whose hours were noted.
    m_hiddenHours.clear();
    m_hiddenRows = m_indexBase.load(std::memory_order_relaxed) == 0 ? 0 : std::size_t(-1);
    m_malformed = 0;
    m_scannedSize = size;
    m_lastPercent = 0;
    m_resumePosition = -1;
    m_invalidated.store(false, std::memory_order_relaxed);
}

std::vector<qint64> AbstractLogParser::rangeStarts(QIODevice &file, qint64 size) const
{
    std::set<qint64> starts{0};
    const unsigned n = workerCount();
    const qint64 saved = file.pos();
    char chunk[kBoundaryChunk];
    for (unsigned i = 1; n > 1 && i < n; ++i) {
        qint64 position = (size / n) * i;
        if (!file.seek(position))
            continue;
        for (;;) {
            const qint64 got = file.read(chunk, kBoundaryChunk);
            if (got <= 0)
                break;
            const void *feed = std::memchr(chunk, '\n', static_cast<size_t>(got));
            if (feed) {
                position += static_cast<const char *>(feed) - chunk + 1;
                break;
            }
            position += got;
        }
        // Bytes appended meanwhile belong to the tail, not to a range.
        starts.insert(std::min(position, size));
    }
    file.seek(saved);
    return std::vector<qint64>(starts.begin(), starts.end());
}

void AbstractLogParser::reportPercent(qint64 position, qint64 total)
{
    if (total <= 0)
        return;
    const int percent = std::min(100, static_cast<int>(double(position) / double(total) * 100.0));
    if (percent > m_lastPercent) {
        m_lastPercent = percent;
        Q_EMIT percentRead(percent);
    }
}

void AbstractLogParser::appendPositions(LineIndex &&counted, const EventTimes *times)
{
    if (counted.empty())
        return;
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_index.empty())
        m_index = std::move(counted);
    else
        m_index.append(counted);
    if (m_recordsTimes && times)
        m_times.append(*times);
}

void AbstractLogParser::setTimeMarksEnabled(bool enabled)
{
    m_marksWanted.store(enabled, std::memory_order_relaxed);
}

void AbstractLogParser::setTimelineEnabled(bool enabled)
{
    if (enabled && !m_timelineWanted.exchange(true, std::memory_order_relaxed))
        invalidateResults();
    else if (!enabled)
        m_timelineWanted.store(false, std::memory_order_relaxed);
}

bool AbstractLogParser::readTimesOfRows(QIODevice &file, std::size_t first, std::size_t end,
                                        const std::function<bool(qint64, Event::Priority)> &take)
{
    LineReader reader(file, LineReader::kPageBlock);
    LineAcceptor acceptor;
    std::vector<qint64> slice;
    const char *data = nullptr;
    qint64 size = 0;
    for (std::size_t from = first; from < end; from += kRowSlice) {
        slice.clear();
        m_index.copyTo(from, std::min(kRowSlice, end - from), slice);
        for (const qint64 position : slice) {
            if (stopRequested() || !reader.seek(position) || !reader.readLine(&data, &size))
                return false;
            qint64 msecs = EventTimes::kNoTime;
            Event::Priority priority = Event::Unknown;
            // A line that no longer parses is a row without a time.
            if (!EventTimes::readLine(acceptor, data, size, &msecs, &priority))
                msecs = EventTimes::kNoTime;
            if (!take(msecs, priority))
                return true;
        }
    }
    return true;
}

int AbstractLogParser::rowAtTime(const QDateTime &time)
{
    if (!time.isValid())
        return -1;
    QFile file;
    if (!openJournal(file))
        return -1;
    if (!m_recordsTimes) {
        m_marksWanted.store(true, std::memory_order_relaxed);
        invalidateResults();
    }
    scan(file);
    // Only this thread changes the index and the times, so they are read without the lock.
    if (!m_recordsTimes || stopRequested() || m_times.rows() != m_index.size())
        return -1;
    const qint64 target = time.toMSecsSinceEpoch();
    const std::size_t base = static_cast<std::size_t>(indexBase());
    const std::vector<EventTimes::Run> &runs = m_times.runs();
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const std::size_t runEnd = i + 1 < runs.size() ? runs[i + 1].firstRow : m_times.rows();
        if (runs[i].latest == EventTimes::kNoTime || runs[i].latest < target || runEnd <= base)
            continue;
        // The run holds the time sought, unless only among hidden rows.
        std::size_t row = std::max(runs[i].firstRow, base);
        bool found = false;
        const bool read = readTimesOfRows(file, row, runEnd, [&](qint64 msecs, Event::Priority) {
            if (msecs != EventTimes::kNoTime && msecs >= target) {
                found = true;
                return false;
            }
            ++row;
            return true;
        });
        if (found)
            return static_cast<int>(row - base);
        if (!read)
            return -1;
    }
    return -1;
}

namespace
{
qint64 floorDivide(qint64 value, qint64 divisor)
{
    return value >= 0 ? value / divisor : -((-(value + 1)) / divisor) - 1;
}
}

std::vector<AbstractLogParser::TimelineEntry> AbstractLogParser::timeline(TimelineBucket bucket)
{
    if (!m_recordsTimes || !m_times.byHour())
        return {};
    std::map<qint64, EventTimes::Counts> hours = m_times.hours();
    const std::size_t base = static_cast<std::size_t>(indexBase());
    std::map<qint64, EventTimes::Counts> hidden;
    bool known = false;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        known = m_hiddenRows == base;
        if (known)
            hidden = m_hiddenHours;
    }
    if (base > 0 && !known) {
        // Hidden before a full rescan: which lines they are now is only in the file.
        QFile file;
        if (!openJournal(file))
            return {};
        EventTimes read(true);
        const bool complete = readTimesOfRows(file, 0, std::min(base, m_index.size()),
                                              [&read](qint64 msecs, Event::Priority priority) {
                                                  read.add(msecs, priority);
                                                  return true;
                                              });
        if (!complete)
            return {};
        hidden = read.hours();
        std::lock_guard<std::mutex> lock(m_mutex);
        m_hiddenHours = hidden;
        m_hiddenRows = base;
    }
    for (const auto &hour : hidden)
        EventTimes::addCounts(hours[hour.first], hour.second, -1);

    const qint64 hoursPerBucket = bucket == TimelineBucket::Day ? 24 : 1;
    std::vector<TimelineEntry> entries;
    for (const auto &hour : hours) {
        qint64 total = 0;
        for (const qint64 n : hour.second)
            total += n;
        if (total == 0)
            continue;
        const qint64 start = EventTimes::hourStart(floorDivide(hour.first, hoursPerBucket) * hoursPerBucket);
        if (entries.empty() || entries.back().startMsecs != start) {
            entries.emplace_back();
            entries.back().startMsecs = start;
        }
        entries.back().total += total;
        EventTimes::addCounts(entries.back().byPriority, hour.second);
    }
    return entries;
}


void AbstractLogParser::trimPositions()
{
    // The index is the one thing a view keeps per line; between scans it holds no
    // spare room (a copy now is cheap next to the scan that just ran).
    std::lock_guard<std::mutex> lock(m_mutex);
    m_index.shrinkToFit();
}
