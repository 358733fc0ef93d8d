// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "AbstractLogParser.h"
#include "FilterPack.h"
#include "LineParser.h"

#include <QDateTime>
#include <QFile>
#include <QStringList>

#include <array>
#include <cmath>
#include <map>
#include <random>
#include <vector>

// Journals whose clock steps back, and what parsing every line makes of their times:
// the reference that going to a time and the timeline are checked against.
namespace timed
{
inline const QDateTime kStart(QDate(2024, 3, 1), QTime(22, 30), Qt::UTC);

// Lines whose clock mostly climbs but now and then steps back by up to a day, with the
// time in every form the parser takes, some priorities unknown, some lines broken.
inline QByteArray journal(int lines, quint32 seed, qint64 fromSecs = 0)
{
    std::mt19937 random(seed);
    static const char *const priorities[] = {"emerg", "alert", "crit", "err", "warning", "notice", "info", "debug", "Warning"};
    QByteArray bytes;
    qint64 secs = kStart.toSecsSinceEpoch() + fromSecs;
    for (int i = 0; i < lines; ++i) {
        secs += random() % 240;
        if (random() % 40 == 0)
            secs -= random() % 86400;
        const QDateTime utc = QDateTime::fromSecsSinceEpoch(secs, Qt::UTC);
        const QByteArray iso = utc.toOffsetFromUtc(3600 * int(random() % 5)).toString(Qt::ISODate).toUtf8();
        QByteArray time;
        QByteArray body = "\"message_id\":\"m" + QByteArray::number(i) + "\"";
        switch (random() % 9) {
        case 0: body += ",\"time\":\"" + iso + "\""; break;
        case 1: body += ",\"unixtime\":" + QByteArray::number(secs); break;
        case 2: body += ",\"end_time\":\"" + QByteArray::number(secs) + "\""; break;
        case 3: time = "\"ISODATE\":\"" + utc.toLocalTime().toString(Qt::ISODate).toUtf8() + "\","; break;
        case 4: time = "\"DATE\":\"" + utc.toLocalTime().toString(QStringLiteral("MMM d HH:mm:ss")).toUtf8() + "\","; break;
        case 5: body += ",\"unixtime\":1e3"; break; // a form left to the parser
        case 6: bytes += "{\"MSG\": broken\n"; continue;
        default: break;
        }
        if (time.isEmpty())
            time = "\"ISODATE\":\"" + iso + "\",";
        bytes += "{\"PRIORITY\":\"" + QByteArray(priorities[random() % 9]) + "\"," + time + "\"MSG\":{\"velmo-auth\":{"
            + body + "}}}\n";
    }
    return bytes;
}

// What the parser makes of every line that counts: its time (or none) and priority.
struct Row {
    qint64 msecs;
    int priority;
};

inline std::vector<Row> fullScan(const QByteArray &bytes, const FilterPack *filter)
{
    std::vector<Row> rows;
    for (const QByteArray &line : bytes.split('\n')) {
        const std::unique_ptr<Event> event = LineParser::parseLine(line);
        if (event && (!filter || filter->match(*event)))
            rows.push_back({event->time.isValid() ? event->time.toMSecsSinceEpoch() : EventTimes::kNoTime,
                            int(event->priority)});
    }
    return rows;
}

inline int firstAtOrAfter(const std::vector<Row> &rows, std::size_t base, qint64 target)
{
    for (std::size_t i = base; i < rows.size(); ++i) {
        if (rows[i].msecs != EventTimes::kNoTime && rows[i].msecs >= target)
            return int(i - base);
    }
    return -1;
}

// Lines of "start total p1 .. p8 unknown", as the command line prints them.
inline QStringList timelineOf(const std::vector<Row> &rows, std::size_t base, qint64 bucketMsecs)
{
    std::map<qint64, std::array<qint64, 10>> buckets;
    for (std::size_t i = base; i < rows.size(); ++i) {
        if (rows[i].msecs == EventTimes::kNoTime)
            continue;
        const qint64 start = qint64(std::floor(double(rows[i].msecs) / double(bucketMsecs))) * bucketMsecs;
        auto &counts = buckets[start];
        ++counts[0];
        ++counts[rows[i].priority == 0 ? 9 : std::size_t(rows[i].priority)];
    }
    QStringList lines;
    for (const auto &bucket : buckets) {
        QStringList fields{QString::number(bucket.first)};
        for (const qint64 n : bucket.second)
            fields.append(QString::number(n));
        lines.append(fields.join(QLatin1Char(' ')));
    }
    return lines;
}

template<typename Reader>
QStringList timelineOf(Reader &parser, AbstractLogParser::TimelineBucket bucket)
{
    QStringList lines;
    for (const AbstractLogParser::TimelineEntry &entry : parser.timeline(bucket)) {
        QStringList fields{QString::number(entry.startMsecs), QString::number(entry.total)};
        for (const qint64 n : entry.byPriority)
            fields.append(QString::number(n));
        lines.append(fields.join(QLatin1Char(' ')));
    }
    return lines;
}

}
