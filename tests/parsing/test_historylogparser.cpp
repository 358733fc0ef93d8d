// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later
#include "AsyncLoader.h"
#include "CompressedLogFile.h"
#include "FilteringLogParser.h"
#include "HistoryLogParser.h"
#include "LogParser.h"
#include "ParsingFixture.h"

#include <KCompressionDevice>

#include <QBuffer>
#include <QProcess>
#include <QSignalSpy>

#include <optional>
#include <QTemporaryDir>
#include <QThread>

// The history as one parser, against its files read one by one.
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

FilterPack errors()
{
    FilterPack filter;
    filter.checkPriorities = true;
    filter.priorities = {Event::Error};
    return filter;
}

// The events of the files in order, each file unpacked and parsed on its own.
QStringList oneByOne(const QStringList &paths, const FilterPack *filter)
{
    QStringList ids;
    for (const QString &path : paths) {
        CompressedLogFile file(path);
        if (!file.unpack())
            continue;
        std::unique_ptr<AbstractLogParser> parser;
        if (filter) {
            auto filtering = std::make_unique<FilteringLogParser>(file.readablePath());
            filtering->setFilter(*filter);
            parser = std::move(filtering);
        } else {
            parser = std::make_unique<LogParser>(file.readablePath());
        }
        ids += fixture::ids(parser->load(0, std::max(0, parser->count())).second);
    }
    return ids;
}

// Another process rotates the journal, as the rotation tool does.
void run(const QString &script, const QString &live, const QByteArray &fresh)
{
    QProcess process;
    process.start(QStringLiteral("/bin/sh"),
                  {QStringLiteral("-c"), script, QStringLiteral("sh"), live, QString::fromUtf8(fresh)});
    QVERIFY(process.waitForFinished(10000));
    QCOMPARE(process.exitCode(), 0);
}
}

class TestHistoryLogParser : public QObject
{
    Q_OBJECT

    static void compare(HistoryLogParser &history, const QStringList &expected)
    {
        QCOMPARE(history.count(), int(expected.size()));
        for (int first = 0; first < expected.size(); first += 97) {
            QVector<quint32> numbers;
            QCOMPARE(fixture::ids(history.load(first, 150).second, &numbers), expected.mid(first, 150));
            QCOMPARE(numbers.first(), quint32(first + 1));
            const std::unique_ptr<Event> single = history.loadSingle(first);
            QVERIFY(single);
            QCOMPARE(single->messageId, expected[first]);
            QCOMPARE(single->number, quint32(first + 1));
            QVERIFY(QByteArray::fromStdString(history.loadSingleString(first)).contains('"' + expected[first].toUtf8() + '"'));
        }
        QVERIFY(!history.loadSingle(expected.size()));
    }

private slots:
    void aLoaderReadsTheHistoryAsItsFiles_data()
    {
        QTest::addColumn<bool>("filtered");
        QTest::newRow("all events") << false;
        QTest::newRow("filtered") << true;
    }

    void aLoaderReadsTheHistoryAsItsFiles()
    {
        QFETCH(bool, filtered);
        QTemporaryDir dir;
        const QString live = dir.filePath(QStringLiteral("events"));
        fixture::write(live + ".2.gz", gzipped(fixture::journal(3000, QStringLiteral("a"))));
        fixture::write(live + ".1", fixture::journal(120, QStringLiteral("b")));
        fixture::write(live, fixture::journal(90, QStringLiteral("c")));
        const FilterPack filter = errors();
        const QStringList expected = oneByOne(JournalHistory::files(live), filtered ? &filter : nullptr);
        QVERIFY(expected.size() > 1000);

        auto parser = filtered ? std::make_unique<HistoryLogParser>(live, FilterPack()) : std::make_unique<HistoryLogParser>(live);
        if (filtered)
            parser->setFilter(filter);
        AsyncLoader loader(parser.get());
        struct Running : QThread {
            ~Running() override
            {
                quit();
                wait();
            }
        } thread;
        loader.moveToThread(&thread);
        thread.start();
        // The answers come over to this thread, as they do to a tab.
        QObject receiver;
        QList<int> counted;
        QList<int> progress;
        std::optional<std::vector<Event *>> loaded;
        bool failed = false;
        connect(&loader, &AsyncLoader::countFinished, &receiver, [&](int count) { counted.append(count); });
        connect(&loader, &AsyncLoader::percentRead, &receiver, [&](int percent) { progress.append(percent); });
        connect(&loader, &AsyncLoader::loadFinished, &receiver, [&](std::vector<Event *> events) { loaded = events; });
        connect(&loader, &AsyncLoader::loadFailed, &receiver, [&] { failed = true; });
        QMetaObject::invokeMethod(&loader, "asyncCheckedCount", Qt::QueuedConnection);
        QTRY_COMPARE_WITH_TIMEOUT(counted.size(), 1, 20000);
        QCOMPARE(counted.at(0), int(expected.size()));
        // Unpacking and reading both report, within bounds.
        QVERIFY(progress.size() >= 2);
        for (const int percent : qAsConst(progress))
            QVERIFY(percent >= 0 && percent <= 100);
        QMetaObject::invokeMethod(&loader, "asyncLoad", Qt::QueuedConnection, Q_ARG(int, int(expected.size()) - 30),
                                  Q_ARG(int, 100));
        QTRY_VERIFY_WITH_TIMEOUT(loaded || failed, 20000);
        QVERIFY(!failed);
        QCOMPARE(fixture::ids(*loaded), expected.mid(expected.size() - 30));
        thread.quit();
        QVERIFY(thread.wait(20000));
        compare(*parser, expected);
        QVERIFY(parser->failures().isEmpty());
    }

    void followsRotations_data()
    {
        QTest::addColumn<QString>("rotate");
        QTest::newRow("rename and create") << QStringLiteral("mv \"$1.1\" \"$1.2\" && mv \"$1\" \"$1.1\" && printf '%s' \"$2\" > \"$1\"");
        QTest::newRow("copy and truncate")
            << QStringLiteral("mv \"$1.1\" \"$1.2\" && cp \"$1\" \"$1.1\" && : > \"$1\" && printf '%s' \"$2\" >> \"$1\"");
    }

    void followsRotations()
    {
        QFETCH(QString, rotate);
        QTemporaryDir dir;
        const QString live = dir.filePath(QStringLiteral("events"));
        fixture::write(live + ".1", fixture::journal(150, QStringLiteral("a")));
        fixture::write(live, fixture::journal(80, QStringLiteral("b")));
        HistoryLogParser history(live);
        compare(history, oneByOne({live + ".1", live}, nullptr));

        fixture::append(live, fixture::journal(40, QStringLiteral("g")));
        compare(history, oneByOne({live + ".1", live}, nullptr));
        run(rotate, live, fixture::journal(25, QStringLiteral("n")));
        const QStringList expected = oneByOne({live + ".2", live + ".1", live}, nullptr);
        QCOMPARE(JournalHistory::files(live), (QStringList{live + ".2", live + ".1", live}));
        compare(history, expected);
        QVERIFY(expected.last().startsWith(QLatin1Char('n')) && expected.first().startsWith(QLatin1Char('a')));
    }

    void damagedRotationIsReportedAndTheRestShown()
    {
        QTemporaryDir dir;
        const QString live = dir.filePath(QStringLiteral("events"));
        const QByteArray packed = gzipped(fixture::journal(500, QStringLiteral("a")));
        fixture::write(live + ".3.gz", packed.left(packed.size() / 2));
        fixture::write(live + ".2.gz", gzipped(fixture::journal(60, QStringLiteral("b"))));
        fixture::write(live + ".1", fixture::journal(70, QStringLiteral("c")));
        fixture::write(live, fixture::journal(30, QStringLiteral("d")));
        const FilterPack filter = errors();
        HistoryLogParser history(live, filter);
        // A stopped unpacking is no damage, and the next count starts it again.
        history.setStopFlag(true);
        history.count();
        QVERIFY(history.failures().isEmpty());
        history.setStopFlag(false);
        QCOMPARE(history.checkFile(), AbstractLogParser::FileCheck::Journal);
        const QStringList expected = oneByOne({live + ".2.gz", live + ".1", live}, &filter);
        QVERIFY(expected.first().startsWith(QLatin1Char('b')));
        compare(history, expected);
        QCOMPARE(history.failures(), QStringList{live + ".3.gz"});

        // A history whose only files are damaged is no journal.
        QVERIFY(QFile::remove(live) && QFile::remove(live + ".1") && QFile::remove(live + ".2.gz"));
        QCOMPARE(history.count(), -1);
        QVERIFY(history.checkFile() != AbstractLogParser::FileCheck::Journal);
    }
};

NIMB_PARSING_TEST_MAIN(TestHistoryLogParser)

#include "test_historylogparser.moc"
