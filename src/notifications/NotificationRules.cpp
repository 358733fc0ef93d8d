// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "NotificationRules.h"

#include <QDir>

NotificationRules &NotificationRules::instance()
{
    static NotificationRules rules;
    return rules;
}

void NotificationRules::rescan(const QString &directory)
{
    m_keys.clear();
    const QStringList names = QDir(directory).entryList(QDir::Files | QDir::NoDotAndDotDot, QDir::Unsorted);
    for (const QString &name : names) {
        if (isRuleName(name))
            m_keys.insert(keyOf(name));
    }
}

QStringList NotificationRules::keys() const
{
    QStringList keys;
    keys.reserve(int(m_keys.size()));
    for (const QString &key : m_keys)
        keys << key;
    return keys;
}

QString NotificationRules::keyOf(QString fileName)
{
    return fileName.remove(prefix()).remove(suffix());
}

bool NotificationRules::isRuleName(const QString &fileName)
{
    return fileName.startsWith(prefix()) && fileName.endsWith(suffix());
}
