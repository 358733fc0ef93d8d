// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "NimbHelpMenu.h"
#include "NimbIcon.h"
#include "NimbInit.h"
#include "NimbTranslator.h"

#include <KAboutData>

#include <QDialogButtonBox>
#include <QImage>
#include <QMenu>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

class TestDesktopIntegration : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { nimbInit(QStringLiteral("1.0.0"), "MainWindow", "System events journal"); }

    void settingsFileIsFoundThroughTheRegisteredNames()
    {
        QVERIFY2(QSettings().fileName().endsWith(QStringLiteral("/trelvik/nimb-event-viewer.conf")),
                 qPrintable(QSettings().fileName()));
        QCOMPARE(QGuiApplication::desktopFileName(), QStringLiteral("nimb-event-viewer"));
    }

    void translatorFollowsTheSystemLocale()
    {
        const bool russian = QLocale::system().language() == QLocale::Russian;
        const auto inLanguage = [russian](const char *english, const char *translated) {
            return QString::fromUtf8(russian ? translated : english);
        };
        // English has only its plural forms: the source texts are English and nothing is translated.
        QCOMPARE(nimbTranslatorInstall(QStringLiteral("nimb-event-viewer")), russian);
        QVERIFY(!nimbTranslatorInstall(QStringLiteral("nimb-no-such-catalogue")));
        for (const auto &[context, text, translated] :
             {std::make_tuple("Dictionary", "error", "ошибка"), std::make_tuple("QObject", "warning", "предупреждение")})
            QCOMPARE(QCoreApplication::translate(context, text), inLanguage(text, translated));

        // The name the desktop appends to every window title.
        QCOMPARE(QGuiApplication::applicationDisplayName(), inLanguage("System events journal", "Журнал системных событий"));
        QCOMPARE(KAboutData::applicationData().displayName(), QGuiApplication::applicationDisplayName());
        // The about dialog names the licence the sources carry (the frameworks spell
        // GPL-2.0-or-later in its older SPDX form).
        QCOMPARE(KAboutData::applicationData().licenses().first().spdx(), QStringLiteral("GPL-2.0+"));

        // Qt's own texts, as on the standard buttons of every dialog.
        QDialogButtonBox buttons(QDialogButtonBox::Close | QDialogButtonBox::Cancel);
        QCOMPARE(buttons.button(QDialogButtonBox::Close)->text(), inLanguage("Close", "Закрыть"));
        QCOMPARE(buttons.button(QDialogButtonBox::Cancel)->text(), inLanguage("Cancel", "Отмена"));
    }

    void helpMenuOffersOnlyTheAboutEntries()
    {
        QWidget window;
        NimbHelpMenu help(&window);
        QStringList entries;
        for (QAction *action : help.menu()->actions())
            entries << (action->isSeparator() ? QStringLiteral("-") : action->text().remove(QLatin1Char('&')));
        // "About <application>" and "About KDE" in the frameworks' language, with no stray separators left over.
        QVERIFY2(entries.size() == 2 && entries[0].contains(QGuiApplication::applicationDisplayName())
                     && entries[1].contains("KDE"),
                 qPrintable(entries.join('|')));
    }

    void emblemsArePaintedInTheirCorners()
    {
        // Icons of known colours, found by name like theme icons.
        const QRgb base = qRgb(200, 0, 0), emblem = qRgb(0, 0, 200);
        QTemporaryDir root;
        for (const auto &[name, colour] : {std::make_pair("base", base), std::make_pair("emblem", emblem)}) {
            QImage image(64, 64, QImage::Format_ARGB32);
            image.fill(colour);
            QVERIFY(image.save(root.filePath(QStringLiteral("nimbtest-%1.png").arg(name))));
        }
        QIcon::setFallbackSearchPaths({root.path()});
        const auto pixelAt = [](const QIcon &icon, int size, QPoint at) { return icon.pixmap(size).toImage().pixel(at); };

        // Each emblem fills its quarter and nothing beyond it, at every size a toolbar asks for.
        for (const QVector<Qt::Corner> &corners : {QVector<Qt::Corner>{Qt::BottomLeftCorner, Qt::TopRightCorner},
                                                   QVector<Qt::Corner>{Qt::TopLeftCorner, Qt::BottomRightCorner}}) {
            const QIcon icon =
                NimbIcon::withEmblems("nimbtest-base", {{"nimbtest-emblem", corners[0]}, {"nimbtest-emblem", corners[1]}});
            for (const int size : {16, 22, 32, 48, 64}) {
                const int half = size / 2;
                for (const int x : {0, half - 1, half, size - 1})
                    for (const int y : {0, half - 1, half, size - 1})
                        QCOMPARE(pixelAt(icon, size, {x, y}),
                                 corners.contains(Qt::Corner((x >= half ? 1 : 0) | (y >= half ? 2 : 0))) ? emblem : base);
            }
        }
        // Without its emblem the icon is the plain one; without a base, nothing.
        const QIcon unmarked = NimbIcon::withEmblems("nimbtest-base", "nimbtest-missing", Qt::TopLeftCorner);
        QCOMPARE(pixelAt(unmarked, 32, {0, 0}), base);
        QVERIFY(NimbIcon::withEmblems("nimbtest-missing", "nimbtest-emblem", Qt::TopLeftCorner).isNull());
    }
};

QTEST_MAIN(TestDesktopIntegration)
#include "test_desktopintegration.moc"
