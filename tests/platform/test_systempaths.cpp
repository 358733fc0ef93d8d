// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "SystemPaths.h"

#include <QtTest>

namespace
{
QStringList allPaths()
{
    return {SystemPaths::defaultJournal(),   SystemPaths::journalDir(),          SystemPaths::eventSettingsDir(),
            SystemPaths::sourcesDir(),       SystemPaths::customParametersDir(), SystemPaths::notificationRuleDir(),
            SystemPaths::logrotateFile(),    SystemPaths::resolve(QStringLiteral("/x/y"))};
}
}

class TestSystemPaths : public QObject
{
    Q_OBJECT

private slots:
    void sysrootPrefixesEveryPath()
    {
        qunsetenv("NIMB_EVENT_VIEWER_SYSROOT");
        const QStringList plain = allPaths();
        // The setting names the journal as on the real system, whatever sysroot the viewer runs under.
        QCOMPARE(plain.first(), QStringLiteral("/quorv/log/velmo/events"));
        // Empty and the real root both mean "no sysroot"; trailing slashes do not count. The variable
        // is read on every call, so each root below takes effect at once.
        const QVector<std::pair<const char *, const char *>> roots{
            {"", ""}, {"///", "/"}, {"/tmp/root", "/tmp/root"}, {"/tmp/root//", "/tmp/root"}};
        for (const auto &[variable, sysroot] : roots) {
            qputenv("NIMB_EVENT_VIEWER_SYSROOT", variable);
            QCOMPARE(SystemPaths::sysroot(), QString::fromLatin1(sysroot));
            QStringList expected;
            for (const QString &path : plain)
                expected << (QLatin1String(sysroot) == QLatin1String("/") ? path : sysroot + path);
            QCOMPARE(allPaths(), expected);
            QCOMPARE(SystemPaths::defaultJournalSetting(), plain.first());
        }
    }
};

QTEST_GUILESS_MAIN(TestSystemPaths)
#include "test_systempaths.moc"
