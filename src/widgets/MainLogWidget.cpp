// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "MainLogWidget.h"

#include "AbstractLogParser.h"

#include <QFileInfo>
#include <QFileSystemWatcher>

MainLogWidget::MainLogWidget(const QString &path, const QList<QAction *> &contextActions, QWidget *parent)
    : LogWidget(path, contextActions, parent)
{
    init();
}

MainLogWidget::MainLogWidget(const QString &path, const FilterPack &filter, const QList<QAction *> &contextActions,
                             QWidget *parent)
    : LogWidget(path, filter, contextActions, parent)
{
    init();
}

void MainLogWidget::init()
{
    // Whatever file takes the path next is the journal to follow.
    parser()->setPinned(false);
    m_watcher = new QFileSystemWatcher(this);
    connect(m_watcher, &QFileSystemWatcher::fileChanged, this, &MainLogWidget::onFileChanged);
    connect(m_watcher, &QFileSystemWatcher::directoryChanged, this, &MainLogWidget::onDirectoryChanged);
    rewatch();
}

void MainLogWidget::startFollowing()
{
    setFollowing(true);
    rewatch();
    refresh();
}

void MainLogWidget::stopFollowing()
{
    setFollowing(false);
}

void MainLogWidget::onFileChanged()
{
    // A removed or renamed file drops out of the watcher; its successor, if it is
    // already there, must be watched before anything more is written to it.
    rewatch();
    if (following())
        refresh();
}

void MainLogWidget::onDirectoryChanged()
{
    // Something was created, removed or renamed beside the journal, perhaps the
    // journal itself: watch whatever file now has the path, not the one that had it.
    const QString path = logPath();
    if (m_watcher->files().contains(path))
        m_watcher->removePath(path);
    rewatch();
    if (following())
        refresh();
}

void MainLogWidget::rewatch()
{
    const QFileInfo info(logPath());
    const QString directory = info.absolutePath();
    if (!m_watcher->directories().contains(directory) && QFileInfo(directory).isDir())
        m_watcher->addPath(directory);
    if (!m_watcher->files().contains(info.filePath()) && info.exists())
        m_watcher->addPath(info.filePath());
}
