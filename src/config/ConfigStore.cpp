// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "ConfigStore.h"

ConfigStore &ConfigStore::instance()
{
    static ConfigStore store;
    return store;
}

void ConfigStore::addRecentFile(const QString &path)
{
    // Reopening a listed file leaves the menu as the user knows it.
    if (m_recentFiles.contains(path))
        return;
    while (m_recentFiles.size() >= kMaxRecentFiles)
        m_recentFiles.removeFirst();
    m_recentFiles.append(path);
}
