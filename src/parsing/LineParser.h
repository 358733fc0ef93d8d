#pragma once

#include "Event.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <memory>

// Turns one journal line into an Event. Stateless and reentrant: the counting
// threads call it concurrently.
namespace LineParser
{
// A new event, or null when the line is rejected.
std::unique_ptr<Event> parseLine(const QByteArray &line);

// Whether parseLine would accept the line, without building the event and its
// parameter objects. Decided by the same helpers, so the two always agree.
bool acceptsLine(const QByteArray &line);

// Legacy syslog time such as "Mar  1 10:15:00", in the current year; invalid if it does not fit.
QDateTime parseLegacyDate(const QString &text);

// A count of seconds since the epoch as local time, pinned at the offset of that instant.
QDateTime fromEpochSeconds(qint64 seconds);
}
