// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "ColumnChooser.h"

#include "EventsModel.h"

#include <QAbstractItemView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QStandardItemModel>

ColumnChooser::ColumnChooser(QWidget *parent) : QComboBox(parent), m_model(new QStandardItemModel(0, 1, this))
{
    auto *caption = new QStandardItem(tr("Show columns"));
    caption->setFlags(Qt::ItemIsEnabled);
    m_model->appendRow(caption);
    addColumns();

    setModel(m_model);
    setCurrentIndex(0);
    setSizeAdjustPolicy(QComboBox::AdjustToContents);
    // Reachable with Tab, the only way to the columns without a mouse, while a click
    // leaves the focus on the table the user works in.
    setFocusPolicy(Qt::TabFocus);
    // On some platforms a combo box is announced by its current entry, elsewhere by
    // this name; both are the caption.
    setAccessibleName(caption->text());
    // The combo box's own popup handling closes the list and changes the current
    // row on a click; this filter, installed after it, sees the clicks first.
    view()->viewport()->installEventFilter(this);
    view()->installEventFilter(this);
    // Wheel or arrow keys on the closed box would otherwise replace the caption.
    connect(this, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this](int index) {
        if (index != 0)
            setCurrentIndex(0);
    });
}

void ColumnChooser::addColumns()
{
    // The table's own column list, so that the chooser offers exactly the columns
    // a tab can show, in the tab's order.
    const EventsModel columns;
    for (int column = columns.firstAuxColumn(); column < columns.columnCount(); ++column) {
        auto *item = new QStandardItem(columns.headerData(column, Qt::Horizontal).toString());
        item->setFlags(Qt::ItemIsUserCheckable | Qt::ItemIsEnabled);
        item->setCheckState(Qt::Unchecked);
        item->setData(columns.typeOfColumn(column), TypeRole);
        item->setData(columns.nameOfColumn(column), NameRole);
        m_model->appendRow(item);
    }
}

QSet<int> ColumnChooser::checkedTypes() const
{
    QSet<int> types;
    for (int row = 1; row < m_model->rowCount(); ++row) {
        const QStandardItem *item = m_model->item(row);
        const int type = item->data(TypeRole).toInt();
        if (item->checkState() == Qt::Checked && type >= 0)
            types.insert(type);
    }
    return types;
}

QSet<QString> ColumnChooser::checkedCustomNames() const
{
    QSet<QString> names;
    for (int row = 1; row < m_model->rowCount(); ++row) {
        const QStandardItem *item = m_model->item(row);
        if (item->checkState() == Qt::Checked && item->data(TypeRole).toInt() < 0)
            names.insert(item->data(NameRole).toString());
    }
    return names;
}

void ColumnChooser::setChecked(const QSet<int> &types, const QSet<QString> &customNames)
{
    for (int row = 1; row < m_model->rowCount(); ++row) {
        QStandardItem *item = m_model->item(row);
        const int type = item->data(TypeRole).toInt();
        const bool checked = type >= 0 ? types.contains(type) : customNames.contains(item->data(NameRole).toString());
        item->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
    }
}

void ColumnChooser::showPopup()
{
    // Wide enough for the longest column name, whatever the box itself measures.
    view()->setMinimumWidth(view()->sizeHintForColumn(0) + 2 * view()->frameWidth() + 24);
    m_pressedRow = -1;
    QComboBox::showPopup();
}

void ColumnChooser::toggle(int row)
{
    QStandardItem *item = row > 0 ? m_model->item(row) : nullptr;
    if (item)
        item->setCheckState(item->checkState() == Qt::Checked ? Qt::Unchecked : Qt::Checked);
}

bool ColumnChooser::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == view()->viewport()) {
        switch (event->type()) {
        case QEvent::MouseButtonRelease: {
            // The list opens under the pointer on the press on the closed box; the
            // release of that press lands on whatever row is there.
            const auto *mouse = static_cast<QMouseEvent *>(event);
            const int row = view()->indexAt(mouse->pos()).row();
            if (mouse->button() == Qt::LeftButton && row == m_pressedRow)
                toggle(row);
            m_pressedRow = -1;
            return true;
        }
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick: {
            const auto *mouse = static_cast<QMouseEvent *>(event);
            if (mouse->button() == Qt::LeftButton)
                m_pressedRow = view()->indexAt(mouse->pos()).row();
            return true;
        }
        default:
            break;
        }
    } else if (watched == view() && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Space) {
            toggle(view()->currentIndex().row());
            return true;
        }
        // Return ends the choice like Escape: choosing the row would replace the caption.
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            hidePopup();
            return true;
        }
    }
    return QComboBox::eventFilter(watched, event);
}
