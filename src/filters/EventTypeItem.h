// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QTreeWidgetItem>

// One event type in the filter window's tree: shown under a display text, matched by
// the type text events carry (empty for the site's custom events, which have none).
class EventTypeItem : public QTreeWidgetItem
{
public:
    static constexpr int Type = QTreeWidgetItem::UserType + 1;

    EventTypeItem(const QString &displayText, const QString &typeText, QTreeWidgetItem *parent);

    QString typeText() const { return m_typeText; }
    bool isChecked() const { return checkState(0) == Qt::Checked; }
    void setChecked(bool checked) { setCheckState(0, checked ? Qt::Checked : Qt::Unchecked); }

private:
    QString m_typeText;
};
