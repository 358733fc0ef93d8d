// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QString>

// Registers the application with the desktop: component and desktop file name
// "nimb-event-viewer", organisation "trelvik", the given version and display name.
// Call once, right after the QApplication is constructed and before any settings
// are read, since the settings file is located by these names.
//
// The display name is an English source text of the program's catalogue, in the
// translation context `context`. It is registered as it is, because the catalogue is
// installed only later, and worded anew by nimbTranslatorInstall.
void nimbInit(const QString &version, const char *context, const char *displayName);

// Registers the display name given to nimbInit again, as the translators installed
// now word it; nothing before nimbInit.
void nimbRetranslateDisplayName();
