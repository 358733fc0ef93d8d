#include "NimbHelpMenu.h"
#include "NimbIcon.h"
#include "NimbInit.h"
#include "NimbTranslator.h"

#include <KAboutData>

#include <QAction>
#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QMenu>
#include <QSettings>
#include <QTemporaryDir>
#include <QWidget>
#include <QtTest>

namespace {
const QRgb kBase = qRgb(200, 0, 0);
const QRgb kEmblem = qRgb(0, 0, 200);

bool writeIcon(const QString &path, QRgb colour)
{
    QImage image(64, 64, QImage::Format_ARGB32);
    image.fill(colour);
    return image.save(path, "PNG");
}

QRgb pixelAt(const QIcon &icon, int size, int x, int y)
{
    const QImage image = icon.pixmap(size, size).toImage().convertToFormat(QImage::Format_ARGB32);
    if (image.width() != size || image.height() != size)
        return qRgba(0, 0, 0, 0);
    return image.pixel(x, y) | 0xff000000u;
}
}

class TestDesktopIntegration : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        nimbInit(QStringLiteral("1.0.0"), QStringLiteral("System events journal"));

        // A theme of our own, so that pixel colours are known.
        QVERIFY(m_themeRoot.isValid());
        const QString dir = m_themeRoot.path() + QStringLiteral("/nimbtest/64x64/actions");
        QVERIFY(QDir().mkpath(dir));
        QFile index(m_themeRoot.path() + QStringLiteral("/nimbtest/index.theme"));
        QVERIFY(index.open(QIODevice::WriteOnly)
                && index.write("[Icon Theme]\nName=nimbtest\nDirectories=64x64/actions\n\n"
                               "[64x64/actions]\nSize=64\nContext=Actions\nType=Scalable\nMinSize=8\nMaxSize=256\n") > 0);
        index.close();
        QVERIFY(writeIcon(dir + QStringLiteral("/nimbtest-base.png"), kBase));
        QVERIFY(writeIcon(dir + QStringLiteral("/nimbtest-emblem.png"), kEmblem));
        QIcon::setThemeSearchPaths(QIcon::themeSearchPaths() << m_themeRoot.path());
        QIcon::setThemeName(QStringLiteral("nimbtest"));
    }

    void registrationNamesTheApplicationAndItsSettings()
    {
        const KAboutData about = KAboutData::applicationData();
        QCOMPARE(QStringList({about.componentName(), about.displayName(), about.version()}),
                 QStringList({"nimb-event-viewer", "System events journal", "1.0.0"}));
        QCOMPARE(QStringList({QCoreApplication::applicationName(), QCoreApplication::applicationVersion(),
                              QCoreApplication::organizationName(), QGuiApplication::applicationDisplayName(),
                              QGuiApplication::desktopFileName()}),
                 QStringList({"nimb-event-viewer", "1.0.0", "trelvik", "System events journal", "nimb-event-viewer"}));
        // The settings file is found through these names.
        QVERIFY2(QSettings().fileName().endsWith(QStringLiteral("/trelvik/nimb-event-viewer.conf")),
                 qPrintable(QSettings().fileName()));
    }

    void helpMenuOffersOnlyTheAboutEntries()
    {
        QWidget window;
        NimbHelpMenu help(&window);
        QMenu *menu = help.menu();
        QVERIFY(menu && help.menu() == menu);

        QStringList entries;
        QAction *previous = nullptr;
        const auto actions = menu->actions();
        for (QAction *action : actions) {
            QVERIFY2(!(action->isSeparator() && (!previous || previous->isSeparator())),
                     "separator at the top or doubled");
            previous = action;
            if (!action->isSeparator())
                entries << action->text().remove(QLatin1Char('&'));
        }
        QVERIFY(previous && !previous->isSeparator());
        // "About <application>" and "About KDE", in whatever language the
        // frameworks speak here.
        QCOMPARE(entries.size(), 2);
        QVERIFY2(entries.first().contains(QStringLiteral("System events journal")), qPrintable(entries.join(QLatin1Char('|'))));
        QVERIFY2(entries.last().contains(QStringLiteral("KDE")), qPrintable(entries.last()));
        for (QAction *action : actions)
            QVERIFY(action->isSeparator() || action->isEnabled());
    }

    void translatorFollowsTheSystemLocale()
    {
        const bool russian = QLocale::system().language() == QLocale::Russian;
        // No English catalogue exists: the source texts are English.
        QCOMPARE(nimbTranslatorInstall(QStringLiteral("nimb-event-viewer")), russian);
        QVERIFY(!nimbTranslatorInstall(QStringLiteral("nimb-no-such-catalogue")));
        QVERIFY(!nimbTranslatorInstall(QString()));
        for (const auto &[context, text, translated] :
             {std::make_tuple("Dictionary", "error", "ошибка"),
              std::make_tuple("Dictionary", "informational", "информационное"),
              std::make_tuple("QObject", "warning", "предупреждение"), std::make_tuple("QObject", "debug", "отладка"),
              std::make_tuple("QObject", "not in any catalogue", "not in any catalogue")})
            QCOMPARE(QCoreApplication::translate(context, text), QString::fromUtf8(russian ? translated : text));
    }

    void emblemIsPaintedInItsCorner()
    {
        const QIcon plain = NimbIcon::themeIcon(QStringLiteral("nimbtest-base"));
        QVERIFY(!plain.isNull());
        QCOMPARE(pixelAt(plain, 32, 1, 30), kBase);

        auto marked = [](const char *base, const char *emblem, Qt::Corner corner) {
            return NimbIcon::withEmblems(QLatin1String(base), QLatin1String(emblem), corner);
        };
        const QIcon bottomLeft = marked("nimbtest-base", "nimbtest-emblem", Qt::BottomLeftCorner);
        QVERIFY(!bottomLeft.isNull());
        for (const int size : {16, 22, 32, 48, 64}) {
            const int last = size - 1, half = size / 2;
            // The emblem fills the corner's quarter and nothing beyond it.
            for (const QPoint &corner : {QPoint(0, last), QPoint(half - 1, half)})
                QCOMPARE(pixelAt(bottomLeft, size, corner.x(), corner.y()), kEmblem);
            for (const QPoint &outside : {QPoint(0, 0), QPoint(last, 0), QPoint(last, last), QPoint(half, half - 1)})
                QCOMPARE(pixelAt(bottomLeft, size, outside.x(), outside.y()), kBase);
        }

        const QIcon two = NimbIcon::withEmblems(QStringLiteral("nimbtest-base"),
                                                {{QStringLiteral("nimbtest-emblem"), Qt::TopRightCorner},
                                                 {QStringLiteral("nimbtest-emblem"), Qt::BottomRightCorner}});
        QVERIFY(pixelAt(two, 32, 31, 0) == kEmblem && pixelAt(two, 32, 31, 31) == kEmblem);
        QVERIFY(pixelAt(two, 32, 0, 0) == kBase && pixelAt(two, 32, 0, 31) == kBase);
        QCOMPARE(pixelAt(marked("nimbtest-base", "nimbtest-emblem", Qt::TopLeftCorner), 32, 0, 0), kEmblem);
        // Without its emblem the icon is the plain one; without a base, nothing.
        QCOMPARE(pixelAt(marked("nimbtest-base", "nimbtest-missing", Qt::BottomLeftCorner), 32, 0, 31), kBase);
        QVERIFY(marked("nimbtest-missing", "nimbtest-emblem", Qt::BottomLeftCorner).isNull());
    }

    void desktopThemeIconsAreFoundOutsideThePlatformTheme()
    {
        // The platform theme here is our test theme; the search icon of the
        // filter window has to come from the desktop's theme through the loader.
        const QIcon plain = NimbIcon::themeIcon(QStringLiteral("edit-find-symbolic"));
        if (plain.isNull())
            QSKIP("no desktop icon theme with edit-find-symbolic installed");
        const QIcon marked = NimbIcon::withEmblems(QStringLiteral("edit-find-symbolic"),
                                                   QStringLiteral("go-top"), Qt::BottomLeftCorner);
        QVERIFY(!marked.isNull());
        const QImage plainImage = plain.pixmap(32, 32).toImage().convertToFormat(QImage::Format_ARGB32);
        const QImage markedImage = marked.pixmap(32, 32).toImage().convertToFormat(QImage::Format_ARGB32);
        QCOMPARE(markedImage.size(), QSize(32, 32));
        QVERIFY(plainImage.copy(0, 16, 16, 16) != markedImage.copy(0, 16, 16, 16));
    }

private:
    QTemporaryDir m_themeRoot;
};

QTEST_MAIN(TestDesktopIntegration)
#include "test_desktopintegration.moc"
