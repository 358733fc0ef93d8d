// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "HelperPolicy.h"

#include <KAuth/ActionReply>

#include <QObject>
#include <QVariantMap>

// The privileged side of the viewer's notification commands. KAuth calls the slot
// named after the last part of the action's name.
class NotificationHelper : public QObject
{
    Q_OBJECT
public:
    // On the rule directory and service manager fixed when the helper was built.
    NotificationHelper();
    explicit NotificationHelper(HelperPolicy policy);

    const HelperPolicy &policy() const;

public Q_SLOTS:
    KAuth::ActionReply removeconfig(const QVariantMap &args);
    KAuth::ActionReply loggingservicectl(const QVariantMap &args);

private:
    HelperPolicy m_policy;
};
