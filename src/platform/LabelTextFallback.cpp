// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

// Stand-ins for the label library, built only when the system does not have it.
// They never fail and never return null: a number is always printable.

#include "LabelText.h"

#include <string>

namespace {
// One buffer per function and thread: the loader's worker threads render labels
// concurrently, and a caller may hold the level text while asking for the
// categories.
thread_local std::string levelBuffer;
thread_local std::string integrityBuffer;
thread_local std::string categoriesBuffer;
}

extern "C" const char *qlb_lev_get_text(int level, int /*flags*/)
{
    levelBuffer = std::to_string(level);
    return levelBuffer.c_str();
}

extern "C" const char *qlb_ilev_get_text(int ilevel, int /*flags*/)
{
    integrityBuffer = std::to_string(ilevel);
    return integrityBuffer.c_str();
}

// The set is listed as the numbers of its members in ascending order, e.g. "0,2"
// for 0b101. The empty set gives an empty text rather than "0", which would read
// as "category 0".
extern "C" const char *qlb_cat_get_text(quint64 categories, int /*flags*/)
{
    categoriesBuffer.clear();
    for (int bit = 0; bit < 64; ++bit) {
        if (!(categories & (quint64(1) << bit)))
            continue;
        if (!categoriesBuffer.empty())
            categoriesBuffer += ',';
        categoriesBuffer += std::to_string(bit);
    }
    return categoriesBuffer.c_str();
}
