// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "FilteringLogParser.h"
#include "LogParser.h"
#include "ParsingFixture.h"
#include "SummaryParser.h"

#include <QTemporaryDir>

#include <atomic>
#include <functional>

namespace
{
using Make = std::function<std::unique_ptr<AbstractLogParser>(const QString &)>;

// Counting every line and filtering with an empty filter must agree on every file, with
// any number of workers.
const QVector<Make> kKinds{[](const QString &path) {
                               auto parser = std::make_unique<LogParser>(path);
                               parser->setWorkerCount(3);
                               return parser;
                           },
                           [](const QString &path) {
                               auto parser = std::make_unique<FilteringLogParser>(path);
                               parser->setWorkerCount(2);
                               return parser;
                           }};

QStringList allIds(AbstractLogParser &parser)
{
    auto result = parser.loadAll();
    return result.first ? fixture::ids(std::move(result.second)) : QStringList();
}
}

class TestLogParsers : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    int m_files = 0;
    QString newPath() { return m_dir.filePath(QStringLiteral("journal%1").arg(++m_files)); }

private slots:
    void everyWorkerCountFindsTheSameLines()
    {
        const QString path = newPath();
        QStringList valid;
        fixture::write(path, fixture::journal(400, QStringLiteral("e"), &valid));
        // Odd lines are errors.
        const QStringList errors = valid.filter(QRegularExpression(QStringLiteral("[13579]$")));

        FilterPack onlyErrors;
        onlyErrors.checkPriorities = true;
        onlyErrors.priorities = {Event::Error};
        for (unsigned workers : {1u, 2u, 4u}) {
            FilteringLogParser parser(path);
            parser.setWorkerCount(workers);
            QCOMPARE(parser.count(), valid.size());
            QVector<quint32> numbers;
            QCOMPARE(fixture::ids(parser.load(100, 50).second, &numbers), valid.mid(100, 50));
            QVERIFY(numbers.first() == 101u && numbers.last() == 150u);
            QCOMPARE(allIds(parser), valid);
            parser.setFilter(onlyErrors);
            QCOMPARE(parser.count(), errors.size());
            QCOMPARE(allIds(parser), errors);
        }
    }

    void longLinesSingleLinesAndMissingFiles()
    {
        const QString path = newPath();
        // Longer than a page read, than a worker's search for its first line and than 64 KB.
        const QByteArray longLine = fixture::line("long", "warning", "velmo-auth", QDateTime::currentDateTime(), 70000);
        fixture::write(path, fixture::line("first") + "\n" + longLine + "\n" + fixture::line("last"));
        for (const Make &make : kKinds)
            QCOMPARE(allIds(*make(path)), QStringList({"first", "long", "last"}));
        LogParser parser(path);
        QCOMPARE(QByteArray::fromStdString(parser.loadSingleString(1)), longLine);
        QVERIFY(QFile::remove(path));
        QCOMPARE(parser.count(), -1);
        QVERIFY(!parser.load(0, 1).first && !parser.loadAll().first && !parser.loadSingle(0) && !parser.isJournal());

        // One line: every inner boundary of four workers falls at the end of the file.
        for (const QByteArray &ending : {QByteArray("\n"), QByteArray()}) {
            const QString single = newPath();
            fixture::write(single, fixture::line("only", "notice", "velmo-usb", QDateTime::currentDateTime()) + ending);
            FilteringLogParser split(single);
            split.setWorkerCount(4);
            QCOMPARE(split.count(), 1);
        }
    }

    void aScanStopsAndTakesInGrowthAsItGoes()
    {
        for (const Make &make : kKinds) {
            const QString path = newPath();
            QStringList expected;
            fixture::write(path, fixture::journal(3000, QStringLiteral("a"), &expected));
            const QByteArray more = fixture::journal(40, QStringLiteral("b"), &expected);
            auto parser = make(path);
            bool stopping = true;
            std::atomic<bool> grown{false};
            QVector<int> seen;
            // Direct: the hook runs on the scanning thread while the scan goes on.
            connect(parser.get(), &AbstractLogParser::percentRead, parser.get(), [&](int percent) {
                seen.append(percent);
                if (stopping && percent >= 30)
                    parser->setStopFlag(true);
                if (!stopping && percent >= 50 && !grown.exchange(true))
                    fixture::append(path, more);
            }, Qt::DirectConnection);
            const int partial = parser->count();
            QVERIFY2(partial > 0 && partial < 3000 && std::is_sorted(seen.begin(), seen.end()),
                     qPrintable(QString::number(partial)));
            QCOMPARE(parser->malformedLineCount(), -1);
            // The next count completes, with the growth it met on the way.
            stopping = false;
            parser->setStopFlag(false);
            QCOMPARE(parser->count(), expected.size());
            QVERIFY(grown && seen.last() >= 95 && parser->count() == expected.size());
            // A line caught half-written is taken once it is complete.
            const QByteArray late = fixture::line("late");
            fixture::append(path, late.left(40));
            QCOMPARE(parser->count(), expected.size());
            fixture::append(path, late.mid(40) + "\n");
            // A complete last line without its line feed counts, and only once.
            fixture::append(path, fixture::line("unfed"));
            expected << "late" << "unfed";
            QCOMPARE(parser->count(), expected.size());
            fixture::append(path, "\n" + fixture::line("next") + "\n");
            expected << "next";
            QCOMPARE(parser->count(), expected.size());
            QCOMPARE(allIds(*parser), expected);
            // Lines that are no event are told apart from blank ones and from a last one
            // still being written.
            const int broken = 3000 + 40 + 3 - expected.size();
            QCOMPARE(parser->malformedLineCount(), broken);
            fixture::append(path, "garbage\n\n  \n{\"half\": \n" + fixture::line("z").left(30));
            QCOMPARE(parser->count(), expected.size());
            QCOMPARE(parser->malformedLineCount(), broken + 2);
        }
    }

    void hiddenLinesShiftTheRowsUntilTheFileIsReplaced()
    {
        for (const Make &make : kKinds) {
            const QString path = newPath();
            QStringList first, second, shrunk, replaced;
            fixture::write(path, fixture::journal(6, QStringLiteral("h"), &first));
            auto parser = make(path);
            QCOMPARE(parser->count(), 5);
            parser->hideCounted();
            QCOMPARE(parser->count(), 0);
            fixture::append(path, fixture::journal(3, QStringLiteral("n"), &second));
            QCOMPARE(parser->count(), 3);
            // Rows and their numbers start after the hidden lines.
            QVector<quint32> numbers;
            QCOMPARE(fixture::ids(parser->load(1, 2).second, &numbers), second.mid(1));
            QVERIFY(numbers == QVector<quint32>({2, 3}) && parser->loadSingle(0)->messageId == second[0]);
            parser->showAll();
            QCOMPARE(parser->count(), 8);
            QCOMPARE(fixture::ids(parser->load(4, 2).second), QStringList({first[4], second[0]}));

            // Shrunk in place, then replaced by another file past the old size: nothing of
            // the old file stays hidden.
            parser->hideCounted();
            fixture::write(path, fixture::journal(3, QStringLiteral("r"), &shrunk));
            QCOMPARE(allIds(*parser), shrunk);
            const QString other = newPath();
            fixture::write(other, fixture::journal(300, QStringLiteral("replacement"), &replaced));
            QVERIFY(QFile::remove(path) && QFile::rename(other, path));
            QCOMPARE(parser->count(), replaced.size());
            QCOMPARE(allIds(*parser), replaced);
        }
    }

    void summaryCountsRecentWindows()
    {
        // As the logger writes it: with the offset from UTC.
        const QDateTime now = QDateTime::currentDateTime().toOffsetFromUtc(3 * 3600);
        const QString path = newPath();
        QByteArray bytes = "not json\n{\"PRIORITY\":\"info\",\"ISODATE\":\"garbage\",\"MSG\":{\"velmo-auth\":{}}}\n";
        const QVector<std::tuple<const char *, const char *, QDateTime>> lines{
            {"info", "velmo-auth", now.addSecs(-30 * 60)}, {"info", "velmo-auth", now.addSecs(-3 * 3600)},
            {"info", "velmo-auth", now.addDays(-3)},       {"info", "velmo-auth", now.addDays(-8)},
            {"info", "velmo-auth", now.addSecs(3600)},     {"info", "some-daemon", now.addSecs(-600)},
            {"loud", "velmo-auth", now.addSecs(-600)},     {"err", "velmo-usb", now.addDays(-2)}};
        for (const auto &line : lines)
            bytes += fixture::line("x", std::get<0>(line), std::get<1>(line), std::get<2>(line)) + '\n';
        fixture::write(path, bytes);

        MapForCounts expected;
        expected[Event::Info]["velmo-auth"] = WindowCounts{1, 2, 3};
        expected[Event::Info]["unrecognized"] = WindowCounts{1, 1, 1};
        expected[Event::Error]["velmo-usb"] = WindowCounts{0, 0, 1};
        for (unsigned workers : {1u, 2u, 4u}) {
            SummaryParser parser(path);
            parser.setWorkerCount(workers);
            QCOMPARE(parser.countForSummary(), expected);
        }
        QCOMPARE(SummaryParser(newPath()).countForSummary(), MapForCounts());
    }

    void journalTestLooksForAJsonObject()
    {
        const QVector<QPair<QByteArray, bool>> cases{{"", false}, {"plain text\n{}\n[1, 2]\n\"text\"\n", false},
                                                     {"\n\n   \n" + fixture::line("a") + "\n", true},
                                                     {"half-written lin\n{\"any\": 1}", true}};
        for (const auto &[content, journal] : cases) {
            const QString path = newPath();
            fixture::write(path, content);
            QVERIFY2(LogParser(path).isJournal() == journal, content.constData());
        }
    }
};

NIMB_PARSING_TEST_MAIN(TestLogParsers)
#include "test_logparsers.moc"
