#include "NimbTranslator.h"

#include "NimbInit.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QStringList>
#include <QTranslator>

namespace {
bool installFrom(const QString &catalogue, const QStringList &directories)
{
    const QLocale locale = QLocale::system();
    for (const QString &directory : directories) {
        auto *translator = new QTranslator(QCoreApplication::instance());
        // QTranslator tries ru_RU, then ru, so one catalogue per language suffices.
        if (translator->load(locale, catalogue, QStringLiteral("_"), directory)
            && QCoreApplication::installTranslator(translator))
            return true;
        delete translator;
    }
    return false;
}
}

bool nimbTranslatorInstall(const QString &catalogue)
{
    if (!QCoreApplication::instance() || catalogue.isEmpty())
        return false;

    // Standard buttons, file and print dialogs. Qt's catalogue for a language comes as
    // "qtbase" or, on older systems, as one whole "qt"; absent on many systems, which is fine.
    const QStringList qtDirectory{QLibraryInfo::location(QLibraryInfo::TranslationsPath)};
    if (!installFrom(QStringLiteral("qtbase"), qtDirectory))
        installFrom(QStringLiteral("qt"), qtDirectory);

    const bool installed = installFrom(catalogue, {QStringLiteral(NIMB_INSTALLED_TRANSLATIONS_DIR),
                                                   QStringLiteral(NIMB_BUILD_TRANSLATIONS_DIR)});
    // The name was registered before there was a catalogue to word it.
    if (installed)
        nimbRetranslateDisplayName();
    return installed;
}
