// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later
#include "JournalHistory.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <map>

#include <sys/stat.h>

namespace
{
// Which file system object a name stands for: rotations keep the names and move the files.
std::pair<quint64, quint64> identityOf(const QString &path)
{
    struct stat status;
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return {0, 0};
    return {quint64(status.st_dev), quint64(status.st_ino)};
}
}

struct JournalHistory::Part {
    QString path;
    std::unique_ptr<CompressedLogFile> file;
    std::unique_ptr<AbstractLogParser> parser;
    int count = 0;
    // Bytes of the parts before this one, and of this one, when listed.
    qint64 before = 0;
    qint64 size = 0;
};

JournalHistory::JournalHistory(const QString &livePath, MakeParser makeParser, QObject *parent)
    : QObject(parent)
    , m_livePath(livePath)
    , m_makeParser(std::move(makeParser))
{
}

JournalHistory::~JournalHistory() = default;

QStringList JournalHistory::files(const QString &livePath)
{
    const QFileInfo live(livePath);
    const QString name = QRegularExpression::escape(live.fileName());
    const QString suffix = QStringLiteral("(\\.(gz|bz2|xz|zst))?$");
    const QRegularExpression numbered(QLatin1Char('^') + name + QStringLiteral("\\.(\\d{1,9})") + suffix);
    const QRegularExpression dated(QLatin1Char('^') + name + QStringLiteral("-(\\d{8})") + suffix);
    // Keyed by age: numbers from the highest, dates from the earliest; plain before packed.
    std::map<qint64, QString> byNumber;
    std::map<QString, QString> byDate;
    const QStringList entries = live.dir().entryList(QDir::Files | QDir::Hidden | QDir::System);
    for (const QString &entry : entries) {
        QRegularExpressionMatch match = numbered.match(entry);
        const bool plain = !match.hasMatch() || match.captured(2).isEmpty();
        if (match.hasMatch()) {
            QString &slot = byNumber[-match.captured(1).toLongLong()];
            if (slot.isEmpty() || plain)
                slot = entry;
            continue;
        }
        match = dated.match(entry);
        if (match.hasMatch()) {
            QString &slot = byDate[match.captured(1)];
            if (slot.isEmpty() || match.captured(2).isEmpty())
                slot = entry;
        }
    }
    QStringList result;
    for (const auto &entry : byNumber)
        result.append(live.dir().filePath(entry.second));
    for (const auto &entry : byDate)
        result.append(live.dir().filePath(entry.second));
    if (live.exists())
        result.append(livePath);
    return result;
}

void JournalHistory::refresh()
{
    const QStringList paths = files(m_livePath);
    std::vector<std::pair<quint64, quint64>> identities;
    for (const QString &path : paths)
        identities.push_back(identityOf(path));
    if (paths == m_listed && identities == m_identities && !m_parts.empty())
        return;
    // A rotation renamed the files: what each name holds now is unknown. Unpacking may
    // take long, so the lock is only taken around what the stop flag reads.
    std::vector<std::unique_ptr<Part>> parts;
    QStringList failures;
    bool stopped = false;
    const int rotations = std::max(1, int(paths.size()) - int(paths.contains(m_livePath)));
    int unpacked = 0;
    for (const QString &path : paths) {
        auto part = std::make_unique<Part>();
        part->path = path;
        if (path != m_livePath) {
            auto file = std::make_unique<CompressedLogFile>(path);
            {
                std::lock_guard<std::mutex> lock(m_mutex);
                stopped = m_stop;
                m_unpacking = file.get();
            }
            const bool ready = !stopped && file->unpack([this, unpacked, rotations](int percent) {
                Q_EMIT percentRead((unpacked * 100 + percent) / rotations);
            });
            {
                std::lock_guard<std::mutex> lock(m_mutex);
                m_unpacking = nullptr;
            }
            ++unpacked;
            if (stopped || file->state() == CompressedLogFile::State::Stopped) {
                stopped = true;
                break;
            }
            if (!ready) {
                failures.append(path);
                continue;
            }
            part->file = std::move(file);
        }
        const QString readable = part->file ? part->file->readablePath() : path;
        part->parser = m_makeParser(readable);
        part->size = QFileInfo(readable).size();
        part->before = parts.empty() ? 0 : parts.back()->before + parts.back()->size;
        part->parser->setTimelineEnabled(m_timeline);
        parts.push_back(std::move(part));
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    // A stopped unpacking leaves the history to be listed again by the next call.
    m_listed = stopped ? QStringList() : paths;
    m_identities = stopped ? decltype(identities)() : identities;
    m_parts = std::move(parts);
    m_failures = failures;
    for (const auto &part : m_parts)
        part->parser->setStopFlag(m_stop);
}

QStringList JournalHistory::partPaths() const
{
    QStringList paths;
    for (const auto &part : m_parts)
        paths.append(part->path);
    return paths;
}

int JournalHistory::count()
{
    refresh();
    int total = 0;
    bool opened = false;
    const qint64 bytes = m_parts.empty() ? 0 : m_parts.back()->before + m_parts.back()->size;
    for (const auto &part : m_parts) {
        // Direct: the parsers send from the threads that scan, which is what receivers expect.
        const QMetaObject::Connection relay = connect(
            part->parser.get(), &AbstractLogParser::percentRead, this,
            [this, before = part->before, size = part->size, bytes](int percent) {
                if (bytes > 0)
                    Q_EMIT percentRead(int((double(before) + double(size) * percent / 100.0) / double(bytes) * 100.0));
            },
            Qt::DirectConnection);
        const int count = part->parser->count();
        disconnect(relay);
        part->count = std::max(0, count);
        opened = opened || count >= 0;
        total += part->count;
    }
    return opened ? total : -1;
}

JournalHistory::Part *JournalHistory::partOf(int row, int *within)
{
    for (const auto &part : m_parts) {
        if (row < part->count) {
            *within = row;
            return part.get();
        }
        row -= part->count;
    }
    return nullptr;
}

std::pair<bool, std::vector<Event *>> JournalHistory::load(int first, int n)
{
    std::vector<Event *> events;
    int row = first;
    const int end = first + std::max(0, n);
    while (row < end) {
        int within = 0;
        Part *part = partOf(row, &within);
        if (!part)
            break;
        const int take = std::min(end - row, part->count - within);
        auto [opened, loaded] = part->parser->load(within, take);
        if (!opened) {
            qDeleteAll(events);
            return {false, {}};
        }
        for (Event *event : loaded) {
            event->number += quint32(row - within);
            events.push_back(event);
        }
        row += take;
    }
    return {true, std::move(events)};
}

std::unique_ptr<Event> JournalHistory::loadSingle(int index)
{
    int within = 0;
    Part *part = partOf(index, &within);
    std::unique_ptr<Event> event = part ? part->parser->loadSingle(within) : nullptr;
    if (event)
        event->number += quint32(index - within);
    return event;
}

AbstractLogParser::FileCheck JournalHistory::checkFile()
{
    refresh();
    AbstractLogParser::FileCheck live = AbstractLogParser::FileCheck::Missing;
    for (const auto &part : m_parts) {
        const AbstractLogParser::FileCheck check = part->parser->checkFile();
        if (check == AbstractLogParser::FileCheck::Journal)
            return check;
        if (part->path == m_livePath)
            live = check;
    }
    return live;
}

std::string JournalHistory::loadSingleString(int index)
{
    int within = 0;
    Part *part = partOf(index, &within);
    return part ? part->parser->loadSingleString(within) : std::string();
}

int JournalHistory::rowAtTime(const QDateTime &time)
{
    int before = 0;
    for (const auto &part : m_parts) {
        // Only the live file, the last part, may have grown since the count.
        const int row = part->parser->rowAtTime(time);
        if (row >= 0)
            return before + row;
        before += part->count;
    }
    return -1;
}

std::vector<AbstractLogParser::TimelineEntry> JournalHistory::timeline(AbstractLogParser::TimelineBucket bucket)
{
    std::map<qint64, AbstractLogParser::TimelineEntry> merged;
    for (const auto &part : m_parts) {
        for (const AbstractLogParser::TimelineEntry &entry : part->parser->timeline(bucket)) {
            AbstractLogParser::TimelineEntry &into = merged[entry.startMsecs];
            into.startMsecs = entry.startMsecs;
            into.total += entry.total;
            EventTimes::addCounts(into.byPriority, entry.byPriority);
        }
    }
    std::vector<AbstractLogParser::TimelineEntry> entries;
    entries.reserve(merged.size());
    for (const auto &entry : merged)
        entries.push_back(entry.second);
    return entries;
}

void JournalHistory::setTimelineEnabled(bool enabled)
{
    m_timeline = enabled;
    for (const auto &part : m_parts)
        part->parser->setTimelineEnabled(enabled);
}

void JournalHistory::setStopFlag(bool stop)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_stop = stop;
    for (const auto &part : m_parts)
        part->parser->setStopFlag(stop);
    if (stop && m_unpacking)
        m_unpacking->requestStop();
}

std::vector<AbstractLogParser *> JournalHistory::parsers() const
{
    std::vector<AbstractLogParser *> result;
    for (const auto &part : m_parts)
        result.push_back(part->parser.get());
    return result;
}
