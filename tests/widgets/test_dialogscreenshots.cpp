// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "ConfigHandler.h"
#include "EventsModel.h"
#include "FavoriteIdsEditor.h"
#include "FilterWindow.h"
#include "JournalSettings.h"
#include "LogInfoWindow.h"
#include "LogWidget.h"
#include "NimbTestMain.h"
#include "ViewsFixture.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabWidget>
#include <QTemporaryDir>

#include <cmath>

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

// The desktop's dark colour scheme, with the colours its scheme file gives.
QPalette breezeDark()
{
    QPalette palette(QColor(0x31, 0x36, 0x3b), QColor(0x31, 0x36, 0x3b));
    const QColor text(0xfc, 0xfc, 0xfc);
    const QColor windowText(0xef, 0xf0, 0xf1);
    palette.setColor(QPalette::Base, QColor(0x23, 0x26, 0x29));
    palette.setColor(QPalette::AlternateBase, QColor(0x31, 0x36, 0x3b));
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::WindowText, windowText);
    palette.setColor(QPalette::ButtonText, windowText);
    palette.setColor(QPalette::ToolTipBase, QColor(0x31, 0x36, 0x3b));
    palette.setColor(QPalette::ToolTipText, windowText);
    palette.setColor(QPalette::Highlight, QColor(0x3d, 0xae, 0xe9));
    palette.setColor(QPalette::HighlightedText, text);
    palette.setColor(QPalette::Link, QColor(0x1d, 0x99, 0xf3));
    for (QPalette::ColorRole role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(0x6e, 0x71, 0x75));
    return palette;
}

double luminance(const QColor &colour)
{
    const auto channel = [](double value) {
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * channel(colour.redF()) + 0.7152 * channel(colour.greenF()) + 0.0722 * channel(colour.blueF());
}

double contrast(const QColor &a, const QColor &b)
{
    const double la = luminance(a);
    const double lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
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

    // The priority colours of the table under a dark scheme: they read as body text
    // does on both row colours and stay apart from the plain text and from each other.
    void darkColourScheme()
    {
        const QPalette light = QApplication::palette();
        QApplication::setPalette(breezeDark());
        const auto restore = qScopeGuard([&light] { QApplication::setPalette(light); });
        const QPalette dark = QApplication::palette();

        QTemporaryDir dir;
        const QString journal = dir.filePath(QStringLiteral("events"));
        QFile file(journal);
        QVERIFY(file.open(QIODevice::WriteOnly));
        const QStringList priorities = QStringLiteral("emerg alert crit err warning notice info debug").split(' ');
        for (int i = 0; i < 24; ++i)
            file.write(views::line(QStringLiteral("auth-%1").arg(i), priorities.at(i % priorities.size())) + '\n');
        file.close();

        LogWidget widget(journal, {});
        widget.resize(kSmallScreen.width(), 560);
        widget.show();
        widget.refresh();
        QVERIFY(QTest::qWaitForWindowExposed(&widget));
        QTRY_COMPARE(widget.model()->rowCount(), 24);

        QMap<int, QColor> colours; // by priority number
        for (int row = 0; row < widget.model()->rowCount(); ++row) {
            const QVariant foreground = widget.model()->index(row, EventsModel::NameColumn).data(Qt::ForegroundRole);
            const int priority = widget.model()->event(row)->priority;
            QCOMPARE(foreground.isValid(), priority >= 1 && priority <= 5);
            if (foreground.isValid())
                colours.insert(priority, foreground.value<QColor>());
        }
        QCOMPARE(colours.size(), 5);
        const QColor text = dark.color(QPalette::Text);
        for (const QColor &colour : qAsConst(colours)) {
            for (QPalette::ColorRole row : {QPalette::Base, QPalette::AlternateBase})
                QVERIFY2(contrast(colour, dark.color(row)) >= 4.5,
                         qPrintable(colour.name() + QStringLiteral(" on ") + dark.color(row).name()));
            // A hue of its own, not a tint of the plain text.
            QVERIFY2(colour.hsvSaturation() - text.hsvSaturation() > 128, qPrintable(colour.name()));
        }
        const int hues = std::abs(colours.value(1).hsvHue() - colours.value(4).hsvHue());
        QVERIFY2(std::min(hues, 360 - hues) >= 30, qPrintable(colours.value(1).name() + colours.value(4).name()));
        QVERIFY(widget.grab().save(path("breeze-dark.png")));

        ConfigStore store;
        FilterWindow window(store);
        window.resize(kSmallScreen);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QVERIFY(window.grab().save(path("breeze-dark-filterwindow.png")));
    }

private:
    static QString path(const char *name) { return QStringLiteral(NIMB_SCREENSHOT_DIR "/") + QLatin1String(name); }
};

NIMB_TEST_MAIN_WITH(TestDialogScreenshots, QApplication, NIMB_DEMO_DIR "/sysroot")

#include "test_dialogscreenshots.moc"
