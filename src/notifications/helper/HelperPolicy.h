// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <optional>

// What the privileged helper may do, decided on the request alone. It removes only
// a regular file directly inside the rule directory whose name is a notification
// rule name with a safe ID, and it only restarts the logging service.
class HelperPolicy
{
public:
    struct Outcome {
        bool succeeded = false;
        QString error;
    };
    struct Command {
        QString program;
        QStringList arguments;
    };

    HelperPolicy(QString ruleDirectory, QString systemctl);

    // Removes the file named by the request's "file" (a full path) if it passes
    // every check; otherwise touches nothing.
    Outcome removeConfig(const QVariantMap &request) const;
    // The command for the request's "cmd", which may only be "restart".
    std::optional<Command> serviceCommand(const QVariantMap &request, QString *error) const;

    // Letters, digits, "-", "_" and ".", not empty, no "..".
    static bool isSafeId(const QString &id);

    static QString serviceName() { return QStringLiteral("syslog-ng"); }

    QString ruleDirectory() const { return m_ruleDirectory; }

private:
    QString m_ruleDirectory;
    QString m_systemctl;
};
