// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "BottomWidget.h"
#include "FilterPack.h"
#include "HighlightProbe.h"
#include "NimbTestMain.h"
#include "ViewsFixture.h"

#include <QApplication>
#include <QHeaderView>
#include <QLabel>

class TestBottomWidget : public QObject
{
    Q_OBJECT

    struct Panel {
        BottomWidget widget;
        QTableWidget *parameters = nullptr;
        QTableWidget *filters = nullptr;
        QLabel *placeholder = nullptr;

        Panel()
        {
            parameters = widget.findChild<QTableWidget *>(QStringLiteral("tableWidget"));
            filters = widget.findChild<QTableWidget *>(QStringLiteral("filtersTable"));
            placeholder = widget.findChild<QLabel *>(QStringLiteral("placeholderLabel"));
            widget.resize(900, 400);
            widget.show();
        }
    };

    static QStringList headers(const QTableWidget *table)
    {
        return {table->horizontalHeaderItem(0)->text(), table->horizontalHeaderItem(1)->text()};
    }

private slots:
    void eventRowsInLabelOrder()
    {
        Panel panel;
        QVERIFY(panel.parameters && panel.filters && panel.placeholder);
        QVERIFY(QTest::qWaitForWindowExposed(&panel.widget));
        QCOMPARE(panel.widget.windowTitle(), QStringLiteral("Form"));
        QVERIFY(panel.placeholder->isVisible());
        QCOMPARE(panel.placeholder->text(), QStringLiteral("Select event to see details."));
        QVERIFY(!panel.parameters->isVisible());
        QVERIFY(!panel.filters->isVisible());

        const QJsonObject extra{{QStringLiteral("user"), QStringLiteral("alice")},
                                {QStringLiteral("auid"), 1000},
                                {QStringLiteral("onsudo"), true},
                                {QStringLiteral("shift"), QStringLiteral("night")}};
        const std::unique_ptr<Event> event(views::event(views::line(QStringLiteral("auth-login"), QStringLiteral("crit"), extra)));
        panel.widget.showEventDetails(event.get());
        QVERIFY(!panel.placeholder->isVisible());
        QVERIFY(panel.parameters->isVisible());
        QCOMPARE(headers(panel.parameters), (QStringList{QStringLiteral("Event parameter"), QStringLiteral("Value")}));
        // Without a filter the parameters have the whole width.
        QTRY_VERIFY(panel.parameters->width() > panel.widget.width() * 9 / 10);

        const views::Rows rows = views::tableRows(panel.parameters);
        // The same rows as the event lists, only ordered by label.
        views::Rows expected = event->parameterList();
        std::sort(expected.begin(), expected.end());
        views::Rows shown = rows;
        std::sort(shown.begin(), shown.end());
        QCOMPARE(shown, expected);
        for (int i = 1; i < rows.size(); ++i)
            QVERIFY2(rows.at(i - 1).first <= rows.at(i).first, qPrintable(rows.at(i).first));
        const int name = views::rowOf(rows, QStringLiteral("Event name"));
        const int id = views::rowOf(rows, QStringLiteral("Message ID"));
        QVERIFY(name >= 0 && id > name);
        QCOMPARE(rows.at(id).second, QStringLiteral("auth-login"));
        QCOMPARE(rows.at(views::rowOf(rows, QStringLiteral("Performed on behalf of a superuser"))).second, QStringLiteral("yes"));
        QCOMPARE(rows.at(views::rowOf(rows, QStringLiteral("Priority"))).second, QStringLiteral("critical"));

        // Another event replaces the rows; none leaves the table empty.
        const std::unique_ptr<Event> plain(views::event(views::line(QStringLiteral("b"), QStringLiteral("Warning"))));
        panel.widget.showEventDetails(plain.get());
        QCOMPARE(views::tableRows(panel.parameters).size(), plain->parameterList().size());
        QCOMPARE(views::rowOf(views::tableRows(panel.parameters), QStringLiteral("User")), -1);
        panel.widget.showEventDetails(nullptr);
        QCOMPARE(panel.parameters->rowCount(), 0);
        QVERIFY(panel.parameters->isVisible());
        QCOMPARE(headers(panel.parameters), (QStringList{QStringLiteral("Event parameter"), QStringLiteral("Value")}));
    }

    void filterRowsInFixedOrder()
    {
        Panel panel;
        FilterPack filter;
        filter.checkFrom = filter.checkTo = filter.checkId = filter.checkEventTypes = filter.checkTypeExcludes = true;
        filter.checkNameContains = filter.checkNameExcludes = filter.checkPriorities = filter.checkSearch = true;
        filter.from = QDateTime(QDate(2024, 3, 1), QTime(10, 15));
        filter.to = QDateTime(QDate(2024, 3, 2), QTime(18, 30, 59));
        filter.id = QStringLiteral("auth-login");
        // The empty type is that of custom events.
        filter.eventTypes = {QStringLiteral("Authorisation"), QString(), QStringLiteral("Network")};
        filter.typeExcludes = QStringLiteral("log");
        filter.nameContains = QStringLiteral("user");
        filter.nameExcludes = QStringLiteral("root");
        filter.priorities = {Event::Warning, Event::Emergency, Event::Critical};
        filter.search = QStringLiteral("sshd");
        filter.wholeWord = true;
        filter.auxConditions = {{43, true},
                                {29, false},
                                {41, true},
                                {36, false},
                                {39, QStringLiteral("sshd")},
                                {38, 9},
                                {53, QStringLiteral("alice")}};
        filter.customConditions = {{QStringLiteral("shift"), QStringLiteral("night")}};
        panel.widget.showFilter(filter);

        QVERIFY(panel.filters->isVisible());
        // Beside an event the criteria take the smaller share.
        const std::unique_ptr<Event> event(views::event(views::line(QStringLiteral("a"))));
        panel.widget.showEventDetails(event.get());
        QTRY_VERIFY(panel.filters->width() > panel.widget.width() / 4);
        QVERIFY(panel.filters->width() < panel.parameters->width());
        QCOMPARE(headers(panel.filters), (QStringList{QStringLiteral("Filter name"), QStringLiteral("Filter value")}));
        const views::Rows expected{
            {QStringLiteral("From"), QStringLiteral("3/1/24 10:15 AM")},
            {QStringLiteral("To"), QStringLiteral("3/2/24 6:30 PM")},
            {QStringLiteral("Message ID"), QStringLiteral("auth-login")},
            {QStringLiteral("Event type"), QStringLiteral("Authorisation, Network")},
            {QStringLiteral("Custom events"), QStringLiteral("yes")},
            {QStringLiteral("Event type doesn't contain"), QStringLiteral("log")},
            {QStringLiteral("Event name contains text"), QStringLiteral("user")},
            {QStringLiteral("Event name doesn't contain"), QStringLiteral("root")},
            {QStringLiteral("Priorities"), QStringLiteral("emergency, critical, warning")},
            {QStringLiteral("Current state"), QStringLiteral("enabled")},
            {QStringLiteral("Operation success status"), QStringLiteral("success")},
            {QStringLiteral("Performed on behalf of a superuser"), QStringLiteral("no")},
            {QStringLiteral("Result"), QStringLiteral("failed")},
            {QStringLiteral("Shift"), QStringLiteral("night")},
            {QStringLiteral("Signal"), QStringLiteral("SIGKILL")},
            {QStringLiteral("Source"), QStringLiteral("Remote shell")},
            {QStringLiteral("User"), QStringLiteral("alice")},
            {QStringLiteral("Search"), QStringLiteral("sshd (only whole words)")},
        };
        QCOMPARE(views::tableRows(panel.filters), expected);

        // The bounds are written the user's way; the search's options are worded with the keyword.
        const QLocale previous;
        QLocale::setDefault(QLocale(QLocale::Russian, QLocale::Russia));
        const auto restore = qScopeGuard([&] { QLocale::setDefault(previous); });
        filter.caseSensitive = true;
        panel.widget.showFilter(filter);
        views::Rows rows = views::tableRows(panel.filters);
        QCOMPARE(rows.first(), qMakePair(QStringLiteral("From"), QStringLiteral("01.03.2024 10:15")));
        QCOMPARE(rows.last(), qMakePair(QStringLiteral("Search"), QStringLiteral("sshd (case sensitive, only whole words)")));
        filter.wholeWord = false;
        panel.widget.showFilter(filter);
        QCOMPARE(views::tableRows(panel.filters).last().second, QStringLiteral("sshd (case sensitive)"));
    }

    void onlyActiveCriteriaHaveRows()
    {
        Panel panel;
        // Values without their flags are no criteria.
        FilterPack filter;
        filter.id = QStringLiteral("auth-login");
        filter.nameContains = QStringLiteral("user");
        filter.priorities = {Event::Alert};
        filter.eventTypes = {QStringLiteral("Authorisation")};
        panel.widget.showFilter(filter);
        QCOMPARE(panel.filters->rowCount(), 0);
        QVERIFY(!panel.filters->isVisible());

        filter.checkEventTypes = true;
        filter.eventTypes = {QString()};
        filter.checkPriorities = true;
        filter.caseSensitive = true;
        panel.widget.showFilter(filter);
        QVERIFY(panel.filters->isVisible());
        QCOMPARE(views::tableRows(panel.filters),
                 (views::Rows{{QStringLiteral("Custom events"), QStringLiteral("yes")},
                              {QStringLiteral("Priorities"), QStringLiteral("alert")}}));

        // A tab refiltered to nothing, or never filtered, shows no criteria.
        panel.widget.showFilter(FilterPack());
        QCOMPARE(panel.filters->rowCount(), 0);
        QVERIFY(!panel.filters->isVisible());
    }

    void keywordIsMarkedInParameterValues()
    {
        Panel panel;
        panel.widget.resize(900, 900);
        highlight::usePlainPalette(panel.parameters);
        const QJsonObject extra{{QStringLiteral("user"), QStringLiteral("Alice")}};
        const std::unique_ptr<Event> event(views::event(views::line(QStringLiteral("auth-login"), QStringLiteral("info"), extra)));
        FilterPack filter;
        filter.checkSearch = true;
        filter.search = QStringLiteral("alice");
        filter.wholeWord = true;
        panel.widget.showFilter(filter);
        panel.widget.showEventDetails(event.get());
        const int user = views::rowOf(views::tableRows(panel.parameters), QStringLiteral("User"));
        QVERIFY(user >= 0);
        QCOMPARE(highlight::markedRows(panel.parameters, 1), QVector<int>{user});
        QCOMPARE(highlight::markedRows(panel.parameters, 0), QVector<int>());

        filter.caseSensitive = true;
        panel.widget.showFilter(filter);
        QCOMPARE(highlight::markedRows(panel.parameters, 1), QVector<int>());
        filter.search = QStringLiteral("Alice");
        panel.widget.showFilter(filter);
        QCOMPARE(highlight::markedRows(panel.parameters, 1), QVector<int>{user});
        // An unfiltered tab marks nothing.
        panel.widget.showFilter(FilterPack());
        QCOMPARE(highlight::markedRows(panel.parameters, 1), QVector<int>());
    }
};

NIMB_TEST_MAIN_WITH(TestBottomWidget, QApplication, NIMB_TEST_DATA_DIR "/model/sysroot")
#include "test_bottomwidget.moc"
