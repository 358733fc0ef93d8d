// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QObject>

#include <functional>
#include <memory>

class AsyncLoader;
class Event;

// A tab's source of single events for the details window: the tab's loader paired
// with the tab's last count. Requests are served on the loader's thread, after any
// count or page load queued before them, so the parser is never used by two threads
// and the interface never waits for a long count.
class EventGenerator : public QObject
{
    Q_OBJECT
public:
    explicit EventGenerator(AsyncLoader *loader, QObject *parent = nullptr);

    int count() const { return m_count; }
    void setCount(int count) { m_count = count; }

    // Fetches the event at a 0-based position (0 .. count inclusive) and hands it to
    // `done` on the thread of `receiver`; null when the position is outside or the
    // line no longer parses. Nothing is delivered once `receiver` is gone.
    void requestEvent(int position, QObject *receiver,
                      std::function<void(int position, std::unique_ptr<Event> event)> done) const;

private:
    AsyncLoader *m_loader;
    int m_count = 0;
};
