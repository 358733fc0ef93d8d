// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

class KDBusService;

// Keeps the viewer to one copy per session. The first start owns the application's
// name on the session bus; a later start hands its command line to that copy and
// must end without a window. Without a session bus every start runs on its own.
class SingleInstance : public QObject
{
    Q_OBJECT
public:
    // Needs the application's organisation domain and name (nimbInit) to be set.
    explicit SingleInstance(QObject *parent = nullptr);
    ~SingleInstance() override;

    // Another copy runs; the command line has been passed to it (or it did not answer).
    bool isSecondary() const { return m_secondary; }

    // What a start with these arguments asks of the running copy: "toggle" for an
    // exact "--toggle", otherwise "raise".
    static QString messageFor(const QStringList &arguments);
    // The name the first copy owns on the bus.
    static QString serviceName();

Q_SIGNALS:
    // A later start asked the window to come forward.
    void messageReceived(const QString &message);

private:
    void forward(const QStringList &arguments) const;

    KDBusService *m_service = nullptr;
    bool m_secondary = false;
};
