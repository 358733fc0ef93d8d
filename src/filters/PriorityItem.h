// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "Event.h"

#include <QListWidgetItem>

// One message priority in the filter window's list.
class PriorityItem : public QListWidgetItem
{
public:
    static constexpr int Type = QListWidgetItem::UserType + 1;

    PriorityItem(Event::Priority priority, const QString &text, QListWidget *parent);

    Event::Priority priority() const { return m_priority; }
    bool isChecked() const { return checkState() == Qt::Checked; }
    void setChecked(bool checked) { setCheckState(checked ? Qt::Checked : Qt::Unchecked); }

private:
    Event::Priority m_priority;
};
