// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "NotificationController.h"

#include "DesktopNotificationEnvironment.h"
#include "Event.h"
#include "NotificationRules.h"
#include "SystemPaths.h"

#include <QAction>
#include <QFile>
#include <QWidget>

namespace {
QString helperAction(const char *name)
{
    return DesktopNotificationEnvironment::helperId() + QLatin1Char('.') + QLatin1String(name);
}

QString rulePath(const QString &key)
{
    return SystemPaths::notificationRuleDir() + QLatin1Char('/') + NotificationRules::prefix() + key
           + NotificationRules::suffix();
}
}

NotificationController::NotificationController(QWidget *window, CurrentEvent currentEvent)
    : NotificationController(std::make_unique<DesktopNotificationEnvironment>(window), NotificationRules::instance(),
                             std::move(currentEvent), window)
{
}

NotificationController::NotificationController(std::unique_ptr<NotificationEnvironment> environment,
                                               NotificationRules &rules, CurrentEvent currentEvent, QObject *parent)
    : QObject(parent), m_environment(std::move(environment)), m_rules(rules), m_currentEvent(std::move(currentEvent))
{
}

NotificationController::~NotificationController() = default;

void NotificationController::rescan()
{
    m_rules.rescan(SystemPaths::notificationRuleDir());
}

void NotificationController::updateContextActions(const QList<QAction *> &actions, const Event *event) const
{
    const bool ruleExists = event && m_rules.contains(event->messageId);
    for (QAction *action : actions) {
        const QString tag = action->data().toString();
        if (tag == notifyByIdTag()) {
            // Without a single event the settings tool still opens, just on no event.
            action->setEnabled(!event || ruleExists);
        } else if (tag == enableTag()) {
            action->setEnabled(event && !ruleExists);
            action->setVisible(!ruleExists);
        } else if (tag == disableTag()) {
            action->setEnabled(ruleExists);
            action->setVisible(ruleExists);
        }
    }
}

void NotificationController::notificationCommand()
{
    const auto *action = qobject_cast<const QAction *>(sender());
    if (!action)
        return;
    const QString tag = action->data().toString();
    if (tag == notifyByIdTag())
        openSettingsTool(QStringLiteral("notify "));
    else if (tag == enableTag())
        openSettingsTool(QStringLiteral("enableNotifications "));
    else if (tag == disableTag())
        disableNotifications();
}

void NotificationController::openSettingsTool(const QString &argumentPrefix)
{
    const Event *event = m_currentEvent ? m_currentEvent() : nullptr;
    QString name = event ? event->eventName() : QString();
    name.replace(QLatin1Char(' '), QLatin1Char('_'));

    if (!QFile::exists(SystemPaths::adminModule())) {
        m_environment->showMessage(tr("nimb-admin-events is not installed."));
        return;
    }
    m_environment->startProgram(QStringLiteral("velmo-systemsettings"),
                                {QStringLiteral("--args"), argumentPrefix + name, QStringLiteral("nimb-admin-events")},
                                this, [this] { rescan(); });
}

void NotificationController::disableNotifications()
{
    const Event *event = m_currentEvent ? m_currentEvent() : nullptr;
    const QString id = event ? event->messageId : QString();
    if (!m_environment->askYesNo(tr("Stop sending notifications for events with the ID %1?").arg(id)))
        return;

    if (!QFile::remove(rulePath(id))) {
        // Deliberately asymmetric: the helper is asked for the name with "-" for every
        // "_" of the ID, while the direct attempt keeps the ID as it is.
        QString helperKey = id;
        helperKey.replace(QLatin1Char('_'), QLatin1Char('-'));
        const NotificationEnvironment::HelperResult result = m_environment->runHelperAction(
            helperAction("removeconfig"),
            {{QStringLiteral("action"), QStringLiteral("removeConfig")}, {QStringLiteral("file"), rulePath(helperKey)}});
        if (!result.succeeded) {
            m_environment->showMessage(tr("KAuth returned an error code: %1").arg(result.errorText));
            return;
        }
    }
    rescan();
    // Without the restart the removed rule stays in force until the service restarts by itself.
    m_environment->startHelperAction(
        helperAction("loggingservicectl"), {{QStringLiteral("cmd"), QStringLiteral("restart")}}, this,
        [this](const NotificationEnvironment::HelperResult &result) {
            if (!result.succeeded)
                m_environment->showMessage(tr("The logging service could not be restarted: %1").arg(result.errorText));
        });
}
