// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QObject>

class KHelpMenu;
class QMenu;
class QWidget;

// The main window's help menu: "About <application>" and "About KDE". Entries
// that would lead nowhere for this viewer (handbook, bug report, donation,
// switching the application language) are left out.
class NimbHelpMenu : public QObject
{
    Q_OBJECT
public:
    explicit NimbHelpMenu(QWidget *parent);

    // Owned by this object; built on first call.
    QMenu *menu();

private:
    KHelpMenu *m_helpMenu;
    bool m_pruned = false;
};
