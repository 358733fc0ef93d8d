// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "EventsSelection.h"

#include "Event.h"

namespace
{
// Event is not copyable: the copy is built field by field and the parameter objects
// are cloned.
std::unique_ptr<Event> copyOf(const Event &event)
{
    auto copy = std::make_unique<Event>();
    copy->number = event.number;
    copy->priority = event.priority;
    copy->time = event.time;
    copy->facility = event.facility;
    copy->messageId = event.messageId;
    copy->nameEn = event.nameEn;
    copy->nameRu = event.nameRu;
    event.parameters.forEach(
        [&copy](const AuxPar &parameter) { copy->parameters.insert(std::unique_ptr<AuxPar>(parameter.clone())); });
    copy->customParameters = event.customParameters;
    return copy;
}
}

EventsSelection::EventsSelection() = default;
EventsSelection::EventsSelection(EventsSelection &&) noexcept = default;
EventsSelection &EventsSelection::operator=(EventsSelection &&) noexcept = default;
EventsSelection::~EventsSelection() = default;

EventsSelection EventsSelection::loaded(const QList<const Event *> &events, AsyncLoader *loader)
{
    EventsSelection selection;
    selection.m_loader = loader;
    selection.m_events.reserve(static_cast<std::size_t>(events.size()));
    for (const Event *event : events) {
        if (event)
            selection.m_events.push_back(copyOf(*event));
    }
    return selection;
}

EventsSelection EventsSelection::loaded(const std::vector<Event *> &events, AsyncLoader *loader)
{
    QList<const Event *> list;
    list.reserve(static_cast<int>(events.size()));
    for (const Event *event : events)
        list.append(event);
    return loaded(list, loader);
}

EventsSelection EventsSelection::wholeJournal(AsyncLoader *loader)
{
    EventsSelection selection;
    selection.m_loader = loader;
    selection.m_journal = true;
    return selection;
}

EventsSelection EventsSelection::journalRows(JournalRows rows)
{
    EventsSelection selection;
    selection.m_journal = true;
    selection.m_hasRows = true;
    selection.m_rows = std::move(rows);
    return selection;
}

std::vector<const Event *> EventsSelection::events() const
{
    std::vector<const Event *> events;
    events.reserve(m_events.size());
    for (const auto &event : m_events)
        events.push_back(event.get());
    return events;
}

JournalRows EventsSelection::rows() const
{
    if (m_hasRows)
        return m_rows;
    if (m_journal)
        return JournalRows::counted(m_loader);
    std::vector<quint32> numbers;
    numbers.reserve(m_events.size());
    for (const auto &event : m_events)
        numbers.push_back(event->number);
    return JournalRows::shown(m_loader, numbers);
}
