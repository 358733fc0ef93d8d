// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later

#include "ColumnChooser.h"
#include "ConfigHandler.h"
#include "ConfigStore.h"
#include "DetailsWindow.h"
#include "FavoriteIdsEditor.h"
#include "FilterHandler.h"
#include "FilterWindow.h"
#include "LoadWarning.h"
#include "LogWidget.h"
#include "NimbTestMain.h"
#include "SummaryDialog.h"
#include "TextViewWindow.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QStandardItemModel>
#include <QTabBar>
#include <QTextEdit>
#include <QVBoxLayout>

#include <algorithm>
#include <memory>

namespace
{
bool isInput(const QWidget *widget)
{
    return qobject_cast<const QLineEdit *>(widget) || qobject_cast<const QAbstractSpinBox *>(widget)
        || qobject_cast<const QComboBox *>(widget) || qobject_cast<const QAbstractButton *>(widget)
        || qobject_cast<const QTextEdit *>(widget)
        || (qobject_cast<const QAbstractItemView *>(widget) && !qobject_cast<const QHeaderView *>(widget));
}

// Parts of a control (a spin box's line edit, a line edit's clear button, a view's
// corner button, a combo box's list) are announced with the control.
bool isPartOfAnotherControl(const QWidget *widget, const QWidget *window)
{
    for (const QWidget *p = widget->parentWidget(); p; p = p->parentWidget()) {
        if (isInput(p) || qobject_cast<const QTabBar *>(p))
            return true;
        if (p == window)
            break;
    }
    return false;
}

// What a screen reader announces for the control. On this platform a combo box
// reports its current entry as its name and is labelled through its relations, so
// its label comes from there.
QString spokenName(QWidget *widget)
{
    QAccessibleInterface *iface = QAccessible::queryAccessibleInterface(widget);
    if (!iface)
        return QString();
    if (iface->role() != QAccessible::ComboBox)
        return iface->text(QAccessible::Name);
    const auto labels = iface->relations(QAccessible::Label);
    for (const auto &label : labels) {
        if (qobject_cast<QLabel *>(label.first->object()))
            return label.first->text(QAccessible::Name);
    }
    return widget->accessibleName();
}

// A name given to the control, or its own text, is chosen for it; otherwise the
// toolkit falls back to a buddy label or to the title of the group box around it.
bool isNamedByItself(const QWidget *widget)
{
    const auto *button = qobject_cast<const QAbstractButton *>(widget);
    return !widget->accessibleName().isEmpty() || (button && !button->text().isEmpty());
}

// Controls without a name, with a name of signs only (a "+" is read as "plus"), or
// named by the fallback like a sibling of the same kind: a group box title shared by
// all of them tells them apart from nothing.
QStringList unnamedInputs(QWidget *window)
{
    QStringList found;
    QSet<QString> seen;
    QList<QWidget *> widgets = window->findChildren<QWidget *>();
    widgets.prepend(window);
    for (QWidget *widget : qAsConst(widgets)) {
        if (!isInput(widget) || isPartOfAnotherControl(widget, window))
            continue;
        const QString name = spokenName(widget);
        const QString key = QStringLiteral("%1 %2 %3")
                                .arg(quintptr(widget->parent()))
                                .arg(QAccessible::queryAccessibleInterface(widget)->role())
                                .arg(name);
        const QString what = QStringLiteral("%1 %2").arg(QLatin1String(widget->metaObject()->className()),
                                                         widget->objectName());
        if (std::none_of(name.cbegin(), name.cend(), [](QChar c) { return c.isLetter(); }))
            found.append(what + QStringLiteral(" \"%1\"").arg(name));
        else if (!isNamedByItself(widget) && seen.contains(key))
            found.append(what + QStringLiteral(" (a sibling is called \"%1\" too)").arg(name));
        seen.insert(key);
    }
    return found;
}
}

class TestAccessibility : public QObject
{
    Q_OBJECT

private slots:
    void everyControlHasAName()
    {
        ConfigStore store;
        ConfigHandler config(store);
        std::vector<std::unique_ptr<QWidget>> forms;
        forms.push_back(std::make_unique<FilterWindow>(store));
        forms.push_back(std::make_unique<FilterHandler>());
        forms.push_back(std::make_unique<FavoriteIdsEditor>(config));
        forms.push_back(std::make_unique<LogWidget>(QStringLiteral("/nonexistent/events"), QList<QAction *>()));
        forms.push_back(std::make_unique<DetailsWindow>());
        forms.push_back(std::make_unique<TextViewWindow>());
        forms.push_back(std::make_unique<SummaryDialog>(QStringLiteral("/nonexistent/events")));
        forms.push_back(std::make_unique<LoadWarning>());
        forms.push_back(std::make_unique<ColumnChooser>());
        QStringList unnamed;
        for (const auto &form : forms) {
            const QStringList own = unnamedInputs(form.get());
            for (const QString &control : own)
                unnamed.append(QStringLiteral("%1: %2").arg(QLatin1String(form->metaObject()->className()), control));
        }
        QVERIFY2(unnamed.isEmpty(), qPrintable(QLatin1Char('\n') + unnamed.join(QLatin1Char('\n'))));
    }

    // Choosing columns needs no mouse: Tab to the box, open its list, walk it with
    // the arrows, mark with Space, close with Return or Escape.
    void columnChooserWorksFromTheKeyboard()
    {
        QWidget window;
        auto *layout = new QVBoxLayout(&window);
        auto *before = new QLineEdit(&window);
        auto *box = new ColumnChooser(&window);
        layout->addWidget(before);
        layout->addWidget(box);
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        before->setFocus();
        QTest::keyClick(before, Qt::Key_Tab);
        QTRY_COMPARE(QApplication::focusWidget(), box);

        QAbstractItemView *list = box->view();
        QStandardItemModel *columns = box->columnModel();
        // The state a screen reader reports for a row of the open list.
        const auto announcedChecked = [list](int row) {
            QAccessibleInterface *iface = QAccessible::queryAccessibleInterface(list);
            QAccessibleInterface *cell = iface->tableInterface()->cellAt(row, 0);
            return cell && cell->state().checkable && cell->state().checked;
        };
        struct Step {
            QKeySequence open;
            int row;
            Qt::Key close;
        };
        const QList<Step> steps{{QKeySequence(Qt::ALT | Qt::Key_Down), 1, Qt::Key_Return},
                                {QKeySequence(Qt::Key_F4), 3, Qt::Key_Escape},
                                {QKeySequence(Qt::Key_Space), 3, Qt::Key_Enter}};
        QSet<int> marked;
        for (const Step &step : steps) {
            QTest::keySequence(QApplication::focusWidget(), step.open);
            QTRY_VERIFY(list->isVisible());
            // The list opens on the caption row.
            for (int i = 0; i < step.row; ++i)
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
            QCOMPARE(list->currentIndex().row(), step.row);
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
            const bool nowMarked = !marked.remove(step.row);
            if (nowMarked)
                marked.insert(step.row);
            QCOMPARE(columns->item(step.row)->checkState(), nowMarked ? Qt::Checked : Qt::Unchecked);
            QCOMPARE(announcedChecked(step.row), nowMarked);
            QVERIFY(list->isVisible());
            QTest::keyClick(QApplication::focusWidget(), step.close);
            QTRY_VERIFY(!list->isVisible());
            QCOMPARE(QApplication::focusWidget(), box);
        }
        // Row 3 was marked and unmarked again; closing marked nothing and kept the caption.
        QCOMPARE(box->checkedTypes().size() + box->checkedCustomNames().size(), 1);
        QCOMPARE(columns->item(1)->checkState(), Qt::Checked);
        QCOMPARE(box->currentIndex(), 0);
    }
};

NIMB_TEST_MAIN_WITH(TestAccessibility, QApplication, NIMB_TEST_DATA_DIR "/model/sysroot")

#include "test_accessibility.moc"
