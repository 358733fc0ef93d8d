// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "Event.h"

#include <QByteArray>
#include <QDateTime>
#include <QJsonValue>
#include <QString>
#include <QVariant>

#include <memory>

// Turns one journal line into an Event. Stateless and reentrant: the counting
// threads call it concurrently.
namespace LineParser
{
// A new event, or null when the line is rejected.
std::unique_ptr<Event> parseLine(const QByteArray &line);

// Whether parseLine would accept the line, decided from one scan of its bytes where
// that is exact (see LineAcceptor) and by parsing otherwise.
bool acceptsLine(const QByteArray &line);

// Legacy syslog time such as "Mar  1 10:15:00", in the current year; invalid if it does not fit.
QDateTime parseLegacyDate(const QString &text);

// A count of seconds since the epoch as local time, pinned at the offset of that instant.
QDateTime fromEpochSeconds(qint64 seconds);

// How a present (neither missing nor null) body member becomes the value of the parameter
// of the given type, and the text of a custom parameter. Readers that skip parseLine()
// use these to read members alike.
QVariant parameterValue(int type, const QJsonValue &member);
QString memberText(const QJsonValue &member);
}
