// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "JournalRows.h"

#include <QList>

#include <memory>
#include <vector>

class AsyncLoader;
class Event;

// The events one export or print job writes, fixed on the interface thread when the
// job is set up: copies of events already loaded (a page or a selection), or every
// event the tab's parser counted. Movable into the job's closure; the job's thread
// reads it.
//
// A whole journal is not gathered: the job takes the positions the parser recorded
// (on the loader's thread, 8 bytes a line) and streams the lines in batches, so that
// memory does not grow with the journal and the tab's parser is never used by two
// threads at once.
class EventsSelection
{
public:
    EventsSelection();
    EventsSelection(EventsSelection &&) noexcept;
    EventsSelection &operator=(EventsSelection &&) noexcept;
    ~EventsSelection();

    // Copies of the events; `loader` is the tab's, from which a raw-line export
    // fetches their lines by row number (null: no raw lines).
    static EventsSelection loaded(const QList<const Event *> &events, AsyncLoader *loader);
    static EventsSelection loaded(const std::vector<Event *> &events, AsyncLoader *loader);
    // Every line counted by the loader's parser; nothing is read before the job runs.
    static EventsSelection wholeJournal(AsyncLoader *loader);
    // Given journal rows (tools and tests).
    static EventsSelection journalRows(JournalRows rows);

    bool isJournal() const { return m_journal; }
    // The copied events (empty for a journal).
    std::vector<const Event *> events() const;
    // The rows to read: all counted rows for a journal, the rows of the copied
    // events otherwise. Blocks on the loader's thread (see JournalRows): call it on
    // the job's thread.
    JournalRows rows() const;

private:
    std::vector<std::unique_ptr<Event>> m_events;
    AsyncLoader *m_loader = nullptr;
    bool m_journal = false;
    bool m_hasRows = false;
    JournalRows m_rows;
};
