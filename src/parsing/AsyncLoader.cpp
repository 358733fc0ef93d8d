// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "AsyncLoader.h"

#include "AbstractLogParser.h"
#include "CompressedLogFile.h"
#include "SummaryParser.h"

#include <QMetaMethod>
#include <QThread>

#include <mutex>

void AsyncLoader::registerMetaTypes()
{
    static const bool registered = [] {
        qRegisterMetaType<std::vector<Event *>>("std::vector<Event*>");
        qRegisterMetaType<std::string>("std::string");
        qRegisterMetaType<MapForCounts>("MapForCounts");
        qRegisterMetaType<Event::Priority>("Event::Priority");
        qRegisterMetaType<std::vector<AbstractLogParser::TimelineEntry>>(
            "std::vector<AbstractLogParser::TimelineEntry>");
        return true;
    }();
    Q_UNUSED(registered)
}

AsyncLoader::AsyncLoader(AbstractLogParser *parser, QObject *parent)
    : QObject(parent)
    , m_parser(parser)
{
    registerMetaTypes();
    // Direct, so that progress leaves from the thread that scans: the loader's own
    // event loop is busy with that very scan and would deliver it only afterwards.
    connect(m_parser, &AbstractLogParser::percentRead, this, &AsyncLoader::percentRead, Qt::DirectConnection);
}

void AsyncLoader::asyncCount()
{
    Q_EMIT countFinished(m_parser->count());
}

void AsyncLoader::asyncCheckedCount()
{
    const AbstractLogParser::FileCheck check = m_parser->checkFile();
    if (check != AbstractLogParser::FileCheck::Journal) {
        Q_EMIT fileRefused(static_cast<int>(check));
        return;
    }
    asyncCount();
}

void AsyncLoader::asyncRowAtTime(const QDateTime &time)
{
    Q_EMIT rowAtTimeFound(time, m_parser->rowAtTime(time));
}

void AsyncLoader::asyncTimeline(int bucket)
{
    m_parser->setTimelineEnabled(true);
    const int count = m_parser->count();
    Q_EMIT timelineFinished(m_parser->timeline(static_cast<AbstractLogParser::TimelineBucket>(bucket)), count);
}

void AsyncLoader::asyncCountForSummary()
{
    auto *summary = qobject_cast<SummaryParser *>(m_parser);
    Q_EMIT countsForSummaryFinished(summary ? summary->countForSummary() : MapForCounts());
}

void AsyncLoader::asyncLoad(int position, int count)
{
    auto result = m_parser->load(position, count);
    if (!result.first) {
        Q_EMIT loadFailed();
        return;
    }
    // Nobody to take ownership: the events would be lost.
    if (!isSignalConnected(QMetaMethod::fromSignal(&AsyncLoader::loadFinished))) {
        qDeleteAll(result.second);
        return;
    }
    Q_EMIT loadFinished(std::move(result.second));
}

void AsyncLoader::asyncUnpack(CompressedLogFile *file)
{
    const bool unpacked = file->unpack([this](int percent) { Q_EMIT percentRead(percent); });
    Q_EMIT unpackFinished(unpacked);
}

std::unique_ptr<Event> AsyncLoader::asyncLoadSingle(int position)
{
    return m_parser->loadSingle(position);
}

std::string AsyncLoader::asyncLoadSingleString(int position)
{
    return m_parser->loadSingleString(position);
}

template<typename Result, typename Call>
Result AsyncLoader::callOnLoaderThread(Call call)
{
    QThread *home = thread();
    // A blocking queued call to the own thread, or to a thread whose event loop does
    // not run, would never return.
    if (home == QThread::currentThread() || !home || !home->isRunning())
        return call();
    Result result;
    // The mutex adds nothing at run time (the call has finished when invokeMethod
    // returns) but makes the hand-over visible to race detectors, which cannot see
    // the synchronisation inside QtCore.
    std::mutex handOver;
    QMetaObject::invokeMethod(
        this,
        [&result, &call, &handOver] {
            std::lock_guard<std::mutex> lock(handOver);
            result = call();
        },
        Qt::BlockingQueuedConnection);
    std::lock_guard<std::mutex> lock(handOver);
    return result;
}

std::unique_ptr<Event> AsyncLoader::loadSingleBlocking(int position)
{
    return callOnLoaderThread<std::unique_ptr<Event>>([this, position] { return asyncLoadSingle(position); });
}

std::string AsyncLoader::loadSingleStringBlocking(int position)
{
    return callOnLoaderThread<std::string>([this, position] { return asyncLoadSingleString(position); });
}
