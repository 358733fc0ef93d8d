// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "SystemPaths.h"

#include <QByteArray>

namespace {
const char kSysrootVariable[] = "NIMB_EVENT_VIEWER_SYSROOT";
}

QString SystemPaths::sysroot()
{
    QString root = QString::fromLocal8Bit(qgetenv(kSysrootVariable));
    while (root.size() > 1 && root.endsWith(QLatin1Char('/')))
        root.chop(1);
    return root;
}

QString SystemPaths::resolve(const QString &absolutePath)
{
    const QString root = sysroot();
    if (root.isEmpty() || root == QLatin1String("/"))
        return absolutePath;
    return root + absolutePath;
}

QString SystemPaths::eventSettingsDir()
{
    return resolve(QStringLiteral("/usr/share/syslog-ng-mod-velmo/event-settings"));
}

QString SystemPaths::sourcesDir()
{
    return resolve(QStringLiteral("/etc/nimb-event-viewer/sources/"));
}

QString SystemPaths::customParametersDir()
{
    return resolve(QStringLiteral("/etc/nimb-event-viewer/emp"));
}

QString SystemPaths::notificationRuleDir()
{
    return resolve(QStringLiteral("/etc/syslog-ng/conf.d"));
}

QString SystemPaths::logrotateFile()
{
    return resolve(QStringLiteral("/etc/logrotate.d/syslog-ng-mod-velmo"));
}

QString SystemPaths::defaultJournal()
{
    return resolve(defaultJournalSetting());
}

QString SystemPaths::defaultJournalSetting()
{
    return QStringLiteral("/quorv/log/velmo/events");
}

QString SystemPaths::journalDir()
{
    return resolve(QStringLiteral("/quorv/log/velmo"));
}

QString SystemPaths::adminModule()
{
    return resolve(QStringLiteral("/usr/bin/nimb-admin-events"));
}

QString SystemPaths::systemctl()
{
    return resolve(QStringLiteral("/bin/systemctl"));
}
