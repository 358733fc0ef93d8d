// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later
#include "FilteringLogParser.h"
#include "LineParser.h"
#include "LogParser.h"
#include "ParsingFixture.h"
#include "TimedJournal.h"

#include <QTemporaryDir>

#include <functional>

// Going to a time and the timeline, against parsing every line of the file.
namespace
{
using namespace timed;

std::vector<Row> fullScan(const QString &path, const FilterPack *filter)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? timed::fullScan(file.readAll(), filter) : std::vector<Row>();
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
