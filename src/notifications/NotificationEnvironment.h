// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <functional>

class QObject;

// What the notification commands do outside the viewer: start programs, run the
// privileged helper's actions and tell the user. Tests put a recorder in its place.
class NotificationEnvironment
{
public:
    struct HelperResult {
        bool succeeded = false;
        QString errorText;
    };

    virtual ~NotificationEnvironment() = default;

    // Starts `program` with `arguments` and returns at once; `finished` runs on the
    // GUI thread when the program ends, unless `context` is gone by then.
    virtual void startProgram(const QString &program, const QStringList &arguments, QObject *context,
                              std::function<void()> finished) = 0;
    // Runs a helper action and waits for its outcome.
    virtual HelperResult runHelperAction(const QString &action, const QVariantMap &arguments) = 0;
    // Starts a helper action and returns at once; `finished` gets its outcome on the
    // GUI thread, unless `context` is gone by then.
    virtual void startHelperAction(const QString &action, const QVariantMap &arguments, QObject *context,
                                   std::function<void(const HelperResult &)> finished) = 0;
    // Shows `text` in a modal message box.
    virtual void showMessage(const QString &text) = 0;
    // Asks `question` in a modal message box with Yes and No; true for Yes.
    virtual bool askYesNo(const QString &question) = 0;
};
