// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QString>
#include <QtGlobal>

// Texts of the security label fields shown for MAC/MIC parameters.
//
// The three qlb_* functions come from the system's label library when the build
// found it. Without it the build supplies its own versions that render the bare
// numbers, so the viewer still shows something sensible on systems without
// mandatory access control. Either way they return a C string in the locale's
// 8-bit encoding, possibly null; callers should prefer the LabelText wrappers.
#ifdef NIMB_HAVE_QLB
#include <qlb.h>
#else
extern "C" {
// Each returned pointer stays valid on the calling thread until the same
// function is called again on that thread.
const char *qlb_lev_get_text(int level, int flags);
const char *qlb_ilev_get_text(int ilevel, int flags);
const char *qlb_cat_get_text(quint64 categories, int flags);
}
#endif

namespace LabelText
{
// Safe from any thread; a null text from the library becomes an empty string.
QString level(int level);
QString integrityLevel(int ilevel);
QString categories(quint64 categories);
}
