// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "LogWidget.h"

class QFileSystemWatcher;

// The main journal's tab: follows the file as the logger appends to it, and keeps
// following the path across rotations (renamed, removed, recreated or truncated).
class MainLogWidget : public LogWidget
{
    Q_OBJECT
public:
    MainLogWidget(const QString &path, const QList<QAction *> &contextActions, QWidget *parent = nullptr);
    MainLogWidget(const QString &path, const FilterPack &filter, const QList<QAction *> &contextActions,
                  QWidget *parent = nullptr);

    void startFollowing();
    void stopFollowing();
    bool isFollowing() const { return following(); }

private:
    void init();
    void onFileChanged();
    void onDirectoryChanged();
    // Puts the path back under watch when it exists again.
    void rewatch();

    QFileSystemWatcher *m_watcher = nullptr;
};
