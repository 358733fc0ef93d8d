// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "LabelText.h"

namespace {
QString fromLibrary(const char *text)
{
    return text ? QString::fromLocal8Bit(text) : QString();
}
}

QString LabelText::level(int level)
{
    return fromLibrary(qlb_lev_get_text(level, 0));
}

QString LabelText::integrityLevel(int ilevel)
{
    return fromLibrary(qlb_ilev_get_text(ilevel, 0));
}

QString LabelText::categories(quint64 categories)
{
    return fromLibrary(qlb_cat_get_text(categories, 0));
}
