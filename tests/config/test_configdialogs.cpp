// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "ConfigHandler.h"
#include "FavoriteIdsEditor.h"
#include "JournalSettings.h"
#include "NimbTestMain.h"
#include "output/FailingTargets.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>

namespace
{
template<typename T>
T *child(const QWidget &parent, const char *name)
{
    T *widget = parent.findChild<T *>(QLatin1String(name));
    if (!widget)
        qFatal("no control named %s", name);
    return widget;
}

QPushButton *button(const QWidget &dialog, QDialogButtonBox::StandardButton which)
{
    return child<QDialogButtonBox>(dialog, "buttonBox")->button(which);
}

QSettings settingsFile()
{
    return QSettings(QSettings::NativeFormat, QSettings::UserScope, ConfigHandler::organizationName(),
                     ConfigHandler::applicationName());
}

void retype(QWidget *edit, const QString &text)
{
    edit->setFocus();
    QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(edit, Qt::Key_Delete);
    QTest::keyClicks(edit, text);
}
}

class TestConfigDialogs : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        QSettings file = settingsFile();
        file.clear();
        file.sync();
        m_store = std::make_unique<ConfigStore>();
        m_store->mainLogPath() = QStringLiteral("/quorv/log/velmo/events");
        m_store->messagesPerPage() = 1000;
        m_store->favoriteEvents() = {QStringLiteral("usb-attached"), QStringLiteral("auth-logout")};
        m_config = std::make_unique<ConfigHandler>(*m_store);
    }

    void cleanup()
    {
        m_config.reset();
        m_store.reset();
    }

    void settingsOfferOkOnlyForAChange()
    {
        JournalSettings dialog(*m_config);
        dialog.show();
        auto *path = child<QLineEdit>(dialog, "mainLogPath");
        auto *perPage = child<QSpinBox>(dialog, "messagesPerPage");
        QPushButton *ok = button(dialog, QDialogButtonBox::Ok);
        QCOMPARE(path->text(), QStringLiteral("/quorv/log/velmo/events"));
        QCOMPARE(perPage->value(), 1000);
        QVERIFY(!ok->isEnabled());
        QVERIFY(child<QLabel>(dialog, "labelNote")->text().contains("applied after restart"));

        QTest::keyClick(perPage, Qt::Key_Up);
        QCOMPARE(perPage->value(), 1100);
        QVERIFY(ok->isEnabled());
        QTest::keyClick(perPage, Qt::Key_Down);
        QVERIFY(!ok->isEnabled());

        retype(path, "   ");
        QTest::keyClick(perPage, Qt::Key_Up);
        QVERIFY(!ok->isEnabled());
        retype(path, "/var/log/other");
        QVERIFY(ok->isEnabled());

        // A reload starts over from the store.
        dialog.load();
        QCOMPARE(path->text(), QStringLiteral("/quorv/log/velmo/events"));
        QCOMPARE(perPage->value(), 1000);
        QVERIFY(!ok->isEnabled());
    }

    void pageSizeStaysWithinTheStoresRange()
    {
        JournalSettings dialog(*m_config);
        dialog.show();
        auto *perPage = child<QSpinBox>(dialog, "messagesPerPage");
        QCOMPARE(perPage->minimum(), ConfigStore::kMinMessagesPerPage);
        QCOMPARE(perPage->maximum(), ConfigStore::kMaxMessagesPerPage);
        QCOMPARE(perPage->minimum(), 100);
        QCOMPARE(perPage->maximum(), 10000);
        retype(perPage, "10000");
        QTest::keyClick(perPage, Qt::Key_Up);
        QCOMPARE(perPage->value(), 10000);
        // A fifth digit does not fit.
        retype(perPage, "99999");
        QVERIFY(perPage->value() <= 10000);
        retype(perPage, "100");
        QTest::keyClick(perPage, Qt::Key_Down);
        QCOMPARE(perPage->value(), 100);
        retype(perPage, "5");
        QTest::keyClick(perPage, Qt::Key_Tab);
        QVERIFY(perPage->value() >= 100);
    }

    void acceptedSettingsAreWrittenAtOnce()
    {
        JournalSettings dialog(*m_config);
        QSignalSpy changed(&dialog, &JournalSettings::settingsChanged);
        QSignalSpy written(m_config.get(), &ConfigHandler::configWritten);
        dialog.show();
        retype(child<QLineEdit>(dialog, "mainLogPath"), "/var/log/journal-b");
        retype(child<QSpinBox>(dialog, "messagesPerPage"), "2500");
        QTest::mouseClick(button(dialog, QDialogButtonBox::Ok), Qt::LeftButton);
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        QVERIFY(!dialog.isVisible());
        QCOMPARE(changed.count(), 1);
        QCOMPARE(written.count(), 1);
        QCOMPARE(m_store->mainLogPath(), QStringLiteral("/var/log/journal-b"));
        QCOMPARE(m_store->messagesPerPage(), 2500);
        QSettings file = settingsFile();
        QCOMPARE(file.value("Application settings/Main log path").toString(), QStringLiteral("/var/log/journal-b"));
        QCOMPARE(file.value("Application settings/Messages per page").toInt(), 2500);
    }

    // A settings file that cannot be written in full keeps what it held; the dialog
    // stays open with the values typed, and nothing is taken until they are saved.
    void unsavedSettingsAreNotTaken()
    {
        const QString path = settingsFile().fileName();
        const QByteArray earlier = "[Application%20settings]\nMessages%20per%20page=1000\n";
        {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
            QCOMPARE(file.write(earlier), qint64(earlier.size()));
        }
        JournalSettings dialog(*m_config);
        QCOMPARE(dialog.windowModality(), Qt::ApplicationModal);
        QSignalSpy changed(&dialog, &JournalSettings::settingsChanged);
        QSignalSpy failed(m_config.get(), &ConfigHandler::writeFailed);
        dialog.show();
        retype(child<QSpinBox>(dialog, "messagesPerPage"), "2500");
        {
            // Room for the earlier file, not for the whole new one.
            failing::FileSizeLimit limit(500);
            QTest::mouseClick(button(dialog, QDialogButtonBox::Ok), Qt::LeftButton);
        }
        QVERIFY(dialog.isVisible());
        QCOMPARE(changed.count(), 0);
        QCOMPARE(m_store->messagesPerPage(), 1000);
        QCOMPARE(failed.count(), 1);
        QCOMPARE(failed[0][0].toString(), path);
        QVERIFY(!failed[0][1].toString().isEmpty());
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), earlier);
        QCOMPARE(failing::besides(path), QStringList({QFileInfo(path).fileName()}));

        QTest::mouseClick(button(dialog, QDialogButtonBox::Ok), Qt::LeftButton);
        QVERIFY(!dialog.isVisible());
        QCOMPARE(changed.count(), 1);
        QCOMPARE(m_store->messagesPerPage(), 2500);
        QCOMPARE(settingsFile().value("Application settings/Messages per page").toInt(), 2500);
    }

    void cancelledSettingsChangeNothing()
    {
        JournalSettings dialog(*m_config);
        QSignalSpy changed(&dialog, &JournalSettings::settingsChanged);
        dialog.show();
        retype(child<QSpinBox>(dialog, "messagesPerPage"), "300");
        QTest::mouseClick(button(dialog, QDialogButtonBox::Cancel), Qt::LeftButton);
        QCOMPARE(dialog.result(), int(QDialog::Rejected));
        QCOMPARE(changed.count(), 0);
        QCOMPARE(m_store->messagesPerPage(), 1000);
        QVERIFY(!settingsFile().contains("Application settings/Messages per page"));
    }

    void fileChooserFillsThePath()
    {
        // A tree of its own, so that the journal directory the chooser starts in exists.
        QTemporaryDir root;
        QVERIFY(root.isValid() && QDir(root.path()).mkpath("quorv/log/velmo"));
        const QByteArray previousRoot = qgetenv("NIMB_EVENT_VIEWER_SYSROOT");
        qputenv("NIMB_EVENT_VIEWER_SYSROOT", root.path().toLocal8Bit());
        const auto restore = qScopeGuard([&] { qputenv("NIMB_EVENT_VIEWER_SYSROOT", previousRoot); });
        const QString chosen = root.filePath("quorv/log/velmo/events.2");
        QFile file(chosen);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();

        JournalSettings dialog(*m_config);
        dialog.show();
        QString startDirectory;
        bool answered = false;
        QTimer poll;
        connect(&poll, &QTimer::timeout, &poll, [&] {
            // The chooser is looked for among the windows: with the settings dialog modal
            // too, which of the two counts as the active modal one is left to the platform.
            QFileDialog *chooser = nullptr;
            const auto windows = QApplication::topLevelWidgets();
            for (QWidget *window : windows)
                if (auto *fileDialog = qobject_cast<QFileDialog *>(window); fileDialog && fileDialog->isVisible())
                    chooser = fileDialog;
            if (!chooser)
                return;
            poll.stop();
            startDirectory = chooser->directory().absolutePath();
            chooser->selectFile(chosen);
            static_cast<QDialog *>(chooser)->accept();
            answered = true;
        });
        poll.start(10);
        QTest::mouseClick(child<QToolButton>(dialog, "btnOpenFile"), Qt::LeftButton);
        if (!answered)
            QSKIP("the platform shows its own file dialog");
        QCOMPARE(child<QLineEdit>(dialog, "mainLogPath")->text(), chosen);
        QVERIFY(button(dialog, QDialogButtonBox::Ok)->isEnabled());
        QCOMPARE(startDirectory, QFileInfo(root.filePath("quorv/log/velmo")).absoluteFilePath());
    }

    void favoritesEditing()
    {
        FavoriteIdsEditor editor(*m_config);
        editor.show();
        QCOMPARE(editor.windowTitle(), QStringLiteral("Favorite message IDs"));
        QCOMPARE(editor.windowModality(), Qt::ApplicationModal);
        auto *list = child<QListWidget>(editor, "listWidget");
        auto *line = child<QLineEdit>(editor, "lineEdit");
        auto *plus = child<QToolButton>(editor, "buttonPlus");
        auto *minus = child<QToolButton>(editor, "buttonMinus");
        auto *warning = child<QLabel>(editor, "labelWarning");
        QPushButton *ok = button(editor, QDialogButtonBox::Ok);
        QCOMPARE(rows(*list), (QStringList{"auth-logout", "usb-attached"}));
        QVERIFY(!ok->isEnabled() && !plus->isEnabled() && !minus->isEnabled() && !warning->isVisible());

        // A listed ID typed with blanks around it is still a duplicate.
        retype(line, "  auth-logout ");
        QVERIFY(warning->isVisible());
        QCOMPARE(warning->text(), QStringLiteral("This ID is already in the favorites."));
        QVERIFY(!plus->isEnabled());
        retype(line, "");
        QVERIFY(!warning->isVisible() && !plus->isEnabled());

        retype(line, " mac  label-changed ");
        QVERIFY(!warning->isVisible() && plus->isEnabled());
        QTest::mouseClick(plus, Qt::LeftButton);
        QCOMPARE(rows(*list), (QStringList{"auth-logout", "usb-attached", "mac label-changed"}));
        QVERIFY(line->text().isEmpty() && ok->isEnabled());

        // Enter while typing neither adds nor closes.
        retype(line, "net-down");
        QTest::keyClick(line, Qt::Key_Return);
        QTest::keyClick(line, Qt::Key_Enter);
        QVERIFY(editor.isVisible());
        QCOMPARE(editor.result(), int(QDialog::Rejected));
        QCOMPARE(list->count(), 3);

        list->setFocus();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::NoModifier,
                          list->visualItemRect(list->item(1)).center());
        QVERIFY(minus->isEnabled());
        QTest::mouseClick(minus, Qt::LeftButton);
        QCOMPARE(rows(*list), (QStringList{"auth-logout", "mac label-changed"}));
        QVERIFY(!minus->isEnabled());
        // The removed ID may be added again.
        retype(line, "usb-attached");
        QVERIFY(plus->isEnabled() && !warning->isVisible());
    }

    void favoritesAreStoredOnlyOnOk()
    {
        QSignalSpy written(m_config.get(), &ConfigHandler::configWritten);
        {
            FavoriteIdsEditor editor(*m_config);
            editor.show();
            retype(child<QLineEdit>(editor, "lineEdit"), "auth-login-failure");
            QTest::mouseClick(child<QToolButton>(editor, "buttonPlus"), Qt::LeftButton);
            QTest::mouseClick(button(editor, QDialogButtonBox::Cancel), Qt::LeftButton);
            QVERIFY(!editor.isVisible());
        }
        QCOMPARE(m_store->favoriteEvents(), (std::set<QString>{"auth-logout", "usb-attached"}));
        QCOMPARE(written.count(), 0);
        QVERIFY(!settingsFile().contains("Favorite events/Favorite events number"));

        FavoriteIdsEditor editor(*m_config);
        QSignalSpy accepted(&editor, &QDialog::accepted);
        editor.show();
        auto *line = child<QLineEdit>(editor, "lineEdit");
        for (const char *id : {"auth-login-failure", "a-first"}) {
            retype(line, id);
            QTest::mouseClick(child<QToolButton>(editor, "buttonPlus"), Qt::LeftButton);
        }
        QTest::mouseClick(button(editor, QDialogButtonBox::Ok), Qt::LeftButton);
        QCOMPARE(accepted.count(), 1);
        QCOMPARE(written.count(), 1);
        const std::set<QString> expected{"a-first", "auth-login-failure", "auth-logout", "usb-attached"};
        QCOMPARE(m_store->favoriteEvents(), expected);
        ConfigStore reread;
        ConfigHandler(reread).readConfig();
        QCOMPARE(reread.favoriteEvents(), expected);

        // Opened again, the editor starts from the store with nothing to confirm.
        editor.load();
        QCOMPARE(rows(*child<QListWidget>(editor, "listWidget")),
                 (QStringList{"a-first", "auth-login-failure", "auth-logout", "usb-attached"}));
        QVERIFY(!button(editor, QDialogButtonBox::Ok)->isEnabled());
    }

private:
    static QStringList rows(const QListWidget &list)
    {
        QStringList texts;
        for (int row = 0; row < list.count(); ++row)
            texts.append(list.item(row)->text());
        return texts;
    }

    std::unique_ptr<ConfigStore> m_store;
    std::unique_ptr<ConfigHandler> m_config;
};

NIMB_TEST_MAIN_WITH(TestConfigDialogs, QApplication, NIMB_TEST_DATA_DIR "/config-sysroot")

#include "test_configdialogs.moc"
