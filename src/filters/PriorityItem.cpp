// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "PriorityItem.h"

PriorityItem::PriorityItem(Event::Priority priority, const QString &text, QListWidget *parent)
    : QListWidgetItem(text, parent, Type), m_priority(priority)
{
    setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
    setCheckState(Qt::Unchecked);
}
