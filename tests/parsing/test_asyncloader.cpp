#include "AsyncLoader.h"
#include "FilteringLogParser.h"
#include "LogParser.h"
#include "ParsingFixture.h"
#include "SummaryParser.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThread>

#include <mutex>

// Takes the loader's signals over to the test's thread, so that the spies are only
// ever touched there.
class Relay : public QObject
{
    Q_OBJECT
signals:
    void countRequest();
    void countFinished(int count);
    void loadFailed();
    void loadFinished(std::vector<Event *> events);
    void percentRead(int percent);
    void countsForSummaryFinished(MapForCounts counts);
};

class TestAsyncLoader : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

    struct Running {
        QThread thread;
        AsyncLoader *loader;
        Relay relay;

        explicit Running(AbstractLogParser *parser)
            : loader(new AsyncLoader(parser))
        {
            loader->moveToThread(&thread);
            connect(&relay, &Relay::countRequest, loader, &AsyncLoader::asyncCount);
            connect(loader, &AsyncLoader::countFinished, &relay, &Relay::countFinished);
            connect(loader, &AsyncLoader::loadFailed, &relay, &Relay::loadFailed);
            connect(loader, &AsyncLoader::loadFinished, &relay, &Relay::loadFinished);
            connect(loader, &AsyncLoader::percentRead, &relay, &Relay::percentRead);
            connect(loader, &AsyncLoader::countsForSummaryFinished, &relay, &Relay::countsForSummaryFinished);
            thread.start();
        }
        ~Running()
        {
            thread.quit();
            thread.wait();
            delete loader;
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
        QVector<int> order; // percentages, then -1 for the count
        connect(&running.relay, &Relay::percentRead, this, [&order](int percent) { order.append(percent); });
        connect(&running.relay, &Relay::countFinished, this, [&order] { order.append(-1); });

        emit running.relay.countRequest();
        QVERIFY(counts.wait());
        QCOMPARE(counts.at(0).at(0).toInt(), valid.size());
        // Progress leaves while the scan runs, not after it.
        QVERIFY(order.size() > 2 && order.last() == -1 && order.at(order.size() - 2) >= 95);

        QMetaObject::invokeMethod(running.loader, "asyncLoad", Qt::QueuedConnection, Q_ARG(int, 10), Q_ARG(int, 5));
        QVERIFY(pages.wait());
        QVector<quint32> numbers;
        QCOMPARE(fixture::ids(pages.at(0).at(0).value<std::vector<Event *>>(), &numbers), valid.mid(10, 5));
        QCOMPARE(numbers.first(), 11u);

        const std::unique_ptr<Event> single = running.loader->loadSingleBlocking(3);
        QVERIFY(single && single->messageId == valid[3]);
        QVERIFY(QByteArray::fromStdString(running.loader->loadSingleStringBlocking(3)).contains(valid[3].toUtf8()));
        // On the loader's own thread the blocking helper must not wait for itself.
        std::unique_ptr<Event> fromInside;
        std::mutex handOver;
        AsyncLoader *loader = running.loader;
        QMetaObject::invokeMethod(loader, [&] {
            std::lock_guard<std::mutex> lock(handOver);
            fromInside = loader->loadSingleBlocking(4);
        }, Qt::BlockingQueuedConnection);
        {
            std::lock_guard<std::mutex> lock(handOver);
            QVERIFY(fromInside && fromInside->messageId == valid[4]);
        }

        QVERIFY(QFile::remove(path));
        QMetaObject::invokeMethod(running.loader, "asyncLoad", Qt::QueuedConnection, Q_ARG(int, 0), Q_ARG(int, 5));
        QVERIFY(failures.wait());
        emit running.relay.countRequest();
        QVERIFY(counts.wait());
        QVERIFY(counts.at(1).at(0).toInt() == -1 && pages.size() == 1);
    }

    void summaryCountsTravelAsAValue()
    {
        const QString path = m_dir.filePath("summary");
        fixture::write(path, fixture::line("a", "alert", "velmo-usb", QDateTime::currentDateTimeUtc().addSecs(-10)) + '\n');
        SummaryParser summary(path);
        Running running(&summary);
        QSignalSpy results(&running.relay, &Relay::countsForSummaryFinished);
        QMetaObject::invokeMethod(running.loader, "asyncCountForSummary", Qt::QueuedConnection);
        QVERIFY(results.wait());
        QCOMPARE(results.at(0).at(0).value<MapForCounts>().value(Event::Alert).value("velmo-usb"), (WindowCounts{1, 1, 1}));
    }
};

NIMB_PARSING_TEST_MAIN(TestAsyncLoader)
#include "test_asyncloader.moc"
