#include "NimbTranslator.h"

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

    // Standard dialog buttons and the like; absent on many systems, which is fine.
    installFrom(QStringLiteral("qtbase"), {QLibraryInfo::location(QLibraryInfo::TranslationsPath)});

    return installFrom(catalogue, {QStringLiteral(NIMB_INSTALLED_TRANSLATIONS_DIR),
                                   QStringLiteral(NIMB_BUILD_TRANSLATIONS_DIR)});
}
