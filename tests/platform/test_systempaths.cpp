#include "SystemPaths.h"

#include <QtTest>

namespace
{
// Every fixed path, in the order of the suffixes below.
QStringList allPaths()
{
    return {SystemPaths::defaultJournal(),   SystemPaths::journalDir(),          SystemPaths::eventSettingsDir(),
            SystemPaths::sourcesDir(),       SystemPaths::customParametersDir(), SystemPaths::notificationRuleDir(),
            SystemPaths::logrotateFile(),    SystemPaths::resolve(QStringLiteral("/x/y"))};
}

QStringList prefixed(const QString &root)
{
    QStringList paths;
    for (const char *path : {"/quorv/log/velmo/events", "/quorv/log/velmo", "/usr/share/syslog-ng-mod-velmo/event-settings",
                             "/etc/nimb-event-viewer/sources/", "/etc/nimb-event-viewer/emp", "/etc/syslog-ng/conf.d",
                             "/etc/logrotate.d/syslog-ng-mod-velmo", "/x/y"})
        paths << root + QLatin1String(path);
    return paths;
}
}

class TestSystemPaths : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { qunsetenv("NIMB_EVENT_VIEWER_SYSROOT"); }

    void sysrootPrefixesEveryPath()
    {
        // Unset, empty and the real root all mean "no sysroot"; trailing slashes do not count.
        const QVector<std::tuple<const char *, QString>> roots{
            {nullptr, QString()}, {"", QString()}, {"/", QStringLiteral("/")}, {"///", QStringLiteral("/")},
            {"/tmp/root", QStringLiteral("/tmp/root")}, {"/tmp/root/", QStringLiteral("/tmp/root")},
            {"/tmp/root///", QStringLiteral("/tmp/root")}};
        for (const auto &[variable, sysroot] : roots) {
            if (variable)
                qputenv("NIMB_EVENT_VIEWER_SYSROOT", variable);
            else
                qunsetenv("NIMB_EVENT_VIEWER_SYSROOT");
            QCOMPARE(SystemPaths::sysroot(), sysroot);
            QCOMPARE(allPaths(), prefixed(sysroot == QLatin1String("/") ? QString() : sysroot));
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
