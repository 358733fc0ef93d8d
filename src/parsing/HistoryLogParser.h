// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "AbstractLogParser.h"
#include "FilterPack.h"
#include "JournalHistory.h"

#include <optional>

// A journal's whole history as one parser, for a tab's loader: every operation the
// loader runs goes to a JournalHistory whose parts are plain or filtering parsers.
// Rows are numbered across the history, oldest rotation first.
class HistoryLogParser : public AbstractLogParser
{
    Q_OBJECT
public:
    explicit HistoryLogParser(const QString &livePath, QObject *parent = nullptr);
    HistoryLogParser(const QString &livePath, const FilterPack &filter, QObject *parent = nullptr);

    bool isFiltered() const { return m_filter.has_value(); }
    // Of a filtered history, on the loader's thread; the next count reads everything again.
    void setFilter(const FilterPack &filter);

    // The rotations that could not be unpacked at the last count.
    QStringList failures() const { return m_history.failures(); }
    const JournalHistory &history() const { return m_history; }

    int count() override;
    FileCheck checkFile() override;
    std::unique_ptr<Event> loadSingle(int index) override;
    std::string loadSingleString(int index) override;
    std::pair<bool, std::vector<Event *>> load(int first, int n) override;
    void setStopFlag(bool stop) override;
    void setTimelineEnabled(bool enabled) override;
    int rowAtTime(const QDateTime &time) override;
    std::vector<TimelineEntry> timeline(TimelineBucket bucket) override;

protected:
    // The parts scan their files themselves.
    void scan(QIODevice &) override {}

private:
    std::unique_ptr<AbstractLogParser> makePart(const QString &readablePath) const;

    std::optional<FilterPack> m_filter;
    JournalHistory m_history;
};
