// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later
#include "FilteringLogParser.h"
#include "JournalHistory.h"
#include "LogParser.h"
#include "ParsingFixture.h"
#include "TimedJournal.h"

#include <KCompressionDevice>

#include <QBuffer>
#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>

// A journal with its rotations read as one, against parsing the files one after another.
namespace
{
QByteArray gzipped(const QByteArray &data)
{
    QByteArray packed;
    KCompressionDevice device(new QBuffer(&packed), true, KCompressionDevice::GZip);
    if (device.open(QIODevice::WriteOnly)) {
        device.write(data);
        device.close();
    }
    return packed;
}

struct Kind {
    JournalHistory::MakeParser make;
    std::shared_ptr<FilterPack> filter;
};
}

class TestJournalHistory : public QObject
{
    Q_OBJECT

    // Rows, goto and timeline of the history against its files' lines in order.
    static void compare(JournalHistory &history, const QByteArray &lines, const FilterPack *filter)
    {
        const std::vector<timed::Row> rows = timed::fullScan(lines, filter);
        QCOMPARE(history.count(), int(rows.size()));
        QCOMPARE(timed::timelineOf(history, AbstractLogParser::TimelineBucket::Hour), timed::timelineOf(rows, 0, 3600000));
        for (std::size_t i = 0; i < rows.size(); i += 13) {
            if (rows[i].msecs != EventTimes::kNoTime)
                QCOMPARE(history.rowAtTime(QDateTime::fromMSecsSinceEpoch(rows[i].msecs, Qt::UTC)),
                         timed::firstAtOrAfter(rows, 0, rows[i].msecs));
        }
        // Pages that cross from one file into the next, numbered across the history.
        QStringList expected;
        for (const QByteArray &line : lines.split('\n')) {
            const std::unique_ptr<Event> event = LineParser::parseLine(line);
            if (event && (!filter || filter->match(*event)))
                expected.append(event->messageId);
        }
        for (int first = 0; first < int(rows.size()); first += 97) {
            QVector<quint32> numbers;
            QCOMPARE(fixture::ids(history.load(first, 150).second, &numbers), expected.mid(first, 150));
            QCOMPARE(numbers.first(), quint32(first + 1));
            QVERIFY(QByteArray::fromStdString(history.loadSingleString(first)).contains(
                '"' + expected[first].toUtf8() + '"'));
        }
    }

private slots:
    void filesOldestFirst()
    {
        QTemporaryDir dir;
        for (const char *name : {"ev", "ev.1", "ev.2", "ev.2.gz", "ev.10.xz", "ev-20240301.gz", "ev-20240229", "ev.old",
                                 "ev.1.bak", "other.1", "ev-2024.gz"})
            fixture::write(dir.filePath(name), "{}\n");
        QStringList expected;
        for (const char *name : {"ev.10.xz", "ev.2", "ev.1", "ev-20240229", "ev-20240301.gz", "ev"})
            expected.append(dir.filePath(name));
        QCOMPARE(JournalHistory::files(dir.filePath("ev")), expected);
        QVERIFY(QFile::remove(dir.filePath("ev")));
        expected.removeLast();
        QCOMPARE(JournalHistory::files(dir.filePath("ev")), expected);
        QVERIFY(JournalHistory::files(dir.filePath("none")).isEmpty());
    }

    void rowsCountedAcrossRotationsAndAfterTheNextRotation()
    {
        auto severe = std::make_shared<FilterPack>();
        severe->checkPriorities = true;
        severe->priorities = {Event::Error, Event::Warning, Event::Unknown};
        const std::vector<Kind> kinds{
            {[](const QString &path) { return std::unique_ptr<AbstractLogParser>(new LogParser(path)); }, nullptr},
            {[severe](const QString &path) {
                 auto parser = std::make_unique<FilteringLogParser>(path);
                 parser->setWorkerCount(2);
                 parser->setFilter(*severe);
                 return std::unique_ptr<AbstractLogParser>(std::move(parser));
             },
             severe}};
        for (const Kind &kind : kinds) {
            QTemporaryDir dir;
            const QString live = dir.filePath("events");
            // Oldest first: a packed rotation, two plain ones, the live file.
            QVector<QByteArray> generations;
            for (int i = 0; i < 4; ++i)
                generations.append(timed::journal(400, quint32(10 + i), 86400 * i));
            fixture::write(live + ".3.gz", gzipped(generations[0]));
            fixture::write(live + ".2", generations[1]);
            fixture::write(live + ".1", generations[2]);
            fixture::write(live, generations[3]);
            JournalHistory history(live, kind.make);
            history.setTimelineEnabled(true);
            QSignalSpy progress(&history, &JournalHistory::percentRead);
            compare(history, generations[0] + generations[1] + generations[2] + generations[3], kind.filter.get());
            // Progress is of the whole history: it ends near the end of the last file.
            QVERIFY(!progress.isEmpty() && progress.last().at(0).toInt() >= 90);
            for (const QList<QVariant> &percent : progress)
                QVERIFY(percent.at(0).toInt() >= 0 && percent.at(0).toInt() <= 100);

            // The live file grows, then rotates under the same names.
            const QByteArray tail = timed::journal(50, 20, 86400 * 4);
            fixture::append(live, tail);
            generations[3] += tail;
            compare(history, generations[0] + generations[1] + generations[2] + generations[3], kind.filter.get());
            fixture::write(live + ".3.gz", gzipped(generations[1]));
            QVERIFY(QFile::remove(live + ".2") && QFile::rename(live + ".1", live + ".2"));
            QVERIFY(QFile::rename(live, live + ".1"));
            generations.removeFirst();
            generations.append(timed::journal(30, 30, 86400 * 5));
            fixture::write(live, generations[3]);
            compare(history, generations[0] + generations[1] + generations[2] + generations[3], kind.filter.get());
            QVERIFY(history.failures().isEmpty() && history.partPaths().size() == 4);
        }
    }
};

NIMB_PARSING_TEST_MAIN(TestJournalHistory)

#include "test_journalhistory.moc"
