// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "NotificationHelper.h"

#include <QProcess>
#include <QProcessEnvironment>

#include <utility>

namespace {
// systemctl waits for the service to come up; a hung start should not hold the helper forever.
constexpr int kRestartTimeoutMs = 90 * 1000;

KAuth::ActionReply errorReply(const QString &description)
{
    KAuth::ActionReply reply = KAuth::ActionReply::HelperErrorReply();
    reply.setErrorDescription(description);
    return reply;
}

// The service manager runs as root too: whatever the helper was started with must not
// reach it (a pager, a search path, the manager's own debugging switches).
QProcessEnvironment serviceEnvironment()
{
    QProcessEnvironment environment;
    environment.insert(QStringLiteral("PATH"), QStringLiteral("/usr/sbin:/usr/bin:/sbin:/bin"));
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    return environment;
}
}

// Root runs this: the paths are the build's, never the environment's.
NotificationHelper::NotificationHelper()
    : NotificationHelper(HelperPolicy(QStringLiteral(NIMB_HELPER_RULE_DIR), QStringLiteral(NIMB_HELPER_SYSTEMCTL)))
{
}

NotificationHelper::NotificationHelper(HelperPolicy policy) : m_policy(std::move(policy))
{
}

const HelperPolicy &NotificationHelper::policy() const
{
    return m_policy;
}

KAuth::ActionReply NotificationHelper::removeconfig(const QVariantMap &args)
{
    const HelperPolicy::Outcome outcome = m_policy.removeConfig(args);
    return outcome.succeeded ? KAuth::ActionReply::SuccessReply() : errorReply(outcome.error);
}

KAuth::ActionReply NotificationHelper::loggingservicectl(const QVariantMap &args)
{
    QString error;
    const std::optional<HelperPolicy::Command> command = m_policy.serviceCommand(args, &error);
    if (!command)
        return errorReply(error);

    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setProcessEnvironment(serviceEnvironment());
    process.start(command->program, command->arguments, QIODevice::ReadOnly);
    if (!process.waitForStarted())
        return errorReply(QStringLiteral("Cannot start %1: %2").arg(command->program, process.errorString()));
    if (!process.waitForFinished(kRestartTimeoutMs)) {
        process.kill();
        process.waitForFinished();
        return errorReply(QStringLiteral("%1 did not finish in time.").arg(command->program));
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return errorReply(QStringLiteral("Restarting %1 failed: %2")
                              .arg(HelperPolicy::serviceName(), QString::fromLocal8Bit(process.readAll()).trimmed()));
    return KAuth::ActionReply::SuccessReply();
}
