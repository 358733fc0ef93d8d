// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QString>

// The system language decides which of the journal's two name sets is shown.
// It is read from the system locale once per process and never changes after.
namespace Language
{
// English name of the system locale's language, e.g. "English" or "Russian".
const QString &systemLanguageName();
bool isRussian();
// The language whose texts the installation's own files (sources, custom parameters)
// are read in, by its English name: "Russian" on a Russian system and "English" on any
// other, as with the journal's names. A locale such as C names no language the files
// could carry.
const QString &textLanguageName();
}
