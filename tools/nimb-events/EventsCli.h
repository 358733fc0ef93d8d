// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QStringList>

#include <cstdio>

// The nimb-events command line: count, summarise and page through a journal from
// scripts. Kept apart from main() so that other tools can drive it in-process.
namespace EventsCli
{
enum ExitCode {
    Success = 0,
    FileError = 1,   // missing, unreadable, undecompressable or not a journal
    UsageError = 2,  // unknown command, bad option or option value
};

// arguments[0] is the program name, as in QCoreApplication::arguments().
int run(const QStringList &arguments, std::FILE *out = stdout, std::FILE *err = stderr);
}
