// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later
#include "FilteringLogParser.h"
#include "LineParser.h"
#include "LogParser.h"
#include "ParsingFixture.h"

#include <QTemporaryDir>

#include <functional>
#include <map>
#include <random>

// Going to a time and the timeline, against parsing every line of the file.
namespace
{
const QDateTime kStart(QDate(2024, 3, 1), QTime(22, 30), Qt::UTC);

// Lines whose clock mostly climbs but now and then steps back by up to a day, with the
// time in every form the parser takes, some priorities unknown, some lines broken.
QByteArray journal(int lines, quint32 seed, qint64 fromSecs = 0)
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

std::vector<Row> fullScan(const QString &path, const FilterPack *filter)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    std::vector<Row> rows;
    while (!file.atEnd()) {
        const std::unique_ptr<Event> event = LineParser::parseLine(file.readLine());
        if (event && (!filter || filter->match(*event)))
            rows.push_back({event->time.isValid() ? event->time.toMSecsSinceEpoch() : EventTimes::kNoTime,
                            int(event->priority)});
    }
    return rows;
}

int firstAtOrAfter(const std::vector<Row> &rows, std::size_t base, qint64 target)
{
    for (std::size_t i = base; i < rows.size(); ++i) {
        if (rows[i].msecs != EventTimes::kNoTime && rows[i].msecs >= target)
            return int(i - base);
    }
    return -1;
}

// Lines of "start total p1 .. p8 unknown", as the command line prints them.
QStringList timelineOf(const std::vector<Row> &rows, std::size_t base, qint64 bucketMsecs)
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

QStringList timelineOf(AbstractLogParser &parser, AbstractLogParser::TimelineBucket bucket)
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

struct Kind {
    const char *name;
    std::function<std::unique_ptr<AbstractLogParser>(const QString &)> make;
    std::unique_ptr<FilterPack> filter;
};

std::vector<Kind> kinds()
{
    std::vector<Kind> result;
    result.push_back({"all", [](const QString &path) {
                          auto parser = std::make_unique<LogParser>(path);
                          parser->setWorkerCount(3);
                          return std::unique_ptr<AbstractLogParser>(std::move(parser));
                      },
                      nullptr});
    auto severe = std::make_unique<FilterPack>();
    severe->checkPriorities = true;
    severe->priorities = {Event::Unknown, Event::Error, Event::Warning, Event::Info};
    const FilterPack pack = *severe;
    result.push_back({"filtered", [pack](const QString &path) {
                          auto parser = std::make_unique<FilteringLogParser>(path);
                          parser->setWorkerCount(2);
                          parser->setFilter(pack);
                          return std::unique_ptr<AbstractLogParser>(std::move(parser));
                      },
                      std::move(severe)});
    return result;
}
}

class TestEventTimes : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    int m_files = 0;
    QString newPath() { return m_dir.filePath(QStringLiteral("journal%1").arg(++m_files)); }

    // Every row's time and a millisecond either side, and times before and after all.
    static void compareGoto(AbstractLogParser &parser, const std::vector<Row> &rows, std::size_t base)
    {
        std::vector<qint64> targets{kStart.toMSecsSinceEpoch() - 86400000LL * 3, kStart.toMSecsSinceEpoch() + 86400000LL * 400};
        for (std::size_t i = base; i < rows.size(); i += 7) {
            if (rows[i].msecs != EventTimes::kNoTime)
                targets.insert(targets.end(), {rows[i].msecs - 1, rows[i].msecs, rows[i].msecs + 1});
        }
        for (const qint64 target : targets) {
            const QDateTime time = QDateTime::fromMSecsSinceEpoch(target, Qt::OffsetFromUTC, 7200);
            QCOMPARE(parser.rowAtTime(time), firstAtOrAfter(rows, base, target));
        }
    }

    static void compareTimeline(AbstractLogParser &parser, const std::vector<Row> &rows, std::size_t base)
    {
        QCOMPARE(timelineOf(parser, AbstractLogParser::TimelineBucket::Hour), timelineOf(rows, base, 3600000));
        QCOMPARE(timelineOf(parser, AbstractLogParser::TimelineBucket::Day), timelineOf(rows, base, 86400000));
    }

    void compareAll(AbstractLogParser &parser, const Kind &kind, const QString &path)
    {
        const std::vector<Row> rows = fullScan(path, kind.filter.get());
        const std::size_t base = std::size_t(parser.indexBase());
        QCOMPARE(parser.count(), int(rows.size() - base));
        compareTimeline(parser, rows, base);
        compareGoto(parser, rows, base);
    }

private slots:
    void goToTimeAndTimelineMatchAFullScanThroughGrowthHidingAndRotation()
    {
        for (const Kind &kind : kinds()) {
            qInfo() << kind.name;
            const QString path = newPath();
            fixture::write(path, journal(3000, 1));
            auto parser = kind.make(path);
            parser->setTimelineEnabled(true);
            compareAll(*parser, kind, path);

            // Appended line by line, as a followed journal grows, then in one piece.
            for (int i = 0; i < 40; ++i)
                fixture::append(path, journal(1, 100 + quint32(i), 86400 * 2 + i * 60));
            fixture::append(path, journal(500, 2, 86400 * 3));
            compareAll(*parser, kind, path);

            parser->hideCounted();
            fixture::append(path, journal(300, 3, 86400 * 4));
            compareAll(*parser, kind, path);
            parser->showAll();
            compareAll(*parser, kind, path);

            // Rotated: another file, larger than the old one, takes the name.
            const QString other = newPath();
            fixture::write(other, journal(4000, 4, -86400 * 30));
            QVERIFY(QFile::remove(path) && QFile::rename(other, path));
            compareAll(*parser, kind, path);
        }
    }

    void timelineTurnedOnLateOrAfterAFilterChangeStillCountsTheShownRows()
    {
        const QString path = newPath();
        fixture::write(path, journal(2000, 5));
        FilteringLogParser parser(path);
        parser.setWorkerCount(3);
        QVERIFY(parser.timeline(AbstractLogParser::TimelineBucket::Hour).empty());
        parser.count();
        QVERIFY(parser.timeline(AbstractLogParser::TimelineBucket::Hour).empty());
        parser.setTimelineEnabled(true);
        parser.count();
        compareTimeline(parser, fullScan(path, nullptr), 0);

        // The hidden rows stay a number of rows; after the filter changes they are other lines.
        parser.hideCounted();
        fixture::append(path, journal(1000, 6, 86400 * 2));
        FilterPack noErrors;
        noErrors.checkPriorities = true;
        noErrors.priorities = {Event::Unknown, Event::Emergency, Event::Alert, Event::Critical, Event::Warning,
                             Event::Notice, Event::Info, Event::Debug};
        parser.setFilter(noErrors);
        const std::vector<Row> rows = fullScan(path, &noErrors);
        const std::size_t base = std::size_t(parser.indexBase());
        QVERIFY(base < rows.size());
        QCOMPARE(parser.count(), int(rows.size() - base));
        compareTimeline(parser, rows, base);
        compareGoto(parser, rows, base);

        // Without time marks going to a time counts again with them.
        LogParser plain(path);
        plain.setTimeMarksEnabled(false);
        plain.count();
        compareGoto(plain, fullScan(path, nullptr), 0);
        QVERIFY(plain.rowAtTime(QDateTime()) == -1 && LogParser(newPath()).rowAtTime(kStart) == -1);
    }
};

NIMB_PARSING_TEST_MAIN(TestEventTimes)

#include "test_eventtimes.moc"
