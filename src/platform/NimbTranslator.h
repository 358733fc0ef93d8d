// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QString>

// Installs "<catalogue>_<locale>.qm" for the system locale, searched first among
// the installed translations and then in the build tree, so that an uninstalled
// build is translated too. Qt's own catalogue for the locale is installed as
// well when the system has it, and the display name given to nimbInit is
// registered again in the catalogue's words. English, and any language without a
// catalogue of its own, gets "<catalogue>_en.qm", which holds only the English
// plural forms of counted texts. Needs an existing QCoreApplication, which owns the
// translators. Returns whether a translation into the locale's language was
// installed: false where the English source texts are shown.
bool nimbTranslatorInstall(const QString &catalogue);
