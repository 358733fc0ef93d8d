// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QStyledItemDelegate>

class QComboBox;

// Draws the list of a value combo box: ordinary rows as the style does, rows marked
// "separator" (the accessible description QComboBox::insertSeparator gives them) as
// a thin line that cannot be chosen.
class ComboBoxDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    explicit ComboBoxDelegate(QObject *parent = nullptr);

    // Puts the "Not selected" entry (no value) and a separator in front of the
    // combo box's own entries, selects it and takes over drawing the list.
    static void prepare(QComboBox *combo);
    // Whether the combo box shows the entry that stands for no value.
    static bool isNotSelected(const QComboBox *combo);

    static bool isSeparator(const QModelIndex &index);

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};
