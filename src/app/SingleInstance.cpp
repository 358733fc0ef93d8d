// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "SingleInstance.h"

#include "AppLogging.h"

#include <KDBusService>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDir>
#include <QVariantMap>

namespace
{
// How long a later start waits for the running copy to take its message.
const int kForwardTimeoutMs = 5000;
const char kInterface[] = "org.kde.KDBusService";
}

SingleInstance::SingleInstance(QObject *parent) : QObject(parent)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        qCWarning(nimbApp) << "no session bus; another copy of the viewer cannot be detected";
        return;
    }
    // KDBusService would forward a start without arguments through Activate and end
    // the process with status 0; the status of a later start must be -1 in every
    // case, so the running copy is looked for here first.
    if (bus.interface()->isServiceRegistered(serviceName())) {
        m_secondary = true;
        forward(QCoreApplication::arguments());
        return;
    }

    m_service = new KDBusService(KDBusService::Unique | KDBusService::NoExitOnFailure, this);
    if (!m_service->isRegistered()) {
        // Another copy took the name in the meantime and did not answer.
        m_secondary = true;
        return;
    }
    // Direct, so that the exit value is set before the caller's reply is sent.
    connect(
        m_service, &KDBusService::activateRequested, this,
        [this](const QStringList &arguments, const QString &) {
            m_service->setExitValue(-1);
            const QString message = messageFor(arguments);
            qCInfo(nimbApp).noquote() << "received" << message;
            emit messageReceived(message);
        },
        Qt::DirectConnection);
}

SingleInstance::~SingleInstance() = default;

QString SingleInstance::messageFor(const QStringList &arguments)
{
    return arguments.contains(QStringLiteral("--toggle")) ? QStringLiteral("toggle") : QStringLiteral("raise");
}

QString SingleInstance::serviceName()
{
    // The rule KDBusService registers by: the organisation domain reversed, then
    // the application name.
    const QStringList parts = QCoreApplication::organizationDomain().split(QLatin1Char('.'), Qt::SkipEmptyParts);
    QString name;
    for (const QString &part : parts)
        name.prepend(part + QLatin1Char('.'));
    if (name.isEmpty())
        name = QStringLiteral("local.");
    return name + QCoreApplication::applicationName();
}

void SingleInstance::forward(const QStringList &arguments) const
{
    // KDBusService answers at the service name turned into a path.
    const QString path =
        QLatin1Char('/') + serviceName().replace(QLatin1Char('.'), QLatin1Char('/')).replace(QLatin1Char('-'), QLatin1Char('_'));
    QDBusMessage call =
        QDBusMessage::createMethodCall(serviceName(), path, QLatin1String(kInterface), QStringLiteral("CommandLine"));
    call << arguments << QDir::currentPath() << QVariantMap();
    const QDBusMessage reply = QDBusConnection::sessionBus().call(call, QDBus::Block, kForwardTimeoutMs);
    if (reply.type() == QDBusMessage::ErrorMessage)
        qCWarning(nimbApp) << "the running viewer did not take the message:" << reply.errorMessage();
}
