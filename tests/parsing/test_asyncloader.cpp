// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "AsyncLoader.h"
#include "FilteringLogParser.h"
#include "ParsingFixture.h"
#include "SummaryParser.h"

#include <QTemporaryDir>

#include <future>

// Takes the loader's signals over to the test's thread, so that the spies are only
// ever touched there.
class Relay : public QObject
{
    Q_OBJECT
signals:
    void countFinished(int count);
    void loadFailed();
    void loadFinished(std::vector<Event *> events);
    void percentRead(int percent);
    void countsForSummaryFinished(MapForCounts counts);
    void rowAtTimeFound(const QDateTime &time, int row);
    void timelineFinished(std::vector<AbstractLogParser::TimelineEntry> entries, int count);
};

class TestAsyncLoader : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

    // The loader outlives its thread.
    struct Running {
        std::unique_ptr<AsyncLoader> loader;
        QThread thread;
        Relay relay;

        explicit Running(AbstractLogParser *parser) : loader(std::make_unique<AsyncLoader>(parser))
        {
            loader->moveToThread(&thread);
            connect(loader.get(), &AsyncLoader::countFinished, &relay, &Relay::countFinished);
            connect(loader.get(), &AsyncLoader::loadFailed, &relay, &Relay::loadFailed);
            connect(loader.get(), &AsyncLoader::loadFinished, &relay, &Relay::loadFinished);
            connect(loader.get(), &AsyncLoader::percentRead, &relay, &Relay::percentRead);
            connect(loader.get(), &AsyncLoader::countsForSummaryFinished, &relay, &Relay::countsForSummaryFinished);
            connect(loader.get(), &AsyncLoader::rowAtTimeFound, &relay, &Relay::rowAtTimeFound);
            connect(loader.get(), &AsyncLoader::timelineFinished, &relay, &Relay::timelineFinished);
            thread.start();
        }
        ~Running()
        {
            thread.quit();
            thread.wait();
        }
    };

private slots:
    void loaderServesRequestsOnItsThread()
    {
        const QString path = m_dir.filePath("events");
        QStringList valid;
        fixture::write(path, fixture::journal(3000, QStringLiteral("e"), &valid));
        // Workers report progress from threads of their own.
        FilteringLogParser parser(path);
        parser.setWorkerCount(2);
        Running running(&parser);
        QSignalSpy counts(&running.relay, &Relay::countFinished);
        QSignalSpy pages(&running.relay, &Relay::loadFinished);
        QSignalSpy failures(&running.relay, &Relay::loadFailed);
        QSignalSpy progress(&running.relay, &Relay::percentRead);

        QMetaObject::invokeMethod(running.loader.get(), "asyncCount", Qt::QueuedConnection);
        QVERIFY(counts.wait());
        QCOMPARE(counts.at(0).at(0).toInt(), valid.size());
        // Progress leaves while the scan runs, so it has arrived before the count.
        QVERIFY(progress.size() > 1 && progress.last().at(0).toInt() >= 95);

        QMetaObject::invokeMethod(running.loader.get(), "asyncLoad", Qt::QueuedConnection, Q_ARG(int, 10), Q_ARG(int, 5));
        QVERIFY(pages.wait());
        QCOMPARE(fixture::ids(pages.at(0).at(0).value<std::vector<Event *>>()), valid.mid(10, 5));
        QVERIFY(QByteArray::fromStdString(running.loader->loadSingleStringBlocking(3)).contains(valid[3].toUtf8()));
        // On the loader's own thread the blocking helper must not wait for itself.
        std::promise<std::unique_ptr<Event>> fromInside;
        QMetaObject::invokeMethod(running.loader.get(), [&] { fromInside.set_value(running.loader->loadSingleBlocking(4)); },
                                  Qt::BlockingQueuedConnection);
        const std::unique_ptr<Event> single = fromInside.get_future().get();
        QVERIFY(single && single->messageId == valid[4]);

        // Every fixture event is at 10:00 UTC: the first row is at it, none after it.
        QSignalSpy found(&running.relay, &Relay::rowAtTimeFound);
        QSignalSpy timelines(&running.relay, &Relay::timelineFinished);
        const QDateTime ten(QDate(2024, 3, 1), QTime(10, 0), Qt::UTC);
        for (const QDateTime &time : {ten, ten.addMSecs(1)})
            QMetaObject::invokeMethod(running.loader.get(), "asyncRowAtTime", Qt::QueuedConnection, Q_ARG(QDateTime, time));
        QMetaObject::invokeMethod(running.loader.get(), "asyncTimeline", Qt::QueuedConnection,
                                  Q_ARG(int, int(AbstractLogParser::TimelineBucket::Day)));
        QVERIFY(timelines.wait());
        QVERIFY(found.size() == 2 && found.at(0).at(1).toInt() == 0 && found.at(1).at(1).toInt() == -1);
        const auto days = timelines.at(0).at(0).value<std::vector<AbstractLogParser::TimelineEntry>>();
        QVERIFY(days.size() == 1 && days[0].startMsecs == QDateTime(ten.date(), QTime(0, 0), Qt::UTC).toMSecsSinceEpoch());
        QVERIFY(days[0].total == valid.size() && timelines.at(0).at(1).toInt() == valid.size());

        QVERIFY(QFile::remove(path));
        QMetaObject::invokeMethod(running.loader.get(), "asyncLoad", Qt::QueuedConnection, Q_ARG(int, 0), Q_ARG(int, 5));
        QVERIFY(failures.wait() && pages.size() == 1);

        // Summary counts travel as a value.
        fixture::write(path, fixture::line("a", "alert", "velmo-usb", QDateTime::currentDateTimeUtc().addSecs(-10)) + '\n');
        SummaryParser summary(path);
        Running second(&summary);
        QSignalSpy results(&second.relay, &Relay::countsForSummaryFinished);
        QMetaObject::invokeMethod(second.loader.get(), "asyncCountForSummary", Qt::QueuedConnection);
        QVERIFY(results.wait());
        QCOMPARE(results.at(0).at(0).value<MapForCounts>().value(Event::Alert).value("velmo-usb"), (WindowCounts{1, 1, 1}));
    }
};

NIMB_PARSING_TEST_MAIN(TestAsyncLoader)
#include "test_asyncloader.moc"
