#include "SystemPaths.h"

#include <QtTest>

class TestSystemPaths : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { qunsetenv("NIMB_EVENT_VIEWER_SYSROOT"); }

    void withoutSysrootPathsAreTheSystemOnes()
    {
        qunsetenv("NIMB_EVENT_VIEWER_SYSROOT");
        QCOMPARE(SystemPaths::sysroot(), QString());
        QCOMPARE(SystemPaths::defaultJournal(), QStringLiteral("/quorv/log/velmo/events"));
        QCOMPARE(SystemPaths::journalDir(), QStringLiteral("/quorv/log/velmo"));
        QCOMPARE(SystemPaths::eventSettingsDir(),
                 QStringLiteral("/usr/share/syslog-ng-mod-velmo/event-settings"));
        QCOMPARE(SystemPaths::sourcesDir(), QStringLiteral("/etc/nimb-event-viewer/sources/"));
        QCOMPARE(SystemPaths::customParametersDir(), QStringLiteral("/etc/nimb-event-viewer/emp"));
        QCOMPARE(SystemPaths::notificationRuleDir(), QStringLiteral("/etc/syslog-ng/conf.d"));
        QCOMPARE(SystemPaths::logrotateFile(), QStringLiteral("/etc/logrotate.d/syslog-ng-mod-velmo"));

        // An empty variable and the real root both mean "no sysroot".
        qputenv("NIMB_EVENT_VIEWER_SYSROOT", "");
        QCOMPARE(SystemPaths::defaultJournal(), QStringLiteral("/quorv/log/velmo/events"));
        qputenv("NIMB_EVENT_VIEWER_SYSROOT", "/");
        QCOMPARE(SystemPaths::sysroot(), QStringLiteral("/"));
        QCOMPARE(SystemPaths::logrotateFile(), QStringLiteral("/etc/logrotate.d/syslog-ng-mod-velmo"));
        qputenv("NIMB_EVENT_VIEWER_SYSROOT", "///");
        QCOMPARE(SystemPaths::sysroot(), QStringLiteral("/"));
        QCOMPARE(SystemPaths::journalDir(), QStringLiteral("/quorv/log/velmo"));
    }

    void sysrootPrefixesEveryPath()
    {
        for (const QByteArray &root : {QByteArray("/tmp/root"), QByteArray("/tmp/root/"),
                                       QByteArray("/tmp/root///")}) {
            qputenv("NIMB_EVENT_VIEWER_SYSROOT", root);
            QCOMPARE(SystemPaths::sysroot(), QStringLiteral("/tmp/root"));
            QCOMPARE(SystemPaths::defaultJournal(), QStringLiteral("/tmp/root/quorv/log/velmo/events"));
            QCOMPARE(SystemPaths::journalDir(), QStringLiteral("/tmp/root/quorv/log/velmo"));
            QCOMPARE(SystemPaths::eventSettingsDir(),
                     QStringLiteral("/tmp/root/usr/share/syslog-ng-mod-velmo/event-settings"));
            QCOMPARE(SystemPaths::sourcesDir(), QStringLiteral("/tmp/root/etc/nimb-event-viewer/sources/"));
            QCOMPARE(SystemPaths::customParametersDir(), QStringLiteral("/tmp/root/etc/nimb-event-viewer/emp"));
            QCOMPARE(SystemPaths::notificationRuleDir(), QStringLiteral("/tmp/root/etc/syslog-ng/conf.d"));
            QCOMPARE(SystemPaths::logrotateFile(),
                     QStringLiteral("/tmp/root/etc/logrotate.d/syslog-ng-mod-velmo"));
            QCOMPARE(SystemPaths::resolve(QStringLiteral("/x/y")), QStringLiteral("/tmp/root/x/y"));
        }
    }

    void settingKeepsTheUnprefixedJournal()
    {
        qputenv("NIMB_EVENT_VIEWER_SYSROOT", "/srv/demo/");
        QCOMPARE(SystemPaths::defaultJournalSetting(), QStringLiteral("/quorv/log/velmo/events"));
        QCOMPARE(SystemPaths::resolve(SystemPaths::defaultJournalSetting()), SystemPaths::defaultJournal());
        // The variable is read on every call, not cached from the first one.
        qputenv("NIMB_EVENT_VIEWER_SYSROOT", "/other");
        QCOMPARE(SystemPaths::defaultJournal(), QStringLiteral("/other/quorv/log/velmo/events"));
    }
};

QTEST_GUILESS_MAIN(TestSystemPaths)
#include "test_systempaths.moc"
