#include "FilteringLogParser.h"
#include "LineParser.h"
#include "LineReader.h"
#include "LogParser.h"
#include "ParsingFixture.h"
#include "SummaryParser.h"

#include <QTemporaryDir>

#include <atomic>
#include <functional>

namespace
{
using Make = std::function<std::unique_ptr<AbstractLogParser>(const QString &)>;

// The sequential parser and the parallel one must agree on every file.
const QVector<Make> kKinds{[](const QString &path) { return std::make_unique<LogParser>(path); },
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
    void lineReaderHandlesLongAndUnterminatedLines()
    {
        const QString path = newPath();
        const QByteArray longLine(10000, 'y');
        fixture::write(path, "a\n" + longLine + "\n\nlast");
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        LineReader reader(file, 4096);
        QByteArray line;
        for (const auto &entry : QVector<QPair<qint64, QByteArray>>{{0, "a"}, {2, longLine}, {10003, ""}, {10004, "last"}}) {
            QCOMPARE(reader.position(), entry.first);
            QVERIFY(reader.readLine(&line));
            QCOMPARE(line, entry.second);
        }
        QVERIFY(!reader.lastLineTerminated());
        QVERIFY(!reader.readLine(&line) && reader.atEnd());
        QVERIFY(reader.seek(2) && reader.readLine(&line) && line == longLine && reader.lastLineTerminated());
    }

    void everyWorkerCountFindsTheSameLines()
    {
        const QString path = newPath();
        QStringList valid, errors;
        fixture::write(path, fixture::journal(400, QStringLiteral("e"), &valid));
        std::copy_if(valid.begin(), valid.end(), std::back_inserter(errors),
                     [](const QString &id) { return id.mid(1).toInt() % 2; });
        LogParser sequential(path);
        QCOMPARE(sequential.count(), valid.size());
        QCOMPARE(allIds(sequential), valid);

        FilterPack onlyErrors;
        onlyErrors.checkPriorities = true;
        onlyErrors.priorities = {Event::Error};
        for (unsigned workers : {1u, 2u, 3u, 4u, 7u}) {
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

    void brokenLinesHaveNoRowAndAMissingFileNoRows()
    {
        const QString path = newPath();
        const QByteArray third = fixture::line("third", "warning");
        fixture::write(path, fixture::line("first") + "\nnot a journal line\n" + third + "\n");
        for (const Make &make : kKinds) {
            auto parser = make(path);
            QCOMPARE(parser->count(), 2);
            QVector<quint32> numbers;
            QCOMPARE(fixture::ids(parser->load(0, 2).second, &numbers), QStringList({"first", "third"}));
            QCOMPARE(numbers, QVector<quint32>({1, 2}));
        }
        LogParser parser(path);
        QCOMPARE(parser.loadSingle(1)->messageId, QStringLiteral("third"));
        QCOMPARE(QByteArray::fromStdString(parser.loadSingleString(1)), third);
        QVERIFY(!parser.loadSingle(2) && parser.loadSingleString(-1).empty());
        QVERIFY(QFile::remove(path));
        QCOMPARE(parser.count(), -1);
        QVERIFY(!parser.load(0, 1).first && !parser.loadAll().first);
        QVERIFY(!parser.loadSingle(0) && parser.loadSingleString(0).empty());

        // One line: every inner boundary of four workers falls at the end of the file.
        for (const QByteArray &ending : {QByteArray("\n"), QByteArray()}) {
            const QString single = newPath();
            fixture::write(single, fixture::line("only", "notice", "velmo-usb", QDateTime::currentDateTime()) + ending);
            FilteringLogParser split(single);
            split.setWorkerCount(4);
            QCOMPARE(split.count(), 1);
            SummaryParser summary(single);
            summary.setWorkerCount(4);
            QCOMPARE(summary.countForSummary().value(Event::Notice).value("velmo-usb").week, 1u);
        }
    }

    void growthIsCountedOnce()
    {
        for (const Make &make : kKinds) {
            const QString path = newPath();
            QStringList expected;
            fixture::write(path, fixture::journal(3000, QStringLiteral("a"), &expected));
            const QByteArray more = fixture::journal(40, QStringLiteral("b"), &expected);
            auto parser = make(path);
            std::atomic<bool> grown{false};
            // Direct: the file grows while the scan is still running on its thread.
            connect(parser.get(), &AbstractLogParser::percentRead, parser.get(), [&](int percent) {
                if (percent >= 50 && !grown.exchange(true))
                    fixture::append(path, more);
            }, Qt::DirectConnection);
            QCOMPARE(parser->count(), expected.size());
            QVERIFY(grown && parser->count() == expected.size());
            fixture::append(path, fixture::journal(20, QStringLiteral("c"), &expected));
            QCOMPARE(parser->count(), expected.size());
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
        }
    }

    void replacedFileIsCountedAfresh()
    {
        for (const Make &make : kKinds) {
            const QString path = newPath();
            fixture::write(path, fixture::journal(200));
            auto parser = make(path);
            QVERIFY(parser->count() > 100);
            parser->hideCounted();
            // Shrunk; then truncated in place and refilled, or replaced by another file,
            // past the old size. Nothing of the old file stays hidden.
            QStringList lines;
            fixture::write(path, fixture::journal(20, QStringLiteral("r"), &lines));
            QCOMPARE(parser->count(), lines.size());
            QCOMPARE(fixture::ids(parser->load(0, lines.size()).second), lines);
            lines.clear();
            fixture::write(path, fixture::journal(60, QStringLiteral("refill"), &lines));
            QCOMPARE(allIds(*parser), lines);
            lines.clear();
            const QString other = newPath();
            fixture::write(other, fixture::journal(90, QStringLiteral("replacement"), &lines));
            QVERIFY(QFile::remove(path) && QFile::rename(other, path));
            QCOMPARE(parser->count(), lines.size());
            QCOMPARE(allIds(*parser), lines);
        }
    }

    void progressRisesAndTheStopFlagEndsTheScan()
    {
        const QString path = newPath();
        QStringList expected;
        fixture::write(path, fixture::journal(3000, QStringLiteral("s"), &expected));
        for (const Make &make : kKinds) {
            auto parser = make(path);
            parser->setStopFlag(true);
            QCOMPARE(parser->count(), 0);
            parser->setStopFlag(false);
            QVector<int> seen;
            connect(parser.get(), &AbstractLogParser::percentRead, parser.get(), [&seen](int percent) {
                seen.append(percent);
            }, Qt::DirectConnection);
            QCOMPARE(parser->count(), expected.size());
            QVERIFY(!seen.isEmpty() && std::is_sorted(seen.begin(), seen.end()));
            QVERIFY2(seen.last() >= 95 && seen.last() <= 100, qPrintable(QString::number(seen.last())));
            // Apart from the deliberate repetition of 0, every value is new.
            const QVector<int> beyondZero = seen.mid(seen.lastIndexOf(0) + 1);
            QVERIFY(std::adjacent_find(beyondZero.begin(), beyondZero.end()) == beyondZero.end());

            // Stopped part-way, the next count completes.
            auto interrupted = make(path);
            AbstractLogParser *raw = interrupted.get();
            const auto connection = connect(raw, &AbstractLogParser::percentRead, raw, [raw](int percent) {
                if (percent >= 30)
                    raw->setStopFlag(true);
            }, Qt::DirectConnection);
            const int partial = interrupted->count();
            QVERIFY2(partial > 0 && partial < expected.size(), qPrintable(QString::number(partial)));
            disconnect(connection);
            interrupted->setStopFlag(false);
            QCOMPARE(allIds(*interrupted), expected);
        }
    }

    void hiddenLinesShiftTheRows()
    {
        for (const Make &make : kKinds) {
            const QString path = newPath();
            QStringList first, second;
            fixture::write(path, fixture::journal(6, QStringLiteral("h"), &first));
            auto parser = make(path);
            QCOMPARE(parser->count(), 5);
            parser->hideCounted();
            QCOMPARE(parser->count(), 0);
            fixture::append(path, fixture::journal(3, QStringLiteral("n"), &second));
            QCOMPARE(parser->count(), 3);
            QVector<quint32> numbers;
            QCOMPARE(fixture::ids(parser->load(0, 3).second, &numbers), second);
            QCOMPARE(numbers, QVector<quint32>({1, 2, 3}));
            QCOMPARE(parser->loadSingle(1)->messageId, second[1]);
            parser->showAll();
            QCOMPARE(parser->count(), 8);
            QCOMPARE(fixture::ids(parser->load(4, 2).second), QStringList({first[4], second[0]}));
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
            fixture::append(path, fixture::line("y", "info", "velmo-auth", now.addSecs(-60)) + '\n');
            WindowCounts &auth = expected[Event::Info]["velmo-auth"];
            auth = WindowCounts{auth.hour + 1, auth.day + 1, auth.week + 1};
            QCOMPARE(parser.countForSummary(), expected);
        }
        QCOMPARE(SummaryParser(newPath()).countForSummary(), MapForCounts());
    }

    void journalTestLooksForAJsonObject()
    {
        auto test = [this](const QByteArray &content) {
            const QString path = newPath();
            fixture::write(path, content);
            return LogParser(path).isJournal();
        };
        QVERIFY(!LogParser(m_dir.filePath("missing")).isJournal());
        QVERIFY(!test(""));
        QVERIFY(!test("plain text\nmore text\n"));
        QVERIFY(!test("{}\n[1, 2]\n\"text\"\n"));
        QVERIFY(test("\n\n   \n" + fixture::line("a") + "\n"));
        QVERIFY(test("half-written lin\n{\"any\": 1}"));
    }
};

NIMB_PARSING_TEST_MAIN(TestLogParsers)
#include "test_logparsers.moc"
