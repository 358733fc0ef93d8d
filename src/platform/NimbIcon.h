// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QIcon>
#include <QString>
#include <QVector>

// Theme icons with small emblems painted over them, e.g. a search icon with an
// arrow in one corner for an action that searches upwards.
class NimbIcon
{
public:
    struct Emblem
    {
        QString name;  // theme icon name of the emblem
        Qt::Corner corner;
    };

    // The emblems cover a quarter of the icon each, painted in the given order.
    // An emblem missing from the theme is left out; a missing base icon gives a
    // null icon.
    static QIcon withEmblems(const QString &themeIconName, const QVector<Emblem> &emblems);
    static QIcon withEmblems(const QString &themeIconName, const QString &emblemName, Qt::Corner corner);

    // A theme icon by name: the platform's theme first, then the desktop's icon
    // loader, which also works where the platform knows no icon theme.
    static QIcon themeIcon(const QString &name);
};
