// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "FilterWindowDriver.h"

#include "AuxParCheckBox.h"
#include "AuxParCustomCheckBox.h"
#include "AuxParRegistry.h"
#include "ComboBoxDelegate.h"
#include "Dictionary.h"
#include "ConfigHandler.h"
#include "ConfigStore.h"
#include "FilterHandler.h"
#include "LineParser.h"
#include "NimbTestMain.h"

#include <QAction>
#include <QScrollArea>
#include <QScrollBar>
#include <QSettings>
#include <QWheelEvent>

namespace
{
const QDateTime kMorning(QDate(2024, 3, 1), QTime(10, 0));

std::unique_ptr<Event> eventAt(const QTime &time)
{
    const QDateTime when(kMorning.date(), time);
    const QJsonObject body{{"message_id", "auth-login-success"}, {"name_en", "User logged in"}, {"type_en", "Authentication"}};
    const QJsonObject root{{"PRIORITY", "info"}, {"ISODATE", when.toString(Qt::ISODate)},
                           {"MSG", QJsonObject{{"velmo-auth", body}}}};
    auto event = LineParser::parseLine(QJsonDocument(root).toJson(QJsonDocument::Compact));
    if (!event)
        qFatal("fixture line rejected");
    return event;
}

FilterPack namedFilter(const QString &name)
{
    FilterPack pack;
    pack.name = name;
    pack.checkId = true;
    pack.id = name;
    // As the window builds them: the end bound covers its whole minute.
    pack.from = kMorning;
    pack.to = kMorning.addSecs(59);
    return pack;
}
}

class TestFilterWindow : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_store = std::make_unique<ConfigStore>();
        m_window = std::make_unique<FilterWindow>(*m_store);
        m_window->resize(1024, 768);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        m_driver = std::make_unique<FilterWindowDriver>(*m_window);
    }

    void cleanup()
    {
        QTRY_VERIFY(clearButtonsSettled(*m_window));
        m_driver.reset();
        m_window.reset();
        m_store.reset();
    }

    void nothingCheckedCannotBeApplied()
    {
        FilterWindowDriver &d = *m_driver;
        QCOMPARE(d.warning(), QStringLiteral("No filters selected."));
        QVERIFY(!d.applyButton()->isEnabled());
        QVERIFY(!d.get<QAbstractButton>("saveAsButton")->isEnabled());
        QVERIFY(d.get<QCheckBox>("checkBoxSources")->isHidden() && d.get<QListWidget>("sourcesFilter")->isHidden());

        d.setChecked("checkBoxId", true);
        QCOMPARE(d.warning(), QStringLiteral("Message ID is empty"));
        d.type("id", "auth-logout");
        QCOMPARE(d.warning(), QString());
        QVERIFY(d.applyButton()->isEnabled());
        d.setChecked("checkBoxId", false);
        QCOMPARE(d.warning(), QStringLiteral("No filters selected."));
        QVERIFY(d.apply().id.isEmpty());
        QVERIFY(m_window->isVisible());
    }

    void timeBounds()
    {
        FilterWindowDriver &d = *m_driver;
        const QDateTime now = QDateTime::currentDateTime();
        const QDateTime minute(now.date(), QTime(now.time().hour(), now.time().minute()));
        d.setChecked("checkBoxFrom", true);
        d.setTimes(minute.addSecs(60), minute.addSecs(120));
        QCOMPARE(d.warning(), QStringLiteral("Start time is greater than current."));
        d.setTimes(minute.addSecs(-3600), minute.addSecs(-3660));
        QCOMPARE(d.warning(), QString());
        // Only with both bounds in use does their order matter.
        d.setChecked("checkBoxTo", true);
        QCOMPARE(d.warning(), QStringLiteral("Start time is greater than end time."));
        d.setTimes(minute.addSecs(-3600), minute.addSecs(-3600));
        QCOMPARE(d.warning(), QString());
        QVERIFY(d.applyButton()->isEnabled());
    }

    void endTimeTakesInItsWholeMinute()
    {
        FilterWindowDriver &d = *m_driver;
        d.setChecked("checkBoxFrom", true);
        d.setChecked("checkBoxTo", true);
        d.setTimes(kMorning, QDateTime(kMorning.date(), QTime(10, 15)));
        QCOMPARE(d.get<QDateTimeEdit>("dateTimeTo")->text(), QStringLiteral("01.03.2024 10:15"));
        const FilterPack pack = d.apply();
        QCOMPARE(pack.from, kMorning);
        QCOMPARE(pack.to, QDateTime(kMorning.date(), QTime(10, 15, 59)));
        QVERIFY(pack.match(*eventAt(QTime(10, 0, 0))));
        QVERIFY(pack.match(*eventAt(QTime(10, 15, 59))));
        QVERIFY(!pack.match(*eventAt(QTime(10, 16, 0))));
        QVERIFY(!pack.match(*eventAt(QTime(9, 59, 59))));
        QVERIFY(!m_window->isVisible());
    }

    void nameTextsAreCheckedCaseSensitively()
    {
        FilterWindowDriver &d = *m_driver;
        d.setChecked("checkBoxNameContains", true);
        QCOMPARE(d.warning(), QStringLiteral("\"Event name contains text\" is empty."));
        d.type("nameContains", "Log");
        d.setChecked("checkBoxNameExcludes", true);
        QCOMPARE(d.warning(), QStringLiteral("\"Event name doesn't contain\" is empty."));
        d.type("nameExcludes", "Lo");
        QCOMPARE(d.warning(),
                 QStringLiteral("\"Event name doesn't contain\" is a part of \"Event name contains text\"."));
        QVERIFY(!d.applyButton()->isEnabled());
        d.type("nameExcludes", "lo");
        QCOMPARE(d.warning(), QString());
        const FilterPack pack = d.apply();
        QVERIFY(pack.checkNameContains && pack.checkNameExcludes);
        QCOMPARE(pack.nameContains, QStringLiteral("Log"));
        QCOMPARE(pack.nameExcludes, QStringLiteral("lo"));
    }

    void listsAndSearchNeedAChoice()
    {
        FilterWindowDriver &d = *m_driver;
        // Checks of several boxes report in a fixed order: the event types before the search.
        d.setChecked("checkBoxSearch", true);
        d.setChecked("checkBoxTypeContains", true);
        QCOMPARE(d.warning(), QStringLiteral("No event types selected."));
        d.checkType("Custom events");
        QCOMPARE(d.warning(), QStringLiteral("The search field is empty"));
        d.setChecked("checkBoxPriority", true);
        QCOMPARE(d.warning(), QStringLiteral("No message priorities selected."));
        d.checkPriority("warning");
        QCOMPARE(d.warning(), QStringLiteral("The search field is empty"));
        d.type("searchLine", "root");
        d.setChecked(d.get<QCheckBox>("wholewordCheckBox"), true);
        QCOMPARE(d.warning(), QString());

        FilterPack pack = d.apply();
        // Events of the site's own groups carry no type text.
        QCOMPARE(pack.eventTypes, QVector<QString>{QString()});
        QCOMPARE(pack.priorities, QVector<int>{Event::Warning});
        QVERIFY(pack.checkSearch && pack.wholeWord && !pack.caseSensitive);
        QVERIFY(!pack.checkTypeExcludes && pack.typeExcludes.isEmpty());

        // "Select all" takes every group, each by the type text its events carry.
        m_window->show();
        d.checkType("Select all");
        pack = d.apply();
        QStringList expected;
        for (const QString &text : Dictionary::instance().eventTypes())
            expected.append(text);
        QStringList types(pack.eventTypes.cbegin(), pack.eventTypes.cend());
        expected.sort();
        types.sort();
        QCOMPARE(types, expected);
        QVERIFY(types.contains("Authentication") && types.contains("Removable devices"));
    }

    void securityLabelValues_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("warning");
        QTest::newRow("five numbers") << "obj" << "0:0:0:0:0" << "";
        QTest::newRow("four numbers") << "obj" << "0:0:0:0" << "\"Object label\" is incorrect.";
        QTest::newRow("not anchored") << "obj" << "x1:2:3:4:5y" << "";
        QTest::newRow("empty") << "obj" << "" << "\"Object label\" is empty.";
        QTest::newRow("subject") << "subj" << "1:2:3" << "\"Subject label\" is incorrect.";
        // Only the object and subject labels are held to the pattern.
        QTest::newRow("new object label") << "obj_new" << "1:2:3" << "";
    }

    void securityLabelValues()
    {
        QFETCH(QString, key);
        QFETCH(QString, text);
        QFETCH(QString, warning);
        FilterWindowDriver &d = *m_driver;
        d.setChecked("check_" + key, true);
        if (!text.isEmpty())
            d.type(key, text);
        QCOMPARE(d.warning(), warning);
        QCOMPARE(d.applyButton()->isEnabled(), warning.isEmpty());
        if (warning.isEmpty())
            QCOMPARE(d.apply().auxConditions.value(AuxParRegistry::instance().typeOf(key)), QVariant(text));
    }

    void parameterEditors()
    {
        FilterWindowDriver &d = *m_driver;
        const AuxParRegistry &registry = AuxParRegistry::instance();
        QCOMPARE(m_window->findChildren<AuxParCheckBox *>().size(), 55);
        QCOMPARE(m_window->findChildren<AuxParCustomCheckBox *>().size(), registry.customParameters().size());
        QCOMPARE(registry.customParameters().size(), 3);
        QCOMPARE(d.get<QCheckBox>("check_ticket_id")->text(), QStringLiteral("Ticket ID"));

        const QVector<QPair<QString, int>> spinBounds{{"uid", 65535}, {"auid", 65535}, {"gid", 65536}, {"pid", 32768},
                                                      {"ppid", 32768}, {"deny", 32767}, {"tally", 32767}, {"level", 3}};
        for (const auto &[key, maximum] : spinBounds) {
            auto *spin = d.get<QSpinBox>(key);
            QVERIFY2(spin->minimum() == 0 && spin->maximum() == maximum, qPrintable(key));
        }
        for (const char *key : {"result", "success", "onsudo", "state", "signal", "source"}) {
            auto *combo = d.get<QComboBox>(key);
            QCOMPARE(combo->itemText(0), QStringLiteral("Not selected"));
            QCOMPARE(combo->currentIndex(), 0);
            // A line that cannot be chosen parts "no value" from the values.
            const QModelIndex separator = combo->model()->index(1, 0);
            QVERIFY(ComboBoxDelegate::isSeparator(separator));
            QVERIFY(!(combo->model()->flags(separator) & Qt::ItemIsSelectable));
            QStyleOptionViewItem option;
            QVERIFY(combo->itemDelegate()->sizeHint(option, separator).height()
                    < combo->itemDelegate()->sizeHint(option, combo->model()->index(2, 0)).height());
        }
        // Bottom to top with the keyboard, the separator is passed over.
        auto *result = d.get<QComboBox>("result");
        d.choose(result, "success");
        result->setFocus();
        QTest::keyClick(result, Qt::Key_Up);
        QCOMPARE(result->currentText(), QStringLiteral("Not selected"));
        // Times and type texts take no part in conditions: nothing to tick, nothing to enter.
        for (const char *key : {"time", "start_time", "end_time", "unixtime", "type_en", "type_ru"})
            QVERIFY2(!d.get<QCheckBox>(QStringLiteral("check_") + key)->isEnabled(), key);
        QVERIFY(!m_window->findChild<QWidget *>("time"));

        // Values come out as events carry them: numbers, booleans, keys and texts.
        d.setChecked("check_result", true);
        QCOMPARE(d.warning(), QStringLiteral("\"Result\" is empty."));
        d.choose(d.get<QComboBox>("result"), "failed");
        d.setChecked("check_uid", true);
        d.typeNumber(d.get<QSpinBox>("uid"), 4242);
        d.setChecked("check_source", true);
        d.choose(d.get<QComboBox>("source"), Dictionary::instance().sourceText("velmo-auth"));
        d.setChecked("check_ticket_id", true);
        d.type("ticket_id", "T-17");
        QCOMPARE(d.warning(), QString());
        const FilterPack pack = d.apply();
        QCOMPARE(pack.auxConditions.size(), 3);
        QCOMPARE(pack.auxConditions.value(AuxParId::Result), QVariant(false));
        QCOMPARE(pack.auxConditions.value(AuxParId::Result).userType(), int(QMetaType::Bool));
        QCOMPARE(pack.auxConditions.value(registry.typeOf("uid")), QVariant(4242));
        QCOMPARE(pack.auxConditions.value(AuxParId::Source), QVariant(QStringLiteral("velmo-auth")));
        QCOMPARE(pack.customConditions, (QHash<QString, QVariant>{{"ticket_id", QStringLiteral("T-17")}}));
    }

    void secondTabScrollsAndKeepsWheelOffEditors()
    {
        FilterWindowDriver &d = *m_driver;
        auto *area = d.get<QScrollArea>("auxScrollArea");
        d.get<QTabWidget>("tabWidget")->setCurrentWidget(d.get<QWidget>("tabAux"));
        QTRY_VERIFY(area->verticalScrollBar()->isVisible());
        QVERIFY(area->verticalScrollBar()->maximum() > 0);
        // Parameters stand in two columns at this size, each check box beside its editor.
        auto *uid = d.get<QCheckBox>("check_uid");
        QVERIFY(d.get<QCheckBox>("check_account_type")->x() != d.get<QCheckBox>("check_user")->x());
        QCOMPARE(d.get<QSpinBox>("uid")->geometry().center().y(), uid->geometry().center().y());

        auto *signal = d.get<QComboBox>("signal");
        area->ensureWidgetVisible(signal);
        QTRY_VERIFY(signal->visibleRegion().boundingRect().height() == signal->height());
        const int before = area->verticalScrollBar()->value();
        const QPoint centre = signal->rect().center();
        QWheelEvent wheel(centre, signal->mapToGlobal(centre), QPoint(), QPoint(0, -120), Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(signal, &wheel);
        QCOMPARE(signal->currentIndex(), 0);
        QVERIFY(area->verticalScrollBar()->value() != before);

        // The find field narrows the list to matching labels or keys.
        d.type("auxFind", "ppid");
        QTRY_VERIFY(d.get<QCheckBox>("check_ppid")->isVisible());
        QVERIFY(!uid->isVisible() && !d.get<QCheckBox>("check_ticket_id")->isVisible());
        d.type("auxFind", "");
        QTRY_VERIFY(uid->isVisibleTo(m_window.get()));
    }

    void searchActionGoesToTheKeyword()
    {
        FilterWindowDriver &d = *m_driver;
        auto *search = d.get<QLineEdit>("searchLine");
        QCOMPARE(search->placeholderText(), QStringLiteral("keyword search..."));
        auto *action = m_window->findChild<QAction *>("searchAction");
        QVERIFY(action && search->actions().contains(action));
        d.type(search, "sshd");
        d.get<QTabWidget>("tabWidget")->setCurrentWidget(d.get<QWidget>("tabAux"));
        d.get<QLineEdit>("auxFind")->setFocus();
        QTest::keySequence(m_window.get(), QKeySequence::Find);
        QCOMPARE(d.get<QTabWidget>("tabWidget")->currentWidget(), d.get<QWidget>("tabMain"));
        QTRY_VERIFY(search->hasFocus());
        QCOMPARE(search->selectedText(), QStringLiteral("sshd"));
    }

    void saveAsProposesTheFirstFreeName()
    {
        m_store->savedFilters() = {namedFilter("Event_Log_Filter_0"), namedFilter("Event_Log_Filter_2")};
        m_window->prepare();
        FilterWindowDriver &d = *m_driver;
        QCOMPARE(d.get<QComboBox>("savedFilters")->count(), 2);
        d.setChecked("checkBoxId", true);
        d.type("id", "auth-logout");
        QSignalSpy saved(m_window.get(), &FilterWindow::saveConfig);
        QTest::mouseClick(d.get<QAbstractButton>("saveAsButton"), Qt::LeftButton);
        auto *handler = m_window->findChild<FilterHandler *>();
        QTRY_VERIFY(handler && handler->isVisible());
        auto *name = handler->findChild<QLineEdit *>("filterName");
        QCOMPARE(name->text(), QStringLiteral("Event_Log_Filter_1"));
        QCOMPARE(name->selectedText(), name->text());
        QTest::mouseClick(handler->findChild<QDialogButtonBox *>("buttonBox")->button(QDialogButtonBox::Ok), Qt::LeftButton);
        QCOMPARE(saved.count(), 1);
        QCOMPARE(m_store->savedFilters().size(), 3);
        QCOMPARE(m_store->savedFilters().last().name, QStringLiteral("Event_Log_Filter_1"));
        QCOMPARE(m_store->savedFilters().last().id, QStringLiteral("auth-logout"));
        QCOMPARE(d.get<QComboBox>("savedFilters")->currentText(), QStringLiteral("Event_Log_Filter_1"));
        QCOMPARE(m_window->proposedFilterName(), QStringLiteral("Event_Log_Filter_3"));
        // Freshly saved, nothing is left to save.
        QVERIFY(!d.get<QAbstractButton>("saveButton")->isEnabled());

        // An empty name cannot be confirmed.
        QTest::mouseClick(d.get<QAbstractButton>("saveAsButton"), Qt::LeftButton);
        QTRY_VERIFY(handler->isVisible());
        d.type(name, "  ");
        QVERIFY(!handler->findChild<QDialogButtonBox *>("buttonBox")->button(QDialogButtonBox::Ok)->isEnabled());
        handler->reject();
        QCOMPARE(saved.count(), 1);
    }

    void savingOverAndDeletingAsk()
    {
        m_store->savedFilters() = {namedFilter("first"), namedFilter("second")};
        m_window->prepare();
        FilterWindowDriver &d = *m_driver;
        auto *saved = d.get<QComboBox>("savedFilters");
        QVERIFY(!d.get<QAbstractButton>("removeButton")->isEnabled());
        d.choose(saved, "second");
        QCOMPARE(d.get<QLineEdit>("id")->text(), QStringLiteral("second"));
        QVERIFY(!d.get<QAbstractButton>("saveButton")->isEnabled());
        d.type("id", "changed");
        QVERIFY(d.get<QAbstractButton>("saveButton")->isEnabled());
        QSignalSpy written(m_window.get(), &FilterWindow::saveConfig);

        {
            QuestionAnswerer no(QMessageBox::No);
            QTest::mouseClick(d.get<QAbstractButton>("saveButton"), Qt::LeftButton);
            QCOMPARE(no.answered, 1);
            QCOMPARE(no.title, QStringLiteral("Filter saving"));
            QCOMPARE(no.text, QStringLiteral("Do you want to rewrite selected filter?"));
            QCOMPARE(m_store->savedFilters().at(1).id, QStringLiteral("second"));
            QCOMPARE(written.count(), 0);
        }
        {
            QuestionAnswerer yes(QMessageBox::Yes);
            QTest::mouseClick(d.get<QAbstractButton>("saveButton"), Qt::LeftButton);
            QCOMPARE(yes.answered, 1);
            QCOMPARE(m_store->savedFilters().at(1).id, QStringLiteral("changed"));
            QCOMPARE(m_store->savedFilters().at(1).name, QStringLiteral("second"));
            QCOMPARE(written.count(), 1);
            QVERIFY(!d.get<QAbstractButton>("saveButton")->isEnabled());
        }
        // Save as under a taken name asks before it replaces that filter.
        for (const auto button : {QMessageBox::No, QMessageBox::Yes}) {
            QuestionAnswerer answer(button);
            m_window->saveFilter("first");
            QCOMPARE(answer.answered, 1);
            QCOMPARE(answer.title, QStringLiteral("Filter saving"));
            QCOMPARE(answer.text,
                     QStringLiteral("Filter with this name already exists. Do you want to rewrite selected filter?"));
            QCOMPARE(m_store->savedFilters().size(), 2);
            QCOMPARE(m_store->savedFilters().at(0).id,
                     button == QMessageBox::Yes ? QStringLiteral("changed") : QStringLiteral("first"));
        }
        QCOMPARE(written.count(), 2);
        QCOMPARE(saved->currentText(), QStringLiteral("first"));

        {
            QuestionAnswerer no(QMessageBox::No);
            QTest::mouseClick(d.get<QAbstractButton>("removeButton"), Qt::LeftButton);
            QCOMPARE(no.title, QStringLiteral("Filter deleting"));
            QCOMPARE(no.text, QStringLiteral("Do you want to delete selected filter?"));
            QCOMPARE(m_store->savedFilters().size(), 2);
        }
        {
            QuestionAnswerer yes(QMessageBox::Yes);
            QTest::mouseClick(d.get<QAbstractButton>("removeButton"), Qt::LeftButton);
            QCOMPARE(yes.answered, 1);
        }
        QCOMPARE(m_store->savedFilters().size(), 1);
        QCOMPARE(m_store->savedFilters().first().name, QStringLiteral("second"));
        QCOMPARE(saved->count(), 1);
        QCOMPARE(saved->currentIndex(), -1);
        QVERIFY(!d.get<QAbstractButton>("removeButton")->isEnabled());
        QCOMPARE(written.count(), 3);
    }

    void savedFilterRoundTripsThroughTheSettingsFile()
    {
        FilterWindowDriver &d = *m_driver;
        ConfigHandler handler(*m_store);
        connect(m_window.get(), &FilterWindow::saveConfig, &handler, &ConfigHandler::writeConfig);

        d.setChecked("checkBoxFrom", true);
        d.setChecked("checkBoxTo", true);
        d.setTimes(kMorning, kMorning.addDays(1));
        d.setChecked("checkBoxId", true);
        d.type("id", "auth-login-failure");
        d.setChecked("checkBoxTypeContains", true);
        d.checkType("Authentication");
        d.checkType("Custom events");
        d.setChecked("checkBoxNameContains", true);
        d.type("nameContains", "Login");
        d.setChecked("checkBoxNameExcludes", true);
        d.type("nameExcludes", "out");
        d.setChecked("checkBoxPriority", true);
        d.checkPriority("warning");
        d.checkPriority("alert");
        d.setChecked("checkBoxSearch", true);
        d.type("searchLine", "root");
        d.setChecked(d.get<QCheckBox>("registerCheckBox"), true);
        d.setChecked("check_uid", true);
        d.typeNumber(d.get<QSpinBox>("uid"), 1000);
        d.setChecked("check_result", true);
        d.choose(d.get<QComboBox>("result"), "failed");
        d.setChecked("check_signal", true);
        d.choose(d.get<QComboBox>("signal"), "SIGKILL (9)");
        d.setChecked("check_subj", true);
        d.type("subj", "0:63:0:0:0");
        d.setChecked("check_workplace", true);
        d.type("workplace", "WS-12");
        QCOMPARE(d.warning(), QString());
        const FilterPack composed = m_window->currentFilter();

        QTest::mouseClick(d.get<QAbstractButton>("saveAsButton"), Qt::LeftButton);
        auto *nameDialog = m_window->findChild<FilterHandler *>();
        QTRY_VERIFY(nameDialog->isVisible());
        d.type(nameDialog->findChild<QLineEdit *>("filterName"), "failed logins");
        QTest::keyClick(nameDialog->findChild<QLineEdit *>("filterName"), Qt::Key_Return);
        QVERIFY(!nameDialog->isVisible());

        QSettings file(QSettings::NativeFormat, QSettings::UserScope, ConfigHandler::organizationName(),
                       ConfigHandler::applicationName());
        QCOMPARE(file.value("Filters/Number of filters").toInt(), 1);
        QCOMPARE(file.value("Filters/Name 0").toString(), QStringLiteral("failed logins"));
        QCOMPARE(file.value("Filters/check_uid 0").toBool(), true);

        // A later run reads the file and loads the filter back into every control.
        ConfigStore later;
        ConfigHandler(later).readConfig();
        QCOMPARE(later.savedFilters().size(), 1);
        FilterWindow window(later);
        window.resize(1024, 768);
        window.show();
        FilterWindowDriver r(window);
        QCOMPARE(r.warning(), QStringLiteral("No filters selected."));
        r.choose(r.get<QComboBox>("savedFilters"), "failed logins");
        QCOMPARE(window.currentFilter(), composed);
        QCOMPARE(r.get<QDateTimeEdit>("dateTimeTo")->dateTime(), kMorning.addDays(1).addSecs(59));
        QCOMPARE(r.get<QLineEdit>("id")->text(), QStringLiteral("auth-login-failure"));
        QCOMPARE(r.typeItem("Authentication")->checkState(0), Qt::Checked);
        QCOMPARE(r.typeItem("Custom events")->checkState(0), Qt::Checked);
        QCOMPARE(r.typeItem("Network")->checkState(0), Qt::Unchecked);
        QCOMPARE(r.typeItem("Select all")->checkState(0), Qt::PartiallyChecked);
        QVERIFY(r.get<QCheckBox>("registerCheckBox")->isChecked() && !r.get<QCheckBox>("wholewordCheckBox")->isChecked());
        QCOMPARE(r.get<QSpinBox>("uid")->value(), 1000);
        QCOMPARE(r.get<QComboBox>("result")->currentText(), QStringLiteral("failed"));
        QCOMPARE(r.get<QComboBox>("signal")->currentText(), QStringLiteral("SIGKILL (9)"));
        QCOMPARE(r.get<QLineEdit>("subj")->text(), QStringLiteral("0:63:0:0:0"));
        QCOMPARE(r.get<QLineEdit>("workplace")->text(), QStringLiteral("WS-12"));
        QVERIFY(r.get<QCheckBox>("check_workplace")->isChecked() && !r.get<QCheckBox>("check_gid")->isChecked());
        QVERIFY(!r.get<QAbstractButton>("saveButton")->isEnabled());
        QVERIFY(r.get<QAbstractButton>("removeButton")->isEnabled());
        QCOMPARE(r.warning(), QString());

        // Any change makes the filter worth saving again.
        r.setChecked("check_workplace", false);
        QVERIFY(r.get<QAbstractButton>("saveButton")->isEnabled());
        r.setChecked("check_workplace", true);
        QVERIFY(!r.get<QAbstractButton>("saveButton")->isEnabled());
        QTRY_VERIFY(clearButtonsSettled(window));
    }

    void savedFiltersFollowTheStore()
    {
        FilterWindowDriver &d = *m_driver;
        m_store->savedFilters() = {namedFilter("one")};
        QCOMPARE(d.get<QComboBox>("savedFilters")->count(), 0);
        m_window->updateSavedFilters();
        d.choose(d.get<QComboBox>("savedFilters"), "one");
        m_store->savedFilters().prepend(namedFilter("zero"));
        m_window->updateSavedFilters();
        QCOMPARE(d.get<QComboBox>("savedFilters")->count(), 2);
        QCOMPARE(d.get<QComboBox>("savedFilters")->currentText(), QStringLiteral("one"));
        m_store->savedFilters().removeLast();
        m_window->updateSavedFilters();
        QCOMPARE(d.get<QComboBox>("savedFilters")->currentIndex(), -1);
        QVERIFY(!d.get<QAbstractButton>("removeButton")->isEnabled());
    }

private:
    std::unique_ptr<ConfigStore> m_store;
    std::unique_ptr<FilterWindow> m_window;
    std::unique_ptr<FilterWindowDriver> m_driver;
};

NIMB_TEST_MAIN_WITH(TestFilterWindow, QApplication, NIMB_DEMO_DIR "/sysroot")

#include "test_filterwindow.moc"
