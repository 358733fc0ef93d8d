// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "NotificationEnvironment.h"

#include <QPointer>

class QWidget;

// The real thing: processes that are children of the window, KAuth actions of the
// viewer's helper, message boxes over the window.
class DesktopNotificationEnvironment : public NotificationEnvironment
{
public:
    explicit DesktopNotificationEnvironment(QWidget *window);

    void startProgram(const QString &program, const QStringList &arguments, QObject *context,
                      std::function<void()> finished) override;
    HelperResult runHelperAction(const QString &action, const QVariantMap &arguments) override;
    void startHelperAction(const QString &action, const QVariantMap &arguments, QObject *context,
                           std::function<void(const HelperResult &)> finished) override;
    void showMessage(const QString &text) override;
    bool askYesNo(const QString &question) override;

    // The identifier under which the helper registers; every action name starts with it.
    static QString helperId();

private:
    QPointer<QWidget> m_window;
};
