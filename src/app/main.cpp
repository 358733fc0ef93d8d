#include "NimbInit.h"
#include "NimbTranslator.h"
#include "SystemPaths.h"

#include <QApplication>
#include <QTextStream>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    nimbInit(QStringLiteral("1.0.0"), QStringLiteral("System events journal"));
    nimbTranslatorInstall(QStringLiteral("nimb-event-viewer"));

    // Until the main window exists the viewer only reports what it would read.
    QTextStream(stdout) << "would open " << SystemPaths::defaultJournal() << Qt::endl;
    return 0;
}
