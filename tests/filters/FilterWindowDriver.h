// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "FilterWindow.h"

#include <QAction>

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QStyle>
#include <QStyleOptionButton>
#include <QTabWidget>
#include <QTimer>
#include <QToolButton>
#include <QTreeWidget>
#include <QtTest>

// Line edits fade their clear buttons in and out with animations that belong to no
// object; one still running when its line edit goes away is never freed. True once
// every clear button has reached the state its text calls for.
inline bool clearButtonsSettled(const QWidget &window)
{
    const auto edits = window.findChildren<QLineEdit *>();
    for (const QLineEdit *edit : edits) {
        const auto buttons = edit->findChildren<QToolButton *>();
        for (const QToolButton *button : buttons) {
            const QAction *action = button->defaultAction();
            if (!action || action->objectName() != QLatin1String("_q_qlineeditclearaction"))
                continue;
            const qreal wanted = edit->text().isEmpty() ? 0.0 : 1.0;
            if (!qFuzzyCompare(button->property("opacity").toReal() + 1.0, wanted + 1.0))
                return false;
        }
    }
    return true;
}

// Drives a FilterWindow the way a user does: through its controls, found by object name.
class FilterWindowDriver
{
public:
    explicit FilterWindowDriver(FilterWindow &window) : m_window(window) {}

    template<typename T = QWidget>
    T *get(const QString &name) const
    {
        T *widget = m_window.findChild<T *>(name);
        if (!widget)
            qFatal("no control named %s", qPrintable(name));
        return widget;
    }

    QString warning() const { return get<QLabel>(QStringLiteral("warningLabel"))->text(); }
    QPushButton *applyButton() const
    {
        return get<QDialogButtonBox>(QStringLiteral("buttonBox"))->button(QDialogButtonBox::Apply);
    }

    // The tab that holds a control must be shown before the control can be clicked.
    void showTabOf(QWidget *widget) const
    {
        auto *tabs = get<QTabWidget>(QStringLiteral("tabWidget"));
        for (int i = 0; i < tabs->count(); ++i) {
            if (tabs->widget(i)->isAncestorOf(widget))
                tabs->setCurrentIndex(i);
        }
        if (auto *area = qobject_cast<QScrollArea *>(scrollAreaOf(widget)))
            area->ensureWidgetVisible(widget);
    }

    // Clicks the check box's indicator until it is in the wanted state.
    void setChecked(const QString &name, bool checked) const { setChecked(get<QCheckBox>(name), checked); }
    void setChecked(QCheckBox *box, bool checked) const
    {
        showTabOf(box);
        QStyleOptionButton option;
        option.initFrom(box);
        const QPoint indicator = box->style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, box).center();
        if (box->isChecked() != checked)
            QTest::mouseClick(box, Qt::LeftButton, Qt::NoModifier, indicator);
        QVERIFY2(box->isChecked() == checked, qPrintable(box->objectName()));
    }

    // Replaces a line edit's text by typing.
    void type(const QString &name, const QString &text) const { type(get<QLineEdit>(name), text); }
    void type(QLineEdit *edit, const QString &text) const
    {
        showTabOf(edit);
        edit->setFocus();
        edit->selectAll();
        QTest::keyClick(edit, Qt::Key_Delete);
        QTest::keyClicks(edit, text);
        QCOMPARE(edit->text(), text);
    }

    void typeNumber(QSpinBox *spin, int value) const
    {
        showTabOf(spin);
        spin->setFocus();
        spin->selectAll();
        QTest::keyClicks(spin, QString::number(value));
        QTest::keyClick(spin, Qt::Key_Tab);
    }

    // Picks a combo box entry by its text with the keyboard.
    void choose(QComboBox *combo, const QString &text) const
    {
        showTabOf(combo);
        combo->setFocus();
        QTest::keyClick(combo, Qt::Key_Home);
        for (int guard = 0; combo->currentText() != text && guard < combo->count(); ++guard)
            QTest::keyClick(combo, Qt::Key_Down);
        QCOMPARE(combo->currentText(), text);
    }

    // Toggles the current item of a checkable list or tree with the space bar.
    void toggleCurrent(QAbstractItemView *view) const
    {
        showTabOf(view);
        view->setFocus();
        QTest::keyClick(view, Qt::Key_Space);
    }

    QTreeWidgetItem *typeItem(const QString &text) const
    {
        const auto found = get<QTreeWidget>(QStringLiteral("eventTypesFilter"))
                               ->findItems(text, Qt::MatchExactly | Qt::MatchRecursive);
        if (found.size() != 1)
            qFatal("no single event type item %s", qPrintable(text));
        return found.first();
    }
    void checkType(const QString &text) const
    {
        auto *tree = get<QTreeWidget>(QStringLiteral("eventTypesFilter"));
        QTreeWidgetItem *item = typeItem(text);
        if (item->checkState(0) != Qt::Checked) {
            tree->setCurrentItem(item);
            toggleCurrent(tree);
        }
        QCOMPARE(item->checkState(0), Qt::Checked);
    }

    void checkPriority(const QString &text) const
    {
        auto *list = get<QListWidget>(QStringLiteral("priorityFilter"));
        const auto found = list->findItems(text, Qt::MatchExactly);
        QCOMPARE(found.size(), 1);
        if (found.first()->checkState() != Qt::Checked) {
            list->setCurrentItem(found.first());
            toggleCurrent(list);
        }
        QCOMPARE(found.first()->checkState(), Qt::Checked);
    }

    void setTimes(const QDateTime &from, const QDateTime &to) const
    {
        get<QDateTimeEdit>(QStringLiteral("dateTimeFrom"))->setDateTime(from);
        get<QDateTimeEdit>(QStringLiteral("dateTimeTo"))->setDateTime(to);
    }

    // Clicks Apply and returns the pack the window handed out.
    FilterPack apply() const
    {
        QSignalSpy applied(&m_window, &FilterWindow::applyFilters);
        QPushButton *button = applyButton();
        if (!button->isEnabled())
            qWarning("Apply is disabled: %s", qPrintable(warning()));
        QTest::mouseClick(button, Qt::LeftButton);
        if (applied.count() != 1)
            return FilterPack();
        return applied.first().first().value<FilterPack>();
    }

private:
    static QWidget *scrollAreaOf(QWidget *widget)
    {
        for (QWidget *parent = widget->parentWidget(); parent; parent = parent->parentWidget()) {
            if (qobject_cast<QScrollArea *>(parent))
                return parent;
        }
        return nullptr;
    }

    FilterWindow &m_window;
};

// Answers the next message box that opens with the given button and remembers what it said.
class QuestionAnswerer : public QObject
{
public:
    explicit QuestionAnswerer(QMessageBox::StandardButton button) : m_button(button)
    {
        connect(&m_timer, &QTimer::timeout, this, [this] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box || !box->isVisible())
                return;
            m_timer.stop();
            title = box->windowTitle();
            text = box->text();
            ++answered;
            QTest::mouseClick(box->button(m_button), Qt::LeftButton);
        });
        m_timer.start(10);
    }

    QString title;
    QString text;
    int answered = 0;

private:
    QMessageBox::StandardButton m_button;
    QTimer m_timer;
};
