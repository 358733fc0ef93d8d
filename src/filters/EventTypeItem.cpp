// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "EventTypeItem.h"

EventTypeItem::EventTypeItem(const QString &displayText, const QString &typeText, QTreeWidgetItem *parent)
    : QTreeWidgetItem(parent, Type), m_typeText(typeText)
{
    setText(0, displayText);
    setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
    setCheckState(0, Qt::Unchecked);
}
