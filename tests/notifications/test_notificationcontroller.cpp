// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "DesktopNotificationEnvironment.h"
#include "Event.h"
#include "NotificationController.h"
#include "NotificationEnvironment.h"
#include "NotificationRules.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMessageBox>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <QWidget>
#include <QtTest>

#include <functional>

namespace
{
struct HelperCall {
    QString action;
    QVariantMap arguments;
};

// Records what the commands ask of the system; the helper's answer is scripted. Questions
// go to the user in real message boxes.
class RecordingEnvironment : public NotificationEnvironment
{
public:
    struct Log {
        QString program;
        QStringList programArguments;
        std::function<void()> programFinished;
        int programsStarted = 0;
        QList<HelperCall> waitedActions;
        QList<HelperCall> startedActions;
        std::function<void(const HelperResult &)> startedFinished;
        QStringList messages;
        std::function<HelperResult(const HelperCall &)> helper;
    };

    explicit RecordingEnvironment(Log &log) : m_log(log), m_desktop(nullptr) {}

    void startProgram(const QString &program, const QStringList &arguments, QObject *,
                      std::function<void()> finished) override
    {
        ++m_log.programsStarted;
        m_log.program = program;
        m_log.programArguments = arguments;
        m_log.programFinished = std::move(finished);
    }
    HelperResult runHelperAction(const QString &action, const QVariantMap &arguments) override
    {
        m_log.waitedActions << HelperCall{action, arguments};
        return m_log.helper ? m_log.helper(m_log.waitedActions.last()) : HelperResult{};
    }
    void startHelperAction(const QString &action, const QVariantMap &arguments, QObject *,
                           std::function<void(const HelperResult &)> finished) override
    {
        m_log.startedActions << HelperCall{action, arguments};
        m_log.startedFinished = std::move(finished);
    }
    void showMessage(const QString &text) override { m_log.messages << text; }
    bool askYesNo(const QString &question) override { return m_desktop.askYesNo(question); }

private:
    Log &m_log;
    DesktopNotificationEnvironment m_desktop;
};

// Answers the next modal message box by clicking `button`, as the user would, and keeps
// what the box said and offered.
class BoxAnswerer : public QObject
{
public:
    explicit BoxAnswerer(QMessageBox::StandardButton button) : m_button(button)
    {
        connect(&m_poll, &QTimer::timeout, this, [this] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box)
                return;
            m_poll.stop();
            text = box->text();
            for (QAbstractButton *offered : box->buttons())
                buttons << box->standardButton(offered);
            if (QAbstractButton *answer = box->button(m_button))
                QTest::mouseClick(answer, Qt::LeftButton);
            else
                box->reject();
            answered = true;
        });
        m_poll.start(10);
    }

    bool answered = false;
    QString text;
    QList<QMessageBox::StandardButton> buttons;

private:
    QMessageBox::StandardButton m_button;
    QTimer m_poll;
};

void touch(const QString &path)
{
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(path));
}

QString helperAction(const char *name)
{
    return DesktopNotificationEnvironment::helperId() + QLatin1Char('.') + QLatin1String(name);
}
}

class TestNotificationController : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_root;
    QString m_ruleDir;
    RecordingEnvironment::Log m_log;
    NotificationRules m_rules;
    Event m_event;
    const Event *m_current = nullptr;
    std::unique_ptr<NotificationController> m_controller;

    QString rule(const QString &key) const { return m_ruleDir + QStringLiteral("/mod-velmo-") + key + QStringLiteral(".conf"); }

    void installAdminModule()
    {
        QVERIFY(QDir().mkpath(m_root->path() + QStringLiteral("/usr/bin")));
        touch(m_root->path() + QStringLiteral("/usr/bin/nimb-admin-events"));
    }

    // Triggers an action carrying `tag`, connected the way the window connects its three.
    void trigger(const QString &tag)
    {
        QAction action;
        action.setData(tag);
        connect(&action, &QAction::triggered, m_controller.get(), &NotificationController::notificationCommand);
        action.trigger();
    }

    // "Disable notifications sending", with its question answered yes.
    void disable()
    {
        BoxAnswerer answerer(QMessageBox::Yes);
        trigger(QStringLiteral("disableNotifications"));
        QVERIFY2(answerer.answered, "no question was asked");
    }

private slots:
    void init()
    {
        m_root = std::make_unique<QTemporaryDir>();
        QVERIFY(m_root->isValid());
        qputenv("NIMB_EVENT_VIEWER_SYSROOT", QFile::encodeName(m_root->path()));
        m_ruleDir = m_root->path() + QStringLiteral("/etc/syslog-ng/conf.d");
        QVERIFY(QDir().mkpath(m_ruleDir));
        m_log = RecordingEnvironment::Log();
        m_rules = NotificationRules();
        m_event.nameEn = QStringLiteral("User logon");
        m_event.nameRu = QStringLiteral("Вход пользователя");
        m_event.messageId = QStringLiteral("auth-user-logon");
        m_current = &m_event;
        m_controller = std::make_unique<NotificationController>(std::make_unique<RecordingEnvironment>(m_log), m_rules,
                                                                [this] { return m_current; });
    }

    void cleanup()
    {
        m_controller.reset();
        qunsetenv("NIMB_EVENT_VIEWER_SYSROOT");
    }

    void rescanKeepsRegularRuleFilesOnly()
    {
        for (const char *name : {"mod-velmo-auth-login.conf", "mod-velmo-mod-velmo-X.conf", "mod-velmo-Y.conf.bak",
                                 "Mod-velmo-case.conf", "mod-velmo-upper.CONF", "other.conf", "mod-velmo-usb.conf.conf"})
            touch(m_ruleDir + QLatin1Char('/') + QLatin1String(name));
        QVERIFY(QDir(m_ruleDir).mkdir(QStringLiteral("mod-velmo-directory.conf")));

        m_controller->rescan();
        QCOMPARE(m_rules.keys(), (QStringList{QStringLiteral("X"), QStringLiteral("auth-login"), QStringLiteral("usb")}));
        QVERIFY(m_rules.contains(QStringLiteral("X")));
        QVERIFY(!m_rules.contains(QStringLiteral("mod-velmo-X")));
        QVERIFY(!m_rules.contains(QStringLiteral("directory")));

        // A rescan starts from nothing: what is gone from the directory is gone from the set.
        QVERIFY(QFile::remove(rule(QStringLiteral("auth-login"))));
        m_controller->rescan();
        QCOMPARE(m_rules.keys(), (QStringList{QStringLiteral("X"), QStringLiteral("usb")}));

        QVERIFY(QDir(m_ruleDir).removeRecursively());
        m_controller->rescan();
        QVERIFY(m_rules.keys().isEmpty());
    }

    void contextMenuStates_data()
    {
        QTest::addColumn<bool>("singleEvent");
        QTest::addColumn<bool>("ruleExists");
        // notify enabled; enable enabled, visible; disable enabled, visible
        QTest::addColumn<QVector<bool>>("expected");
        QTest::newRow("rule exists") << true << true << QVector<bool>{true, false, false, true, true};
        QTest::newRow("no rule") << true << false << QVector<bool>{false, true, true, false, false};
        QTest::newRow("no single event") << false << true << QVector<bool>{true, false, true, false, false};
    }

    void contextMenuStates()
    {
        QFETCH(bool, singleEvent);
        QFETCH(bool, ruleExists);
        QFETCH(QVector<bool>, expected);
        if (ruleExists)
            touch(rule(m_event.messageId));
        touch(rule(QStringLiteral("another-id")));
        m_controller->rescan();

        QAction filterById, notify, enable, disable;
        filterById.setData(QStringLiteral("filterById"));
        filterById.setEnabled(false);
        notify.setData(QStringLiteral("notifyById"));
        enable.setData(QStringLiteral("enableNotifications"));
        disable.setData(QStringLiteral("disableNotifications"));
        // The opposite of what is expected, so that every state must be set.
        notify.setEnabled(!expected[0]);
        enable.setEnabled(!expected[1]);
        enable.setVisible(!expected[2]);
        disable.setEnabled(!expected[3]);
        disable.setVisible(!expected[4]);

        m_controller->updateContextActions({&filterById, &disable, &notify, &enable}, singleEvent ? &m_event : nullptr);
        QCOMPARE((QVector<bool>{notify.isEnabled(), enable.isEnabled(), enable.isVisible(), disable.isEnabled(),
                                disable.isVisible()}),
                 expected);
        QVERIFY(!filterById.isEnabled());
    }

    void settingsToolGetsTheEventName_data()
    {
        QTest::addColumn<QString>("tag");
        QTest::addColumn<bool>("singleEvent");
        QTest::addColumn<QString>("argument");
        QTest::newRow("notification settings") << "notifyById" << true << "notify User_logon";
        QTest::newRow("enable") << "enableNotifications" << true << "enableNotifications User_logon";
        QTest::newRow("no single event") << "notifyById" << false << "notify ";
    }

    void settingsToolGetsTheEventName()
    {
        QFETCH(QString, tag);
        QFETCH(bool, singleEvent);
        QFETCH(QString, argument);
        installAdminModule();
        if (!singleEvent)
            m_current = nullptr;

        trigger(tag);
        QCOMPARE(m_log.programsStarted, 1);
        QCOMPARE(m_log.program, QStringLiteral("velmo-systemsettings"));
        QCOMPARE(m_log.programArguments, (QStringList{QStringLiteral("--args"), argument, QStringLiteral("nimb-admin-events")}));
        QVERIFY(m_log.messages.isEmpty());
        QVERIFY(m_log.waitedActions.isEmpty() && m_log.startedActions.isEmpty());

        // The rules the tool wrote are known once it has finished.
        touch(rule(QStringLiteral("auth-user-logon")));
        QVERIFY(!m_rules.contains(QStringLiteral("auth-user-logon")));
        m_log.programFinished();
        QVERIFY(m_rules.contains(QStringLiteral("auth-user-logon")));
    }

    void missingAdminModuleIsReported()
    {
        for (const QString &tag : {QStringLiteral("notifyById"), QStringLiteral("enableNotifications")})
            trigger(tag);
        const QString missing = QStringLiteral("nimb-admin-events is not installed.");
        QCOMPARE(m_log.messages, (QStringList{missing, missing}));
        QCOMPARE(m_log.programsStarted, 0);
    }

    // Nothing is removed until the user has said yes to the question that names the ID.
    void disablingAsksFirst()
    {
        touch(rule(m_event.messageId));
        m_controller->rescan();
        for (const QMessageBox::StandardButton answer : {QMessageBox::No, QMessageBox::Yes}) {
            BoxAnswerer answerer(answer);
            trigger(QStringLiteral("disableNotifications"));
            QVERIFY(answerer.answered);
            QVERIFY2(answerer.text.contains(QStringLiteral("auth-user-logon")), qPrintable(answerer.text));
            QCOMPARE(answerer.buttons, (QList<QMessageBox::StandardButton>{QMessageBox::Yes, QMessageBox::No}));
            const bool yes = answer == QMessageBox::Yes;
            QCOMPARE(QFile::exists(rule(m_event.messageId)), !yes);
            QCOMPARE(m_rules.contains(m_event.messageId), !yes);
            QCOMPARE(m_log.startedActions.size(), yes ? 1 : 0);
        }
        QVERIFY(m_log.waitedActions.isEmpty() && m_log.messages.isEmpty());
    }

    // The restart runs on after the command; when it fails, the user is told why.
    void failedRestartIsReported()
    {
        touch(rule(m_event.messageId));
        disable();
        QCOMPARE(m_log.startedActions.size(), 1);
        QVERIFY(m_log.startedFinished);
        m_log.startedFinished({true, QString()});
        QVERIFY(m_log.messages.isEmpty());
        m_log.startedFinished({false, QStringLiteral("Job for syslog-ng.service failed.")});
        QCOMPARE(m_log.messages,
                 QStringList{QStringLiteral("The logging service could not be restarted: Job for syslog-ng.service failed.")});
    }

    void directRemovalRestartsWithoutHelper()
    {
        // The direct attempt keeps "_"; only the helper is asked for "-".
        m_event.messageId = QStringLiteral("usb_device");
        touch(rule(QStringLiteral("usb_device")));
        touch(rule(QStringLiteral("usb-device")));
        m_controller->rescan();

        disable();
        QVERIFY(!QFile::exists(rule(QStringLiteral("usb_device"))));
        QVERIFY(QFile::exists(rule(QStringLiteral("usb-device"))));
        QVERIFY(m_log.waitedActions.isEmpty());
        QCOMPARE(m_rules.keys(), QStringList{QStringLiteral("usb-device")});
        QCOMPARE(m_log.startedActions.size(), 1);
        QCOMPARE(m_log.startedActions[0].action, helperAction("loggingservicectl"));
        QCOMPARE(m_log.startedActions[0].arguments, (QVariantMap{{QStringLiteral("cmd"), QStringLiteral("restart")}}));
        QVERIFY(m_log.messages.isEmpty());
    }

    void helperRemovesWhatTheUserCannot()
    {
        m_event.messageId = QStringLiteral("usb_device");
        touch(rule(QStringLiteral("usb-device")));
        m_controller->rescan();
        m_log.helper = [](const HelperCall &call) {
            return NotificationEnvironment::HelperResult{QFile::remove(call.arguments.value(QStringLiteral("file")).toString()),
                                                         QString()};
        };

        disable();
        QCOMPARE(m_log.waitedActions.size(), 1);
        QCOMPARE(m_log.waitedActions[0].action, helperAction("removeconfig"));
        QCOMPARE(m_log.waitedActions[0].arguments,
                 (QVariantMap{{QStringLiteral("action"), QStringLiteral("removeConfig")},
                              {QStringLiteral("file"), rule(QStringLiteral("usb-device"))}}));
        QVERIFY(m_rules.keys().isEmpty());
        QCOMPARE(m_log.startedActions.size(), 1);
        QCOMPARE(m_log.startedActions[0].action, helperAction("loggingservicectl"));
        QVERIFY(m_log.messages.isEmpty());
    }

    void helperFailureStopsTheCommand()
    {
        m_controller->rescan();
        m_log.helper = [](const HelperCall &) {
            return NotificationEnvironment::HelperResult{false, QStringLiteral("Authorization denied")};
        };
        // A rule appearing now would be seen by a rescan, which must not happen.
        touch(rule(QStringLiteral("written-meanwhile")));

        disable();
        QCOMPARE(m_log.waitedActions.size(), 1);
        QCOMPARE(m_log.messages, QStringList{QStringLiteral("KAuth returned an error code: Authorization denied")});
        QVERIFY(m_log.startedActions.isEmpty());
        QVERIFY(m_rules.keys().isEmpty());
    }

    void withoutSingleEventTheEmptyNameIsUsed()
    {
        m_current = nullptr;
        touch(rule(QString()));
        disable();
        QVERIFY(!QFile::exists(rule(QString())));
        QVERIFY(m_log.waitedActions.isEmpty());
        QCOMPARE(m_log.startedActions.size(), 1);
    }

    void unknownTagsAndCallsWithoutActionDoNothing()
    {
        installAdminModule();
        touch(rule(m_event.messageId));
        trigger(QStringLiteral("filterById"));
        trigger(QString());
        m_controller->notificationCommand();
        QCOMPARE(m_log.programsStarted, 0);
        QVERIFY(m_log.waitedActions.isEmpty() && m_log.startedActions.isEmpty() && m_log.messages.isEmpty());
        QVERIFY(QFile::exists(rule(m_event.messageId)));
    }

    void desktopEnvironmentReportsTheProgramsEnd()
    {
        QWidget window;
        DesktopNotificationEnvironment environment(&window);
        QObject context;
        int finished = 0;
        // Writes more than a pipe holds: nobody reads it, and the program must still end.
        environment.startProgram(QStringLiteral("/bin/sh"),
                                 {QStringLiteral("-c"), QStringLiteral("head -c 200000 /dev/zero; head -c 200000 /dev/zero >&2")},
                                 &context, [&finished] { ++finished; });
        QTRY_COMPARE(finished, 1);
        QTRY_VERIFY(window.findChildren<QProcess *>().isEmpty());

        environment.startProgram(m_root->path() + QStringLiteral("/no-such-program"), {}, &context,
                                 [&finished] { ++finished; });
        QTRY_VERIFY(window.findChildren<QProcess *>().isEmpty());
        QCOMPARE(finished, 1);
    }
};

QTEST_MAIN(TestNotificationController)
#include "test_notificationcontroller.moc"
