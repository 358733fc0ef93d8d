// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QAction>
#include <QLineEdit>
#include <QToolButton>
#include <QVariant>

#include <cmath>

// A line edit's clear button fades in or out over a few frames through an animation
// that has no parent and deletes itself only when it ends; a window closed meanwhile
// leaves it to the end of the process, where the leak checker finds it. True once every
// clear button under `root` shows as its line edit's text says: a test waits for that
// before it closes a window whose fields it filled.
inline bool clearButtonsSettled(const QWidget &root)
{
    const auto edits = root.findChildren<QLineEdit *>();
    for (const QLineEdit *edit : edits) {
        if (!edit->isClearButtonEnabled())
            continue;
        const auto buttons = edit->findChildren<QToolButton *>();
        for (const QToolButton *button : buttons) {
            const QAction *action = button->defaultAction();
            if (!action || action->objectName() != QLatin1String("_q_qlineeditclearaction"))
                continue;
            const double shown = edit->text().isEmpty() ? 0.0 : 1.0;
            if (std::abs(button->property("opacity").toDouble() - shown) > 1e-6)
                return false;
        }
    }
    return true;
}
