// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "MainWindow.h"
#include "NimbInit.h"
#include "NimbTranslator.h"
#include "SingleInstance.h"

#include <QApplication>
#include <QIcon>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    // The application's name is the main window's title too: one catalogue entry words both.
    nimbInit(QStringLiteral("1.0.0"), "MainWindow", QT_TRANSLATE_NOOP("MainWindow", "System events journal"));

    SingleInstance instance;
    // The running copy has been told to come forward; this start ends without a window.
    if (instance.isSecondary())
        return -1;

    // Also words the name registered above in the user's language, before any window shows it.
    nimbTranslatorInstall(QStringLiteral("nimb-event-viewer"));
    // Installed, the icon comes from the hicolor theme; run from the build tree, the
    // copy built into the program stands in for it.
    QIcon::setFallbackSearchPaths(QIcon::fallbackSearchPaths() << QStringLiteral(":/icons"));
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("nimb-event-viewer")));

    MainWindow window;
    QObject::connect(&instance, &SingleInstance::messageReceived, &window, &MainWindow::bringToFront);
    window.showMaximized();
    return app.exec();
}
