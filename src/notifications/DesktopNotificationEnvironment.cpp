// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "DesktopNotificationEnvironment.h"

#include <KAuth/Action>
#include <KAuth/ExecuteJob>

#include <QMessageBox>
#include <QProcess>
#include <QWidget>

#include <memory>

namespace {
KAuth::Action helperAction(const QString &name, const QVariantMap &arguments, QWidget *window)
{
    KAuth::Action action(name);
    action.setHelperId(DesktopNotificationEnvironment::helperId());
    action.setArguments(arguments);
    if (window)
        action.setParentWidget(window);
    return action;
}
}

DesktopNotificationEnvironment::DesktopNotificationEnvironment(QWidget *window) : m_window(window)
{
}

QString DesktopNotificationEnvironment::helperId()
{
    return QStringLiteral(NIMB_KAUTH_HELPER_ID);
}

void DesktopNotificationEnvironment::startProgram(const QString &program, const QStringList &arguments,
                                                  QObject *context, std::function<void()> finished)
{
    auto *process = new QProcess(m_window.data());
    // Nobody reads what the program writes; a full pipe must not stall it.
    process->setStandardOutputFile(QProcess::nullDevice());
    process->setStandardErrorFile(QProcess::nullDevice());
    QObject::connect(process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), context,
                     [finished = std::move(finished)] { finished(); });
    QObject::connect(process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), process,
                     &QObject::deleteLater);
    QObject::connect(process, &QProcess::errorOccurred, process, [process](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            process->deleteLater();
    });
    process->start(program, arguments, QIODevice::ReadWrite);
}

DesktopNotificationEnvironment::HelperResult DesktopNotificationEnvironment::runHelperAction(
    const QString &action, const QVariantMap &arguments)
{
    KAuth::ExecuteJob *job = helperAction(action, arguments, m_window).execute();
    // The error text is read after the job has finished, so the job must outlive exec().
    job->setAutoDelete(false);
    const std::unique_ptr<KAuth::ExecuteJob> owner(job);
    HelperResult result;
    result.succeeded = job->exec();
    if (!result.succeeded)
        result.errorText = job->errorString();
    return result;
}

void DesktopNotificationEnvironment::startHelperAction(const QString &action, const QVariantMap &arguments,
                                                       QObject *context,
                                                       std::function<void(const HelperResult &)> finished)
{
    KAuth::ExecuteJob *job = helperAction(action, arguments, m_window).execute();
    // The job deletes itself after this signal, so its error text is read in it.
    QObject::connect(job, &KJob::result, context, [finished = std::move(finished)](KJob *done) {
        finished(HelperResult{done->error() == KJob::NoError, done->errorString()});
    });
    job->start();
}

void DesktopNotificationEnvironment::showMessage(const QString &text)
{
    QMessageBox::warning(m_window, QString(), text);
}

bool DesktopNotificationEnvironment::askYesNo(const QString &question)
{
    return QMessageBox::question(m_window, QString(), question, QMessageBox::Yes | QMessageBox::No, QMessageBox::No)
           == QMessageBox::Yes;
}
