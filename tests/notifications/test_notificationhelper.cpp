// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "HelperPolicy.h"
#include "NotificationHelper.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>

namespace
{
void writeFile(const QString &path, const QByteArray &bytes = QByteArray("rule"))
{
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(path));
    file.write(bytes);
}

// Every entry under `root` with its kind, size and link target: a refused request
// must leave all of it as it was.
QStringList snapshot(const QString &root)
{
    QStringList entries;
    QDirIterator it(root, QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const QFileInfo info = it.fileInfo();
        entries << QStringLiteral("%1 %2 %3 %4")
                       .arg(path, info.isSymLink() ? QStringLiteral("link") : info.isDir() ? QStringLiteral("dir") : QStringLiteral("file"))
                       .arg(info.isSymLink() ? 0 : info.size())
                       .arg(info.isSymLink() ? info.symLinkTarget() : QString());
    }
    entries.sort();
    return entries;
}

// Sets an environment variable for as long as the object lives.
class ScopedVariable
{
public:
    ScopedVariable(const char *name, const QByteArray &value)
        : m_name(name), m_had(qEnvironmentVariableIsSet(name)), m_old(qgetenv(name))
    {
        qputenv(name, value);
    }
    ~ScopedVariable()
    {
        if (m_had)
            qputenv(m_name, m_old);
        else
            qunsetenv(m_name);
    }

private:
    const char *m_name;
    bool m_had;
    QByteArray m_old;
};
}

class TestNotificationHelper : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_root;
    QString m_ruleDir;
    QString m_outside;

    QString root() const { return m_root->path(); }
    HelperPolicy policy() const { return HelperPolicy(m_ruleDir, root() + QStringLiteral("/bin/systemctl")); }

    // A service manager that notes its arguments and exits with `status`.
    void installSystemctl(int status)
    {
        QVERIFY(QDir().mkpath(root() + QStringLiteral("/bin")));
        const QString path = root() + QStringLiteral("/bin/systemctl");
        writeFile(path, QStringLiteral("#!/bin/sh\necho \"$*\" >> '%1/systemctl.log'\n"
                                       "echo \"[$PATH] [$NIMB_EVENT_VIEWER_SYSROOT]\" > '%1/systemctl.env'\n"
                                       "echo 'unit failed' >&2\nexit %2\n")
                            .arg(root())
                            .arg(status)
                            .toUtf8());
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }

    QString systemctlLog(const QString &name = QStringLiteral("systemctl.log")) const
    {
        QFile file(root() + QLatin1Char('/') + name);
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

private slots:
    void init()
    {
        m_root = std::make_unique<QTemporaryDir>();
        QVERIFY(m_root->isValid());
        m_ruleDir = root() + QStringLiteral("/etc/syslog-ng/conf.d");
        m_outside = root() + QStringLiteral("/outside");
        QVERIFY(QDir().mkpath(m_ruleDir));
        QVERIFY(QDir().mkpath(m_outside));
        QVERIFY(QDir().mkpath(root() + QStringLiteral("/etc/syslog-ng/conf.d-other")));
        QVERIFY(QDir().mkpath(m_ruleDir + QStringLiteral("/mod-velmo-sub")));
        QVERIFY(QDir().mkpath(m_ruleDir + QStringLiteral("/mod-velmo-directory.conf")));

        writeFile(m_outside + QStringLiteral("/mod-velmo-victim.conf"));
        writeFile(root() + QStringLiteral("/etc/syslog-ng/mod-velmo-parent.conf"));
        writeFile(root() + QStringLiteral("/etc/syslog-ng/conf.d-other/mod-velmo-sibling.conf"));
        writeFile(m_ruleDir + QStringLiteral("/mod-velmo-sub/x.conf"));
        writeFile(m_ruleDir + QStringLiteral("/mod-velmo-directory.conf/mod-velmo-inner.conf"));
        writeFile(m_ruleDir + QStringLiteral("/mod-velmo-keep.conf"));
        // Rules named like the files outside: a request for one of those must not take these instead.
        writeFile(m_ruleDir + QStringLiteral("/mod-velmo-victim.conf"));
        writeFile(m_ruleDir + QStringLiteral("/mod-velmo-sibling.conf"));
        writeFile(m_ruleDir + QStringLiteral("/mod-velmo-a..b.conf"));
        writeFile(m_ruleDir + QStringLiteral("/mod-velmo-.conf"));
        writeFile(m_ruleDir + QStringLiteral("/mod-velmo-keep.conf.bak"));
        writeFile(m_ruleDir + QStringLiteral("/mod-velmo-with space.conf"));
        QVERIFY(QFile::link(m_outside + QStringLiteral("/mod-velmo-victim.conf"), m_ruleDir + QStringLiteral("/mod-velmo-link.conf")));
        QVERIFY(QFile::link(m_outside, m_ruleDir + QStringLiteral("/mod-velmo-linkdir")));
    }

    void removalRefusesEverythingButRuleFiles_data()
    {
        // RULES and ROOT stand for the rule directory and the system root of the test.
        QTest::addColumn<QVariant>("file");
        const auto path = [](const char *text) { return QVariant(QString::fromLatin1(text)); };
        QTest::newRow("up and out") << path("RULES/../../../outside/mod-velmo-victim.conf");
        QTest::newRow("up one level") << path("RULES/../mod-velmo-parent.conf");
        QTest::newRow("up and back in") << path("RULES/../conf.d/mod-velmo-keep.conf");
        QTest::newRow("absolute elsewhere") << path("ROOT/outside/mod-velmo-victim.conf");
        QTest::newRow("sibling directory") << path("RULES-other/mod-velmo-sibling.conf");
        QTest::newRow("relative") << path("mod-velmo-keep.conf");
        QTest::newRow("symlink to a file outside") << path("RULES/mod-velmo-link.conf");
        QTest::newRow("through a linked directory") << path("RULES/mod-velmo-linkdir/mod-velmo-victim.conf");
        QTest::newRow("directory named like a rule") << path("RULES/mod-velmo-directory.conf");
        QTest::newRow("inside such a directory") << path("RULES/mod-velmo-directory.conf/mod-velmo-inner.conf");
        QTest::newRow("ID with a slash") << path("RULES/mod-velmo-sub/x.conf");
        QTest::newRow("ID with two dots") << path("RULES/mod-velmo-a..b.conf");
        QTest::newRow("empty ID") << path("RULES/mod-velmo-.conf");
        QTest::newRow("ID with a blank") << path("RULES/mod-velmo-with space.conf");
        QTest::newRow("backup name") << path("RULES/mod-velmo-keep.conf.bak");
        QTest::newRow("the directory itself") << path("RULES/");
        QTest::newRow("missing file") << path("RULES/mod-velmo-missing.conf");
        QTest::newRow("no file") << QVariant();
        QTest::newRow("not a string") << QVariant(QStringList{QStringLiteral("RULES/mod-velmo-keep.conf")});
    }

    void removalRefusesEverythingButRuleFiles()
    {
        QFETCH(QVariant, file);
        const auto resolve = [this](QString text) {
            return text.replace(QLatin1String("RULES"), m_ruleDir).replace(QLatin1String("ROOT"), root());
        };
        if (file.userType() == QMetaType::QString)
            file = resolve(file.toString());
        else if (file.userType() == QMetaType::QStringList)
            file = QStringList{resolve(file.toStringList().constFirst())};
        const QStringList before = snapshot(root());
        QVariantMap request{{QStringLiteral("action"), QStringLiteral("removeConfig")}};
        if (file.isValid())
            request.insert(QStringLiteral("file"), file);

        const HelperPolicy::Outcome outcome = policy().removeConfig(request);
        QVERIFY(!outcome.succeeded);
        QVERIFY(!outcome.error.isEmpty());
        QCOMPARE(snapshot(root()), before);

        // The reply the caller sees carries the reason.
        NotificationHelper helper(policy());
        const KAuth::ActionReply reply = helper.removeconfig(request);
        QVERIFY(reply.failed());
        QCOMPARE(reply.type(), KAuth::ActionReply::HelperErrorType);
        QCOMPARE(reply.errorDescription(), outcome.error);
        QCOMPARE(snapshot(root()), before);
    }

    void removalTakesExactlyTheNamedRule_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("spelling");
        QTest::newRow("plain") << "mod-velmo-keep.conf" << "/mod-velmo-keep.conf";
        QTest::newRow("every allowed character") << "mod-velmo-Auth_x-1.2.conf" << "/mod-velmo-Auth_x-1.2.conf";
        QTest::newRow("doubled slash") << "mod-velmo-keep.conf" << "//mod-velmo-keep.conf";
    }

    void removalTakesExactlyTheNamedRule()
    {
        QFETCH(QString, name);
        QFETCH(QString, spelling);
        writeFile(m_ruleDir + QLatin1Char('/') + name);
        QStringList expected = snapshot(root());
        const QString entry = m_ruleDir + QLatin1Char('/') + name + QLatin1Char(' ');
        const auto removed = std::find_if(expected.begin(), expected.end(),
                                          [&entry](const QString &line) { return line.startsWith(entry); });
        QVERIFY(removed != expected.end());
        expected.erase(removed);

        NotificationHelper helper(policy());
        const KAuth::ActionReply reply =
            helper.removeconfig({{QStringLiteral("action"), QStringLiteral("removeConfig")},
                                 {QStringLiteral("file"), m_ruleDir + spelling}});
        QVERIFY2(reply.succeeded(), qPrintable(reply.errorDescription()));
        QCOMPARE(snapshot(root()), expected);
    }

    // Root starts the helper, but whoever asks for an action may have shaped its
    // environment: the variables that redirect the viewer must not redirect it.
    void theEnvironmentRedirectsNothing()
    {
        installSystemctl(0);
        const QString rule = m_ruleDir + QStringLiteral("/mod-velmo-keep.conf");
        const QVariantMap restart{{QStringLiteral("cmd"), QStringLiteral("restart")}};
        const ScopedVariable sysroot("NIMB_EVENT_VIEWER_SYSROOT", QFile::encodeName(root()));
        const ScopedVariable path("PATH", QFile::encodeName(root() + QStringLiteral("/bin")));

        NotificationHelper helper;
        QCOMPARE(helper.policy().ruleDirectory(), QStringLiteral("/etc/syslog-ng/conf.d"));
        const std::optional<HelperPolicy::Command> command = helper.policy().serviceCommand(restart, nullptr);
        QVERIFY(command);
        QCOMPARE(command->program, QStringLiteral("/bin/systemctl"));
        QVERIFY(helper.removeconfig({{QStringLiteral("file"), rule}}).failed());
        QVERIFY(QFile::exists(rule));

        // Nor does the environment reach the service manager it runs.
        const KAuth::ActionReply reply = NotificationHelper(policy()).loggingservicectl(restart);
        QVERIFY2(reply.succeeded(), qPrintable(reply.errorDescription()));
        QCOMPARE(systemctlLog(), QStringLiteral("restart syslog-ng\n"));
        QCOMPARE(systemctlLog(QStringLiteral("systemctl.env")), QStringLiteral("[/usr/sbin:/usr/bin:/sbin:/bin] []\n"));

        // The installed helper cannot consult the variable: it does not even know its name.
        QFile executable(QStringLiteral(NIMB_HELPER_EXECUTABLE));
        QVERIFY2(executable.open(QIODevice::ReadOnly), NIMB_HELPER_EXECUTABLE);
        QVERIFY(!executable.readAll().contains("NIMB_EVENT_VIEWER_SYSROOT"));
    }

    void onlyRestartIsAccepted_data()
    {
        QTest::addColumn<QVariant>("command");
        QTest::newRow("stop") << QVariant(QStringLiteral("stop"));
        QTest::newRow("restart with more") << QVariant(QStringLiteral("restart sshd"));
        QTest::newRow("shell") << QVariant(QStringLiteral("restart; touch /tmp/x"));
        QTest::newRow("other case") << QVariant(QStringLiteral("Restart"));
        QTest::newRow("empty") << QVariant(QString());
        QTest::newRow("missing") << QVariant();
        QTest::newRow("list") << QVariant(QStringList{QStringLiteral("restart")});
    }

    void onlyRestartIsAccepted()
    {
        QFETCH(QVariant, command);
        installSystemctl(0);
        QVariantMap request;
        if (command.isValid())
            request.insert(QStringLiteral("cmd"), command);
        QString error;
        QVERIFY(!policy().serviceCommand(request, &error));
        QVERIFY(!error.isEmpty());

        NotificationHelper helper(policy());
        const KAuth::ActionReply reply = helper.loggingservicectl(request);
        QVERIFY(reply.failed());
        QCOMPARE(reply.errorDescription(), error);
        QCOMPARE(systemctlLog(), QString());
    }

    void restartRunsTheServiceManager()
    {
        const QVariantMap restart{{QStringLiteral("cmd"), QStringLiteral("restart")}};
        const std::optional<HelperPolicy::Command> command = policy().serviceCommand(restart, nullptr);
        QVERIFY(command);
        QCOMPARE(command->program, root() + QStringLiteral("/bin/systemctl"));
        QCOMPARE(command->arguments, (QStringList{QStringLiteral("restart"), QStringLiteral("syslog-ng")}));

        installSystemctl(0);
        NotificationHelper helper(policy());
        const KAuth::ActionReply reply = helper.loggingservicectl(restart);
        QVERIFY2(reply.succeeded(), qPrintable(reply.errorDescription()));
        QCOMPARE(systemctlLog(), QStringLiteral("restart syslog-ng\n"));

        // A failed restart is the helper's error, with what the service manager said.
        installSystemctl(1);
        const KAuth::ActionReply failed = helper.loggingservicectl(restart);
        QVERIFY(failed.failed());
        QVERIFY2(failed.errorDescription().contains(QLatin1String("unit failed")), qPrintable(failed.errorDescription()));
    }
};

QTEST_GUILESS_MAIN(TestNotificationHelper)
#include "test_notificationhelper.moc"
