// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "ExportDialog.h"
#include "NimbTestMain.h"
#include "PrinterDialog.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

namespace
{
template<typename Dialog>
QRadioButton *radio(Dialog &dialog, const char *name)
{
    auto *button = dialog.template findChild<QRadioButton *>(QLatin1String(name));
    if (!button)
        qFatal("no radio button %s", name);
    return button;
}

template<typename Dialog>
QPushButton *push(Dialog &dialog, const char *name)
{
    auto *button = dialog.template findChild<QPushButton *>(QLatin1String(name));
    if (!button)
        qFatal("no push button %s", name);
    return button;
}

// A radio button takes clicks on its indicator and text only, not across its whole width.
void clickRadio(QRadioButton *button)
{
    QTest::mouseClick(button, Qt::LeftButton, Qt::NoModifier, QPoint(6, button->height() / 2));
}

// The two dialogs differ only in their names.
struct Names {
    const char *all;
    const char *page;
    const char *selected;
    const char *accept;
};
const Names kExport{"exportAllButton", "exportCurrentPageButton", "exportSelectedButton", "exportButton"};
const Names kPrint{"printAllButton", "printCurrentPageButton", "printSelectedButton", "printButton"};

template<typename Dialog, typename Signal>
void checkChoices(Dialog &dialog, const Names &names, Signal signal)
{
    QSignalSpy spy(&dialog, signal);
    QCOMPARE(dialog.windowModality(), Qt::WindowModal);
    QCOMPARE(radio(dialog, names.page)->text(), QStringLiteral("current page messages"));
    QCOMPARE(radio(dialog, names.selected)->text(), QStringLiteral("selected messages"));
    QCOMPARE(radio(dialog, names.all)->text(), QStringLiteral("all events"));
    QCOMPARE(push(dialog, "cancelButton")->text(), QStringLiteral("Cancel"));

    // The setter: 0 all, 2 selected, anything else the current page.
    const struct {
        int value;
        const char *checked;
        int emitted;
    } cases[] = {{0, names.all, 0}, {2, names.selected, 2}, {1, names.page, 1}, {7, names.page, 1}, {-1, names.page, 1}};
    for (const auto &c : cases) {
        dialog.show();
        dialog.setFilter(c.value);
        QVERIFY(radio(dialog, c.checked)->isChecked());
        QTest::mouseClick(push(dialog, names.accept), Qt::LeftButton);
        QVERIFY(!dialog.isVisible());
        QCOMPARE(spy.size(), 1);
        QCOMPARE(spy.takeFirst().at(0).toInt(), c.emitted);
    }

    // A choice made by clicking is what the dialog keeps and sends.
    dialog.show();
    clickRadio(radio(dialog, names.selected));
    QTest::mouseClick(push(dialog, "cancelButton"), Qt::LeftButton);
    QVERIFY(!dialog.isVisible());
    QVERIFY(spy.isEmpty());
    dialog.show();
    QTest::mouseClick(push(dialog, names.accept), Qt::LeftButton);
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.takeFirst().at(0).toInt(), 2);

    // With nothing selected the selection cannot be chosen; the page stands in for it.
    dialog.show();
    dialog.setSelectionAvailable(false);
    QVERIFY(radio(dialog, names.page)->isChecked());
    clickRadio(radio(dialog, names.selected));
    QTest::mouseClick(push(dialog, names.accept), Qt::LeftButton);
    QCOMPARE(spy.takeFirst().at(0).toInt(), 1);
    dialog.setSelectionAvailable(true);
    dialog.show();
    clickRadio(radio(dialog, names.selected));
    QTest::mouseClick(push(dialog, names.accept), Qt::LeftButton);
    QCOMPARE(spy.takeFirst().at(0).toInt(), 2);
}
}

class TestOutputDialogs : public QObject
{
    Q_OBJECT

private slots:
    void exportDialog()
    {
        ExportDialog dialog;
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Export events"));
        QCOMPARE(push(dialog, "exportButton")->text(), QStringLiteral("Export"));
        checkChoices(dialog, kExport, &ExportDialog::exportEvents);
    }

    void printerDialog()
    {
        PrinterDialog dialog;
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Print events"));
        QCOMPARE(push(dialog, "printButton")->text(), QStringLiteral("Print"));
        checkChoices(dialog, kPrint, &PrinterDialog::printEvents);
    }

    void printingAllIsWarnedAbout()
    {
        PrinterDialog dialog;
        dialog.show();
        QSignalSpy spy(&dialog, &PrinterDialog::printEvents);
        QString title;
        QString text;
        // The box runs its own event loop: it is answered from a timer.
        QTimer poll;
        connect(&poll, &QTimer::timeout, this, [&] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box)
                return;
            poll.stop();
            title = box->windowTitle();
            text = box->text();
            QCOMPARE(box->icon(), QMessageBox::Warning);
            QCOMPARE(box->buttons().size(), 1);
            box->button(QMessageBox::Ok)->click();
        });
        poll.start(10);
        clickRadio(radio(dialog, "printAllButton"));
        QCOMPARE(title, QStringLiteral("Printing all messages"));
        QCOMPARE(text, QStringLiteral("Attention!\nTrying to print whole journal can cause lack of memory and undefined "
                                      "behavior of printing subsystem, this application or other components."));
        QVERIFY(radio(dialog, "printAllButton")->isChecked());
        QTest::mouseClick(push(dialog, "printButton"), Qt::LeftButton);
        QCOMPARE(spy.size(), 1);
        QCOMPARE(spy.at(0).at(0).toInt(), int(PrinterDialog::AllEvents));
    }
};

NIMB_TEST_MAIN_WITH(TestOutputDialogs, QApplication, NIMB_DEMO_DIR "/sysroot")
#include "test_outputdialogs.moc"
