// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "Language.h"

#include <QLocale>

const QString &Language::systemLanguageName()
{
    static const QString name = QLocale::languageToString(QLocale::system().language());
    return name;
}

bool Language::isRussian()
{
    static const bool russian = systemLanguageName() == QLatin1String("Russian");
    return russian;
}

const QString &Language::textLanguageName()
{
    static const QString name = isRussian() ? QStringLiteral("Russian") : QStringLiteral("English");
    return name;
}
