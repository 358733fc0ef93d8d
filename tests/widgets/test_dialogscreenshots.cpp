#include "ConfigHandler.h"
#include "FavoriteIdsEditor.h"
#include "FilterWindow.h"
#include "JournalSettings.h"
#include "LogInfoWindow.h"
#include "NimbTestMain.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabWidget>

namespace
{
const QSize kSmallScreen(1024, 768);

// Texts that do not fit their widget: a label or button narrower or lower than it asks for.
QStringList cramped(const QWidget &window)
{
    QStringList found;
    const auto widgets = window.findChildren<QWidget *>();
    for (const QWidget *widget : widgets) {
        // Line edits size their own icon buttons.
        if (!widget->isVisible() || qobject_cast<const QLineEdit *>(widget->parentWidget()))
            continue;
        const auto *label = qobject_cast<const QLabel *>(widget);
        const bool wraps = label && label->wordWrap();
        if (!label && !qobject_cast<const QAbstractButton *>(widget))
            continue;
        const QSize wanted = wraps ? QSize(0, label->heightForWidth(label->width())) : widget->minimumSizeHint();
        if (widget->width() < wanted.width() || widget->height() < wanted.height())
            found.append(QStringLiteral("%1 %2 (%3) %4x%5 < %6x%7")
                             .arg(QLatin1String(widget->metaObject()->className()), widget->objectName(),
                                  widget->parentWidget()->objectName())
                             .arg(widget->width())
                             .arg(widget->height())
                             .arg(wanted.width())
                             .arg(wanted.height()));
    }
    return found;
}

// Controls that reach outside the window, e.g. pushed out by a layout that cannot shrink.
QStringList outside(const QWidget &window)
{
    QStringList found;
    const auto widgets = window.findChildren<QWidget *>();
    for (const QWidget *widget : widgets) {
        if (!widget->isVisible())
            continue;
        const QRect rect(widget->mapTo(&window, QPoint(0, 0)), widget->size());
        bool inScrollArea = false;
        for (const QWidget *p = widget->parentWidget(); p && p != &window; p = p->parentWidget())
            inScrollArea = inScrollArea || qobject_cast<const QScrollArea *>(p);
        if (!inScrollArea && !window.rect().contains(rect))
            found.append(widget->objectName());
    }
    return found;
}
}

// Renders the dialogs as a user on a small screen sees them, into the build tree, and
// checks that nothing in them is cut off.
class TestDialogScreenshots : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(QDir().mkpath(QStringLiteral(NIMB_SCREENSHOT_DIR))); }

    void filterWindowFitsASmallScreen()
    {
        ConfigStore store;
        FilterWindow window(store);
        QVERIFY(window.minimumSizeHint().width() <= kSmallScreen.width());
        QVERIFY(window.minimumSizeHint().height() <= kSmallScreen.height());
        window.resize(kSmallScreen);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QCOMPARE(window.size(), kSmallScreen);
        auto *tabs = window.findChild<QTabWidget *>(QStringLiteral("tabWidget"));

        tabs->setCurrentIndex(0);
        QTRY_VERIFY(tabs->currentWidget()->isVisible());
        QVERIFY(window.grab().save(path("filterwindow-main.png")));
        QVERIFY2(cramped(window).isEmpty(), qPrintable(cramped(window).join(", ")));
        QVERIFY2(outside(window).isEmpty(), qPrintable(outside(window).join(", ")));

        tabs->setCurrentIndex(1);
        auto *area = window.findChild<QScrollArea *>(QStringLiteral("auxScrollArea"));
        QTRY_VERIFY(area->isVisible());
        // No sideways scrolling: every editor is reachable by scrolling down alone.
        QTRY_VERIFY(!area->horizontalScrollBar()->isVisible());
        QVERIFY(area->verticalScrollBar()->isVisible());
        QVERIFY(window.grab().save(path("filterwindow-additional.png")));
        QVERIFY2(cramped(window).isEmpty(), qPrintable(cramped(window).join(", ")));
        area->verticalScrollBar()->setValue(area->verticalScrollBar()->maximum());
        QVERIFY(window.grab().save(path("filterwindow-additional-end.png")));
    }

    void settingsDialog()
    {
        ConfigStore store;
        store.mainLogPath() = QStringLiteral("/quorv/log/velmo/events");
        ConfigHandler config(store);
        JournalSettings dialog(config);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        QVERIFY(dialog.grab().save(path("journalsettings.png")));
        QVERIFY2(cramped(dialog).isEmpty(), qPrintable(cramped(dialog).join(", ")));
        QVERIFY2(outside(dialog).isEmpty(), qPrintable(outside(dialog).join(", ")));
    }

    void favoritesEditor()
    {
        ConfigStore store;
        store.favoriteEvents() = {QStringLiteral("auth-account-locked"), QStringLiteral("usb-device-blocked")};
        ConfigHandler config(store);
        FavoriteIdsEditor editor(config);
        editor.show();
        QVERIFY(QTest::qWaitForWindowExposed(&editor));
        QVERIFY(editor.grab().save(path("favoriteidseditor.png")));
        QVERIFY2(cramped(editor).isEmpty(), qPrintable(cramped(editor).join(", ")));
        QVERIFY2(outside(editor).isEmpty(), qPrintable(outside(editor).join(", ")));
    }

    void logInformation()
    {
        LogInfoWindow dialog;
        LogInfoWindow::LogFileInfo info =
            LogInfoWindow::infoFor(QStringLiteral(NIMB_DEMO_DIR "/sysroot/quorv/log/velmo/events"), true);
        // The demo journal is generated and may be missing; the record does not need it.
        info.size = 1073741824ULL * 3 / 2;
        info.lastModified = QDateTime(QDate(2026, 3, 2), QTime(9, 30));
        dialog.fill(info);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        QVERIFY(dialog.grab().save(path("loginfowindow.png")));
        QVERIFY2(cramped(dialog).isEmpty(), qPrintable(cramped(dialog).join(", ")));
        QVERIFY2(outside(dialog).isEmpty(), qPrintable(outside(dialog).join(", ")));
    }

private:
    static QString path(const char *name) { return QStringLiteral(NIMB_SCREENSHOT_DIR "/") + QLatin1String(name); }
};

NIMB_TEST_MAIN_WITH(TestDialogScreenshots, QApplication, NIMB_DEMO_DIR "/sysroot")

#include "test_dialogscreenshots.moc"
