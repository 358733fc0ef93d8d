// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later
#include "HistoryLogParser.h"

#include "FilteringLogParser.h"
#include "LogParser.h"

HistoryLogParser::HistoryLogParser(const QString &livePath, QObject *parent)
    : AbstractLogParser(livePath, parent)
    , m_history(livePath, [this](const QString &path) { return makePart(path); })
{
    // Direct: the history sends from the threads that scan, as a parser does.
    connect(&m_history, &JournalHistory::percentRead, this, &AbstractLogParser::percentRead, Qt::DirectConnection);
}

HistoryLogParser::HistoryLogParser(const QString &livePath, const FilterPack &filter, QObject *parent)
    : HistoryLogParser(livePath, parent)
{
    m_filter = filter;
}

std::unique_ptr<AbstractLogParser> HistoryLogParser::makePart(const QString &readablePath) const
{
    if (!m_filter)
        return std::make_unique<LogParser>(readablePath);
    auto parser = std::make_unique<FilteringLogParser>(readablePath);
    parser->setWorkerCount(workerCount());
    parser->setFilter(*m_filter);
    return parser;
}

void HistoryLogParser::setFilter(const FilterPack &filter)
{
    if (!m_filter)
        return;
    m_filter = filter;
    for (AbstractLogParser *part : m_history.parsers())
        static_cast<FilteringLogParser *>(part)->setFilter(filter);
}

int HistoryLogParser::count()
{
    return m_history.count();
}

AbstractLogParser::FileCheck HistoryLogParser::checkFile()
{
    return m_history.checkFile();
}

std::unique_ptr<Event> HistoryLogParser::loadSingle(int index)
{
    return m_history.loadSingle(index);
}

std::string HistoryLogParser::loadSingleString(int index)
{
    return m_history.loadSingleString(index);
}

std::pair<bool, std::vector<Event *>> HistoryLogParser::load(int first, int n)
{
    return m_history.load(first, n);
}

void HistoryLogParser::setStopFlag(bool stop)
{
    AbstractLogParser::setStopFlag(stop);
    m_history.setStopFlag(stop);
}

void HistoryLogParser::setTimelineEnabled(bool enabled)
{
    AbstractLogParser::setTimelineEnabled(enabled);
    m_history.setTimelineEnabled(enabled);
}

int HistoryLogParser::rowAtTime(const QDateTime &time)
{
    return m_history.rowAtTime(time);
}

std::vector<AbstractLogParser::TimelineEntry> HistoryLogParser::timeline(TimelineBucket bucket)
{
    return m_history.timeline(bucket);
}
