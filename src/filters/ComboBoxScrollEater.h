// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QObject>

class QWidget;

// Keeps the mouse wheel from changing combo boxes and spin boxes that the user has
// not focused, so that scrolling a long page of editors scrolls the page instead of
// silently changing whatever value passes under the pointer. The swallowed wheel
// is handed to the scroll area around the widget, if there is one.
class ComboBoxScrollEater : public QObject
{
    Q_OBJECT
public:
    explicit ComboBoxScrollEater(QObject *parent = nullptr);

    // Starts watching a widget; only combo boxes and spin boxes are affected. They
    // take the focus by click or tab only, as a wheel would otherwise give it to them.
    void watch(QWidget *widget);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};
