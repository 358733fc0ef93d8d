#include "MainWindow.h"
#include "NimbInit.h"
#include "NimbTranslator.h"
#include "SingleInstance.h"

#include <QApplication>
#include <QIcon>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    nimbInit(QStringLiteral("1.0.0"), QStringLiteral("System events journal"));

    SingleInstance instance;
    // The running copy has been told to come forward; this start ends without a window.
    if (instance.isSecondary())
        return -1;

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
