// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "AbstractLogParser.h"
#include "Event.h"
#include "MapForCounts.h"

#include <QDateTime>
#include <QMetaType>
#include <QObject>

#include <memory>
#include <string>
#include <vector>

class CompressedLogFile;

Q_DECLARE_METATYPE(std::vector<Event *>)
Q_DECLARE_METATYPE(std::string)
Q_DECLARE_METATYPE(std::vector<AbstractLogParser::TimelineEntry>)

// Runs a log's parser on the thread it lives on: requests come in as queued slot
// calls and results go out as signals. It owns nothing but the pointer to the parser.
class AsyncLoader : public QObject
{
    Q_OBJECT
public:
    // The parser must outlive the loader and must not be used by another thread meanwhile.
    explicit AsyncLoader(AbstractLogParser *parser, QObject *parent = nullptr);

    AbstractLogParser *parser() const { return m_parser; }

    // The types the signals and slots carry across threads. Safe to call repeatedly;
    // the constructor calls it.
    static void registerMetaTypes();

    // asyncLoadSingle() and asyncLoadSingleString() from any thread, waiting for the
    // result. The loader's thread must be running or not started at all; called on the
    // loader's own thread they run directly.
    std::unique_ptr<Event> loadSingleBlocking(int position);
    std::string loadSingleStringBlocking(int position);

Q_SIGNALS:
    void countFinished(int count);
    void loadFailed();
    // The receiver owns the events.
    void loadFinished(std::vector<Event *> events);
    void percentRead(int percent);
    void countsForSummaryFinished(MapForCounts counts);
    void unpackFinished(bool unpacked);
    // The file test failed; `check` is an AbstractLogParser::FileCheck.
    void fileRefused(int check);
    // The shown row of the first event at or after `time`, or -1 (AbstractLogParser::rowAtTime).
    void rowAtTimeFound(const QDateTime &time, int row);
    // The timeline of the shown rows after taking in growth; `count` as countFinished has it.
    void timelineFinished(std::vector<AbstractLogParser::TimelineEntry> entries, int count);

public Q_SLOTS:
    void asyncCount();
    // Tests the file first (AbstractLogParser::checkFile) and counts only a journal:
    // the test may read megabytes, which is no work for the thread that asks.
    void asyncCheckedCount();
    // Only for a SummaryParser; any other parser yields an empty map.
    void asyncCountForSummary();
    void asyncLoad(int position, int count);
    // Unpacks a compressed rotation into the copy the parser reads, before its first
    // count; the share of the compressed file read goes out as percentRead.
    void asyncUnpack(CompressedLogFile *file);
    std::unique_ptr<Event> asyncLoadSingle(int position);
    std::string asyncLoadSingleString(int position);
    void asyncRowAtTime(const QDateTime &time);
    // `bucket` is an AbstractLogParser::TimelineBucket; turns the parser's timeline on
    // (the first such request then counts the whole file again).
    void asyncTimeline(int bucket);

private:
    template<typename Result, typename Call>
    Result callOnLoaderThread(Call call);

    AbstractLogParser *m_parser;
};
