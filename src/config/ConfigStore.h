// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "FilterPack.h"

#include <QByteArray>
#include <QList>
#include <QPoint>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QVector>

#include <set>

// Every setting that outlives a run. One process-wide object shared by the main
// window, the filter window and the settings dialogs; ConfigHandler fills it from
// the settings file and writes it back. Used from the GUI thread only, apart from
// its creation, which is thread-safe.
class ConfigStore
{
public:
    static constexpr int kMaxRecentFiles = 5;
    static constexpr int kDefaultMessagesPerPage = 1000;
    // The page sizes the settings dialog offers.
    static constexpr int kMinMessagesPerPage = 100;
    static constexpr int kMaxMessagesPerPage = 10000;

    // The one store of the process, created on first call.
    static ConfigStore &instance();

    // A store of its own with the values a fresh user starts from (tests and
    // readers that must not touch the shared one).
    ConfigStore() = default;

    // Numeric identifiers of the registered parameters whose columns are shown.
    QVector<int> &visibleColumns() { return m_visibleColumns; }
    const QVector<int> &visibleColumns() const { return m_visibleColumns; }
    // Names of the custom parameters whose columns are shown.
    QVector<QString> &visibleCustomColumns() { return m_visibleCustomColumns; }
    const QVector<QString> &visibleCustomColumns() const { return m_visibleCustomColumns; }

    // Named filters in the order the user saved them.
    QList<FilterPack> &savedFilters() { return m_savedFilters; }
    const QList<FilterPack> &savedFilters() const { return m_savedFilters; }

    // Oldest first. Read-only from outside so that only addRecentFile changes it.
    const QStringList &recentFiles() const { return m_recentFiles; }
    // An already listed path keeps its place (it does not move to the newest end);
    // otherwise the oldest entries give way until at most five remain.
    void addRecentFile(const QString &path);
    void clearRecentFiles() { m_recentFiles.clear(); }

    // Sorted, without duplicates.
    std::set<QString> &favoriteEvents() { return m_favoriteEvents; }
    const std::set<QString> &favoriteEvents() const { return m_favoriteEvents; }

    QByteArray &geometry() { return m_geometry; }
    const QByteArray &geometry() const { return m_geometry; }
    QByteArray &state() { return m_state; }
    const QByteArray &state() const { return m_state; }
    bool &maximized() { return m_maximized; }
    bool maximized() const { return m_maximized; }
    QPoint &pos() { return m_pos; }
    const QPoint &pos() const { return m_pos; }
    QSize &size() { return m_size; }
    const QSize &size() const { return m_size; }

    QString &mainLogPath() { return m_mainLogPath; }
    const QString &mainLogPath() const { return m_mainLogPath; }
    int &messagesPerPage() { return m_messagesPerPage; }
    int messagesPerPage() const { return m_messagesPerPage; }
    // Whether the tabs show their events per hour or day above the table.
    bool &showTimeline() { return m_showTimeline; }
    bool showTimeline() const { return m_showTimeline; }

private:
    QVector<int> m_visibleColumns;
    QVector<QString> m_visibleCustomColumns;
    QList<FilterPack> m_savedFilters;
    QStringList m_recentFiles;
    std::set<QString> m_favoriteEvents;
    QByteArray m_geometry;
    QByteArray m_state;
    bool m_maximized = false;
    QPoint m_pos;
    QSize m_size;
    // Empty until the settings are read: the default depends on the sysroot.
    QString m_mainLogPath;
    // A usable page size even before reading, so nobody ever pages by zero.
    int m_messagesPerPage = kDefaultMessagesPerPage;
    bool m_showTimeline = true;
};
