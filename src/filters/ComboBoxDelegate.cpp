// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "ComboBoxDelegate.h"

#include <QApplication>
#include <QComboBox>
#include <QPainter>

namespace
{
const QString kSeparator = QStringLiteral("separator");
constexpr int kSeparatorHeight = 5;
}

ComboBoxDelegate::ComboBoxDelegate(QObject *parent) : QStyledItemDelegate(parent)
{
}

void ComboBoxDelegate::prepare(QComboBox *combo)
{
    combo->insertItem(0, tr("Not selected"), QVariant());
    if (combo->count() > 1)
        combo->insertSeparator(1);
    combo->setCurrentIndex(0);
    combo->setItemDelegate(new ComboBoxDelegate(combo));
}

bool ComboBoxDelegate::isNotSelected(const QComboBox *combo)
{
    return combo->currentIndex() < 0 || !combo->currentData().isValid();
}

bool ComboBoxDelegate::isSeparator(const QModelIndex &index)
{
    return index.data(Qt::AccessibleDescriptionRole).toString() == kSeparator;
}

void ComboBoxDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    if (!isSeparator(index)) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    const QRect rect = option.rect;
    const int y = rect.center().y();
    painter->save();
    painter->setPen(option.palette.color(QPalette::Disabled, QPalette::WindowText));
    painter->drawLine(rect.left() + 2, y, rect.right() - 2, y);
    painter->restore();
}

QSize ComboBoxDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    if (isSeparator(index))
        return QSize(1, kSeparatorHeight);
    return QStyledItemDelegate::sizeHint(option, index);
}
