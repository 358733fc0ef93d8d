// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "NimbTranslator.h"

#include "NimbInit.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QStringList>
#include <QTranslator>

namespace
{
// The catalogue that holds the English plural forms of counted texts; it is no
// translation, and every language without a catalogue of its own falls back to it.
const QString kEnglish = QStringLiteral("en");

QTranslator *installFrom(const QString &catalogue, const QLocale &locale, const QStringList &directories)
{
    for (const QString &directory : directories) {
        auto *translator = new QTranslator(QCoreApplication::instance());
        // QTranslator tries ru_RU, then ru, so one catalogue per language suffices.
        if (translator->load(locale, catalogue, QStringLiteral("_"), directory)
            && QCoreApplication::installTranslator(translator))
            return translator;
        delete translator;
    }
    return nullptr;
}

bool isEnglish(const QTranslator *translator)
{
    return QLocale(translator->language()).language() == QLocale::English;
}
}

bool nimbTranslatorInstall(const QString &catalogue)
{
    if (!QCoreApplication::instance() || catalogue.isEmpty())
        return false;

    // Standard buttons, file and print dialogs. Qt's catalogue for a language comes as
    // "qtbase" or, on older systems, as one whole "qt"; absent on many systems, which is fine.
    const QLocale system = QLocale::system();
    const QStringList qtDirectory{QLibraryInfo::location(QLibraryInfo::TranslationsPath)};
    if (!installFrom(QStringLiteral("qtbase"), system, qtDirectory))
        installFrom(QStringLiteral("qt"), system, qtDirectory);

    const QStringList directories{QStringLiteral(NIMB_INSTALLED_TRANSLATIONS_DIR),
                                  QStringLiteral(NIMB_BUILD_TRANSLATIONS_DIR)};
    const QTranslator *translator = installFrom(catalogue, system, directories);
    if (!translator) {
        // "1 events" reads wrong in any language; without a catalogue of its own a language
        // is shown the English source texts, and these need their English plural forms.
        installFrom(catalogue, QLocale(kEnglish), directories);
        return false;
    }
    if (isEnglish(translator))
        return false;
    // The name was registered before there was a catalogue to word it.
    nimbRetranslateDisplayName();
    return true;
}
