// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QList>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>

class Event;
class NotificationEnvironment;
class NotificationRules;
class QAction;
class QWidget;

// The window's three notification commands, told apart by their actions' data
// tags, and the states of those actions in a tab's context menu. Works on the
// process-wide rule set unless given another. Removing a rule takes effect only
// with the logging service's restart, so it is asked for first and a failed
// restart is reported.
class NotificationController : public QObject
{
    Q_OBJECT
public:
    // The single selected event of the current tab, or null.
    using CurrentEvent = std::function<const Event *()>;

    // With the real environment over `window`, which also becomes the parent.
    NotificationController(QWidget *window, CurrentEvent currentEvent);
    // With the given environment and rule set; the set must outlive the controller.
    NotificationController(std::unique_ptr<NotificationEnvironment> environment, NotificationRules &rules,
                           CurrentEvent currentEvent, QObject *parent = nullptr);
    ~NotificationController() override;

    const NotificationRules &rules() const { return m_rules; }

    // Sets the notification actions among `actions` (found by data tag; others are
    // left alone) for a context menu over `event`, the single selected event or null.
    void updateContextActions(const QList<QAction *> &actions, const Event *event) const;

    static QString notifyByIdTag() { return QStringLiteral("notifyById"); }
    static QString enableTag() { return QStringLiteral("enableNotifications"); }
    static QString disableTag() { return QStringLiteral("disableNotifications"); }

public Q_SLOTS:
    // Reads the rule directory again.
    void rescan();
    // The one handler of the three actions; the sender's data tag picks the command.
    void notificationCommand();

private:
    void openSettingsTool(const QString &argumentPrefix);
    void disableNotifications();

    std::unique_ptr<NotificationEnvironment> m_environment;
    NotificationRules &m_rules;
    CurrentEvent m_currentEvent;
};
