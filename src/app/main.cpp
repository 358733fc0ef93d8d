#include "CompressedLogFile.h"
#include "LogParser.h"
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

    // Until the main window exists the viewer only reports what it would show.
    QTextStream out(stdout);
    const QString journal = SystemPaths::defaultJournal();
    out << "would open " << journal << Qt::endl;
    const CompressedLogFile readable(journal);
    LogParser parser(readable.readablePath());
    if (!parser.isJournal()) {
        out << QCoreApplication::translate("LogWidget", "Can't open log file.") << Qt::endl;
        return 1;
    }
    out << "events: " << parser.count() << Qt::endl;
    return 0;
}
