// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QString>

// The one place where the fixed paths of the system this viewer reads are resolved.
// Every path is prefixed with $NIMB_EVENT_VIEWER_SYSROOT when that is set, so that
// tests and the demo can run against a tree of their own.
class SystemPaths
{
public:
    static QString sysroot();
    static QString resolve(const QString &absolutePath);

    static QString eventSettingsDir();
    static QString sourcesDir();
    static QString customParametersDir();
    static QString notificationRuleDir();
    static QString logrotateFile();
    static QString defaultJournal();
    static QString journalDir();
    // The administration module that writes notification rules.
    static QString adminModule();
    // The service manager the privileged helper restarts the logging service with.
    static QString systemctl();

    // The default journal as stored in settings: without the sysroot prefix.
    static QString defaultJournalSetting();
};
