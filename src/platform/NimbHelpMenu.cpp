// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "NimbHelpMenu.h"

#include <KAboutData>
#include <KHelpMenu>

#include <QAction>
#include <QMenu>

NimbHelpMenu::NimbHelpMenu(QWidget *parent)
    : QObject(parent)
    , m_helpMenu(new KHelpMenu(parent, KAboutData::applicationData(), false))
{
    m_helpMenu->setParent(this);
}

QMenu *NimbHelpMenu::menu()
{
    QMenu *menu = m_helpMenu->menu();
    if (!m_pruned) {
        m_pruned = true;
        // There is no handbook, no bug tracker and the language follows the
        // system locale, so these entries would only lead to dead ends.
        for (const auto id : {KHelpMenu::menuHelpContents, KHelpMenu::menuReportBug,
                              KHelpMenu::menuDonate, KHelpMenu::menuSwitchLanguage}) {
            if (QAction *action = m_helpMenu->action(id)) {
                menu->removeAction(action);
                action->setEnabled(false);
            }
        }
        // Removing entries can leave separators next to each other.
        const auto actions = menu->actions();
        QAction *previous = nullptr;
        for (QAction *action : actions) {
            if (action->isSeparator() && (!previous || previous->isSeparator()))
                menu->removeAction(action);
            else
                previous = action;
        }
        if (previous && previous->isSeparator())
            menu->removeAction(previous);
    }
    return menu;
}
