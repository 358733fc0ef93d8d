// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "ComboBoxScrollEater.h"

#include <QAbstractScrollArea>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QScrollBar>
#include <QWheelEvent>

namespace
{
bool isEaten(const QObject *object)
{
    return qobject_cast<const QComboBox *>(object) || qobject_cast<const QAbstractSpinBox *>(object);
}

QAbstractScrollArea *enclosingScrollArea(QWidget *widget)
{
    for (QWidget *parent = widget->parentWidget(); parent; parent = parent->parentWidget()) {
        if (auto *area = qobject_cast<QAbstractScrollArea *>(parent))
            return area;
    }
    return nullptr;
}
}

ComboBoxScrollEater::ComboBoxScrollEater(QObject *parent) : QObject(parent)
{
}

void ComboBoxScrollEater::watch(QWidget *widget)
{
    if (!widget || !isEaten(widget))
        return;
    widget->setFocusPolicy(Qt::StrongFocus);
    widget->installEventFilter(this);
}

bool ComboBoxScrollEater::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Wheel || !isEaten(watched))
        return QObject::eventFilter(watched, event);
    auto *widget = static_cast<QWidget *>(watched);
    if (widget->hasFocus())
        return false;
    if (QAbstractScrollArea *area = enclosingScrollArea(widget)) {
        auto *wheel = static_cast<QWheelEvent *>(event);
        QScrollBar *bar = wheel->angleDelta().y() != 0 ? area->verticalScrollBar() : area->horizontalScrollBar();
        if (bar->isVisible())
            QCoreApplication::sendEvent(bar, event);
    }
    event->accept();
    return true;
}
