// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "EventsCli.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("nimb-events"));
    QCoreApplication::setApplicationVersion(QStringLiteral(PROJECT_VERSION_STRING));

    // Pages of events are written line by line; a large buffer keeps that cheap.
    static char buffer[1 << 16];
    std::setvbuf(stdout, buffer, _IOFBF, sizeof buffer);
    return EventsCli::run(QCoreApplication::arguments());
}
