// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "SummaryParser.h"

#include "Dictionary.h"
#include "JsonLineScanner.h"
#include "LineReader.h"
#include "RegularFile.h"
#include "NameTable.h"
#include "TimeTextReader.h"

#include <QDateTime>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace
{
constexpr qint64 kHourMs = 3600 * 1000LL;
constexpr qint64 kDayMs = 24 * kHourMs;
constexpr qint64 kWeekMs = 7 * kDayMs;
constexpr int kGroupBits = 16;
constexpr quint64 kGroupMask = (quint64(1) << kGroupBits) - 1;
// Times beyond this (some thousands of years ahead) cannot be packed and will never be due.
constexpr qint64 kLastPackableMs = (qint64(1) << (64 - kGroupBits)) - 1;
constexpr std::size_t kMergeEvery = 16384;

const QString kPriorityKey = QStringLiteral("PRIORITY");
const QString kMsgKey = QStringLiteral("MSG");
const QString kIsoDateKey = QStringLiteral("ISODATE");
}

// What one worker found, with group numbers of its own until it is merged.
class SummaryParser::Collector
{
public:
    enum Outcome { NotJson, Skipped, Kept };

    explicit Collector(qint64 oldest)
        : m_oldest(oldest)
        , m_dictionary(Dictionary::instance())
    {
    }

    // The light reading of a line: no Event, only priority, source and time, taken from
    // one scan of the line; Qt's reader reads what the scan cannot decide.
    Outcome take(const char *data, qsizetype size)
    {
        using Verdict = JsonLineScanner::Verdict;
        using Kind = JsonLineScanner::Kind;
        switch (m_scanner.scan(data, size)) {
        case Verdict::Invalid: return NotJson;
        // A document that is no object has no priority.
        case Verdict::OtherDocument: return Skipped;
        case Verdict::Unsure: return takeWithQt(QByteArray::fromRawData(data, int(size)));
        case Verdict::Object: break;
        }
        const JsonLineScanner::Value &word = m_scanner.root(JsonLineScanner::Priority);
        Event::Priority priority = Event::Unknown;
        if (word.kind == Kind::String) {
            priority = word.text.escaped ? Event::priorityFromWord(JsonLineScanner::text(word.text))
                                         : Event::priorityFromWord(QLatin1String(word.text.data, word.text.size));
        }
        if (!m_dictionary.hasPriority(priority))
            return Skipped;
        if (m_scanner.root(JsonLineScanner::Msg).kind != Kind::Object || m_scanner.messageMembers() == 0
            || m_scanner.messageNamesDiffer())
            return Skipped;
        // Members of one name collapse into one, which Qt picks.
        if (m_scanner.messageMembers() > 1)
            return takeWithQt(QByteArray::fromRawData(data, int(size)));
        const JsonLineScanner::Value &isoDate = m_scanner.root(JsonLineScanner::IsoDate);
        if (isoDate.kind != Kind::String)
            return Skipped;
        const TimeTextReader::Result time = isoDate.text.escaped
            ? TimeTextReader::readIso(JsonLineScanner::text(isoDate.text))
            : m_timeReader.readIso(isoDate.text.data, isoDate.text.size);
        if (!time.valid)
            return Skipped;
        const qint64 ms = time.hasInstant
            ? time.msecs
            : QDateTime::fromString(JsonLineScanner::text(isoDate.text), Qt::ISODate).toMSecsSinceEpoch();
        if (ms < m_oldest || ms > kLastPackableMs)
            return Skipped;
        // Groups by the priority and the source's name as written.
        const JsonLineScanner::Text &source = m_scanner.message().name;
        m_groupKey.resize(0);
        m_groupKey.append(char(priority));
        m_groupKey.append(source.data, source.size);
        const quint16 *known = m_groupsByKey.find(m_groupKey.constData(), m_groupKey.size());
        const quint16 group = known ? *known : (m_groupsByKey[m_groupKey] = groupOf(priority, JsonLineScanner::text(source)));
        stamps.push_back((quint64(ms) << kGroupBits) | group);
        return Kept;
    }

    std::vector<QPair<Event::Priority, QString>> groups;
    std::vector<quint64> stamps;

private:
    Outcome takeWithQt(const QByteArray &line)
    {
        const QJsonDocument document = QJsonDocument::fromJson(line);
        if (document.isNull())
            return NotJson;
        const QJsonObject root = document.object();
        const Event::Priority priority = Event::priorityFromWord(root.value(kPriorityKey).toString());
        // Lines without a known priority word are never summarised.
        if (!m_dictionary.hasPriority(priority))
            return Skipped;
        const QJsonObject msg = root.value(kMsgKey).toObject();
        if (msg.size() != 1)
            return Skipped;
        const QDateTime time = QDateTime::fromString(root.value(kIsoDateKey).toString(), Qt::ISODate);
        if (!time.isValid())
            return Skipped;
        const qint64 ms = time.toMSecsSinceEpoch();
        // Older than a week now means older than a week for every later tally too.
        if (ms < m_oldest || ms > kLastPackableMs)
            return Skipped;
        stamps.push_back((quint64(ms) << kGroupBits) | groupOf(priority, msg.constBegin().key()));
        return Kept;
    }

    quint16 groupOf(Event::Priority priority, QString source)
    {
        if (!m_dictionary.hasSource(source))
            source = Dictionary::unrecognizedSource();
        const QPair<int, QString> key(priority, source);
        auto it = m_groupIds.constFind(key);
        if (it == m_groupIds.constEnd()) {
            it = m_groupIds.insert(key, static_cast<quint16>(groups.size()));
            groups.emplace_back(priority, source);
        }
        return it.value();
    }

    qint64 m_oldest;
    const Dictionary &m_dictionary;
    JsonLineScanner m_scanner;
    TimeTextReader m_timeReader;
    QHash<QPair<int, QString>, quint16> m_groupIds;
    NameTable<quint16> m_groupsByKey;
    QByteArray m_groupKey;
};

void SummaryParser::merge(Collector &collector)
{
    if (collector.stamps.empty())
        return;
    std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<quint16> global(collector.groups.size());
    for (std::size_t i = 0; i < collector.groups.size(); ++i) {
        const auto &group = collector.groups[i];
        const QPair<int, QString> key(group.first, group.second);
        auto it = m_groupIds.constFind(key);
        if (it == m_groupIds.constEnd()) {
            // Priorities 1-8 times the known sources plus one: far below the 16-bit limit.
            it = m_groupIds.insert(key, static_cast<quint16>(m_groups.size()));
            m_groups.push_back(group);
        }
        global[i] = it.value();
    }
    // Room grows by doubling: reserving the exact size on every merge copied all stamps each time.
    if (m_stamps.capacity() < m_stamps.size() + collector.stamps.size())
        m_stamps.reserve(std::max(2 * m_stamps.capacity(), m_stamps.size() + collector.stamps.size()));
    for (const quint64 stamp : collector.stamps)
        m_stamps.push_back((stamp & ~kGroupMask) | global[stamp & kGroupMask]);
    collector.stamps.clear();
}

void SummaryParser::clearCounts()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_counts.clear();
    m_groups.clear();
    m_groupIds.clear();
    m_stamps.clear();
    m_stamps.shrink_to_fit();
}

MapForCounts SummaryParser::countForSummary()
{
    QFile file;
    if (!RegularFile::open(file, readPath(), QIODevice::ReadOnly | QIODevice::Unbuffered))
        return MapForCounts();
    scan(file);
    file.close();

    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    std::lock_guard<std::mutex> lock(m_mutex);
    // Events that left the week never come back into it.
    m_stamps.erase(std::remove_if(m_stamps.begin(), m_stamps.end(),
                                  [now](quint64 stamp) { return qint64(stamp >> kGroupBits) < now - kWeekMs; }),
                   m_stamps.end());
    std::vector<WindowCounts> tally(m_groups.size());
    std::vector<bool> seen(m_groups.size(), false);
    for (const quint64 stamp : m_stamps) {
        const qint64 ms = qint64(stamp >> kGroupBits);
        if (ms > now)
            continue;
        const std::size_t group = stamp & kGroupMask;
        WindowCounts &counts = tally[group];
        seen[group] = true;
        ++counts.week;
        if (ms >= now - kDayMs)
            ++counts.day;
        if (ms >= now - kHourMs)
            ++counts.hour;
    }
    m_counts.clear();
    for (std::size_t group = 0; group < m_groups.size(); ++group) {
        if (seen[group])
            m_counts[m_groups[group].first].insert(m_groups[group].second, tally[group]);
    }
    return m_counts;
}

void SummaryParser::scan(QIODevice &file)
{
    const qint64 size = file.size();
    const qint64 oldest = QDateTime::currentMSecsSinceEpoch() - kWeekMs;
    auto tail = [this, oldest](LineReader &reader, qint64) { return scanTail(reader, oldest); };
    if (continueScan(file, size, tail))
        return;
    beginFullScan(file, size);
    clearCounts();
    scanInParallel(file, size, [this, oldest](qint64 start, qint64 end, bool) { return scanRange(start, end, oldest); },
                   tail);
}

// The light reading of a line builds no Event; a line that is not JSON counts as unreadable.
template<typename Read>
AbstractLogParser::RangeEnd SummaryParser::collect(qint64 oldest, Read read)
{
    Collector collector(oldest);
    const RangeEnd end = read([this, &collector](qint64, const char *data, qint64 size) {
        const bool readable = collector.take(data, size) != Collector::NotJson;
        if (collector.stamps.size() >= kMergeEvery)
            merge(collector);
        return readable ? Outcome::Skipped : Outcome::Unreadable;
    });
    merge(collector);
    return end;
}

qint64 SummaryParser::scanTail(LineReader &reader, qint64 oldest)
{
    return collect(oldest, [this, &reader](auto take) {
               return readLines(reader, std::numeric_limits<qint64>::max(), take);
           }).resume;
}

AbstractLogParser::RangeEnd SummaryParser::scanRange(qint64 start, qint64 end, qint64 oldest)
{
    return collect(oldest, [this, start, end](auto take) { return readRange(start, end, false, take); });
}
