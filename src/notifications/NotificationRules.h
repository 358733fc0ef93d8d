// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QString>
#include <QStringList>

#include <set>

// The message IDs that have a notification rule of the logging service: one rule
// file "mod-velmo-<ID>.conf" per ID in the rule directory. Used from the GUI thread
// only, apart from its creation, which is thread-safe.
class NotificationRules
{
public:
    // The one set of the process, created empty on first call.
    static NotificationRules &instance();

    // A set of its own (tests).
    NotificationRules() = default;

    // Replaces the set with the keys of the regular files in `directory` whose names
    // start with "mod-velmo-" and end with ".conf". An unreadable directory gives an
    // empty set.
    void rescan(const QString &directory);
    bool contains(const QString &key) const { return m_keys.count(key) != 0; }
    // In ascending order.
    QStringList keys() const;

    // A file name's key: the name with every occurrence of the prefix and the suffix
    // removed. Only meaningful for a name that starts with the one and ends with the other.
    static QString keyOf(QString fileName);
    static bool isRuleName(const QString &fileName);

    static QString prefix() { return QStringLiteral("mod-velmo-"); }
    static QString suffix() { return QStringLiteral(".conf"); }

private:
    std::set<QString> m_keys;
};
