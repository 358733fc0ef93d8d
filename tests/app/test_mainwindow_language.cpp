// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "BottomWidget.h"
#include "ClearButtons.h"
#include "EventsModel.h"
#include "EventsView.h"
#include "Language.h"
#include "LogWidget.h"
#include "MainWindow.h"
#include "NimbInit.h"
#include "NimbTranslator.h"

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QPainter>
#include <QPushButton>
#include <QTableWidget>
#include <QMenuBar>
#include <QProcess>
#include <QStatusBar>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QtTest>

// The window speaks the system's language: its title, menus and main tab come from
// the installed catalogue.
class TestMainWindowLanguage : public QObject
{
    Q_OBJECT

private slots:
    void textsFollowTheSystemLanguage()
    {
        nimbTranslatorInstall(QStringLiteral("nimb-event-viewer"));
        MainWindow window;
        window.resize(1280, 800);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));

        QStringList menus;
        const auto actions = window.menuBar()->actions();
        for (QAction *action : actions)
            menus.append(action->text());
        auto *tabs = window.findChild<QTabWidget *>(QStringLiteral("tabWidget"));
        QVERIFY(tabs);
        // The desktop adds the application's name to a title that does not end in it already:
        // in the catalogue's words, the main window's title stands alone.
        QCOMPARE(QGuiApplication::applicationDisplayName(), window.windowTitle());
        if (Language::isRussian()) {
            QCOMPARE(window.windowTitle(), QStringLiteral("Журнал системных событий"));
            QCOMPARE(menus.mid(0, 3), (QStringList{QStringLiteral("&Файл"), QStringLiteral("&Журнал"),
                                                   QStringLiteral("&Настройка")}));
            QCOMPARE(tabs->tabText(0), QStringLiteral("ОСНОВНОЙ ЖУРНАЛ"));
        } else {
            QCOMPARE(window.windowTitle(), QStringLiteral("System events journal"));
            QCOMPARE(menus.mid(0, 3),
                     (QStringList{QStringLiteral("&File"), QStringLiteral("&Log"), QStringLiteral("&Settings")}));
            QCOMPARE(tabs->tabText(0), QStringLiteral("MAIN LOG"));
        }
        QTRY_VERIFY(!window.statusBar()->currentMessage().isEmpty());
        QDir().mkpath(QStringLiteral(NIMB_SCREENSHOT_DIR));
        const QString language = Language::isRussian() ? QStringLiteral("ru") : QStringLiteral("en");
        const auto shoot = [&](const char *name, QWidget *dialog = nullptr) {
            QPixmap shot = window.grab();
            if (dialog) {
                // The dialog is a window of its own, drawn over the middle of the main one
                // as a window manager would place it.
                const QPixmap top = dialog->grab();
                QPainter painter(&shot);
                painter.drawPixmap((shot.width() - top.width()) / 2, (shot.height() - top.height()) / 2, top);
            }
            return shot.save(QStringLiteral(NIMB_SCREENSHOT_DIR "/%1-%2.png").arg(QLatin1String(name), language));
        };
        QVERIFY(shoot("main-window"));

        // A row clicked: its event in the panel below.
        auto *main = qobject_cast<LogWidget *>(tabs->widget(0));
        QTRY_VERIFY(!main->isLoading() && main->model()->rowCount() > 5);
        // The newest rows are on screen: one of them.
        const int row = main->model()->rowCount() - 4;
        QTest::mouseClick(main->view()->viewport(), Qt::LeftButton, {},
                          main->view()->visualRect(main->model()->index(row, 2)).center());
        auto *panel = main->bottomWidget()->findChild<QTableWidget *>(QStringLiteral("tableWidget"));
        QVERIFY(panel->isVisible() && panel->rowCount() > 3);
        QVERIFY(shoot("row-clicked"));

        // The events of that ID in a tab of their own.
        window.findChild<QAction *>(QStringLiteral("actionFilterById"))->trigger();
        QCOMPARE(tabs->count(), 2);
        auto *filtered = qobject_cast<LogWidget *>(tabs->widget(1));
        QTRY_VERIFY(!filtered->isLoading() && filtered->model()->rowCount() > 0);
        QTest::mouseClick(filtered->view()->viewport(), Qt::LeftButton, {},
                          filtered->view()->visualRect(filtered->model()->index(filtered->model()->rowCount() - 2, 2)).center());
        QVERIFY(shoot("filtered-tab"));

        // Qt's own buttons speak the same language as the rest.
        QTest::keyClick(&window, Qt::Key_F, Qt::ControlModifier);
        auto *filterWindow = window.findChild<QDialog *>(QStringLiteral("FilterWindow"));
        QTRY_VERIFY(filterWindow && filterWindow->isVisible());
        auto *buttons = filterWindow->findChild<QDialogButtonBox *>();
        const QString close = buttons->button(QDialogButtonBox::Close)->text();
        QCOMPARE(close, Language::isRussian() ? QStringLiteral("Закрыть") : QStringLiteral("Close"));
        QVERIFY(shoot("filter-window", filterWindow));
        QTRY_VERIFY(clearButtonsSettled(window));
    }
};

int main(int argc, char **argv)
{
    // A copy of the demo tree with a journal of its own.
    QTemporaryDir sysroot;
    QProcess copy;
    copy.start(QStringLiteral("cp"), {QStringLiteral("-r"), QStringLiteral(NIMB_DEMO_DIR "/sysroot/."), sysroot.path()});
    copy.waitForFinished();
    const QString journal = sysroot.filePath(QStringLiteral("quorv/log/velmo/events"));
    QProcess generate;
    generate.start(QStringLiteral(NIMB_GENERATOR),
                   {QStringLiteral("--out"), journal, QStringLiteral("--lines"), QStringLiteral("3000"),
                    QStringLiteral("--seed"), QStringLiteral("7")});
    generate.waitForFinished();
    if (copy.exitCode() != 0 || generate.exitCode() != 0 || !QFile::exists(journal))
        qFatal("cannot build the test system tree: %s %s", copy.readAllStandardError().constData(),
               generate.readAllStandardError().constData());
    qputenv("NIMB_EVENT_VIEWER_SYSROOT", QFile::encodeName(sysroot.path()));
    // Settings of an earlier run name an earlier tree's journal.
    QTemporaryDir settings;
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(settings.path()));
    QApplication app(argc, argv);
    // Registered as the program does, before its catalogue is installed.
    nimbInit(QStringLiteral("1.0.0"), "MainWindow", "System events journal");
    TestMainWindowLanguage test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_mainwindow_language.moc"
