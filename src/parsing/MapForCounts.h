// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "Event.h"

#include <QHash>
#include <QMetaType>
#include <QString>

#include <array>

// Events of the last hour, day and week.
struct WindowCounts {
    quint32 hour = 0;
    quint32 day = 0;
    quint32 week = 0;

    bool operator==(const WindowCounts &other) const
    {
        return hour == other.hour && day == other.day && week == other.week;
    }
};

// priority -> source -> counts; unknown sources are counted under "unrecognized".
using MapForCounts = QHash<Event::Priority, QHash<QString, WindowCounts>>;

Q_DECLARE_METATYPE(MapForCounts)
