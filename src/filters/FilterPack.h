// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "Event.h"

#include <QDateTime>
#include <QHash>
#include <QMetaType>
#include <QString>
#include <QVariant>
#include <QVector>

// One complete set of filter criteria. A plain value: the filtering threads share
// one copy and only read it.
class FilterPack
{
public:
    QString name;
    QDateTime from;
    QDateTime to;
    QString id;
    QVector<QString> eventTypes;
    QString typeExcludes;
    QString nameContains;
    QString nameExcludes;
    QVector<int> priorities;
    QString search;
    bool checkFrom = false;
    bool checkTo = false;
    bool checkId = false;
    bool checkEventTypes = false;
    bool checkTypeExcludes = false;
    bool checkNameContains = false;
    bool checkNameExcludes = false;
    bool checkPriorities = false;
    bool checkSearch = false;
    bool caseSensitive = false;
    bool wholeWord = false;
    QHash<int, QVariant> auxConditions;
    QHash<QString, QVariant> customConditions;

    // Compares every criterion but the name.
    bool operator==(const FilterPack &other) const;
    bool operator!=(const FilterPack &other) const { return !(*this == other); }

    // Whether the event passes every enabled test; the keyword search runs last.
    bool match(const Event &event) const;
    // The keyword test alone.
    bool searchMatch(const Event &event) const;
    // Whether the keyword test finds the keyword in one text.
    bool keywordFoundIn(const QString &text) const;

    // The priority word the keyword search looks for (not the shorter display word).
    static QString searchPriorityWord(Event::Priority priority);
};

Q_DECLARE_METATYPE(FilterPack)
