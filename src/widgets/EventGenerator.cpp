// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "EventGenerator.h"

#include "AsyncLoader.h"
#include "Event.h"

#include <QCoreApplication>
#include <QPointer>

EventGenerator::EventGenerator(AsyncLoader *loader, QObject *parent) : QObject(parent), m_loader(loader) {}

void EventGenerator::requestEvent(int position, QObject *receiver,
                                  std::function<void(int, std::unique_ptr<Event>)> done) const
{
    const QPointer<QObject> target(receiver);
    const bool inRange = position >= 0 && position <= m_count;
    AsyncLoader *loader = m_loader;
    // Runs on the loader's thread after whatever it was asked before. The answer goes
    // back through the application object, which outlives every receiver, and the
    // receiver is looked at only on its own thread.
    QMetaObject::invokeMethod(
        loader,
        [loader, position, inRange, target, done = std::move(done)] {
            auto event = std::make_shared<std::unique_ptr<Event>>();
            if (inRange)
                *event = loader->asyncLoadSingle(position);
            QMetaObject::invokeMethod(
                QCoreApplication::instance(),
                [position, event, target, done] {
                    if (target)
                        done(position, std::move(*event));
                },
                Qt::QueuedConnection);
        },
        Qt::QueuedConnection);
}
