// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "AuxParRegistry.h"
#include "EventsModel.h"
#include "EventsView.h"
#include "Language.h"
#include "NimbTestMain.h"
#include "ViewsFixture.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QColor>
#include <QHeaderView>

#include <set>

// Reaches indexes a view would never ask for.
class ProbedModel : public EventsModel
{
public:
    using EventsModel::EventsModel;
    QModelIndex at(int row, int column) const { return createIndex(row, column); }
};

class TestEventsModel : public QObject
{
    Q_OBJECT

    static std::vector<Event *> page(int n, const QString &priority = QStringLiteral("info"))
    {
        std::vector<Event *> events;
        for (int i = 0; i < n; ++i)
            events.push_back(views::event(views::line(QStringLiteral("id-%1").arg(i), priority), quint32(i + 1)));
        return events;
    }

private slots:
    void fixedColumnsShowTheEvent()
    {
        ProbedModel model;
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setEvents({views::event(views::line(QStringLiteral("auth-login"), QStringLiteral("err")), 41)});
        QCOMPARE(model.rowCount(), 1);

        const auto cell = [&model](int column) { return model.data(model.index(0, column)); };
        QCOMPARE(cell(EventsModel::NumberColumn).toInt(), 41);
        QCOMPARE(cell(EventsModel::TimeColumn).toString(), QStringLiteral("2024-03-01T10:00:00+03:00"));
        QCOMPARE(cell(EventsModel::MessageIdColumn).toString(), QStringLiteral("auth-login"));
        QCOMPARE(cell(EventsModel::TypeColumn).toString(),
                 Language::isRussian() ? QStringLiteral("Авторизация") : QStringLiteral("Authorisation"));
        QCOMPARE(cell(EventsModel::PriorityColumn).toString(), QStringLiteral("error"));
        QCOMPARE(cell(EventsModel::NameColumn).toString(),
                 Language::isRussian() ? QStringLiteral("Имя auth-login") : QStringLiteral("Name of auth-login"));

        // Only display and foreground carry data; rows outside the page carry none.
        QVERIFY(!model.data(model.index(0, EventsModel::MessageIdColumn), Qt::ToolTipRole).isValid());
        QVERIFY(!model.data(model.index(0, EventsModel::MessageIdColumn), Qt::EditRole).isValid());
        QVERIFY(!model.data(model.index(-1, 0)).isValid());
        QVERIFY(!model.data(model.at(-1, 2)).isValid());
        QVERIFY(!model.data(model.at(1, 2)).isValid());
        QVERIFY(!model.data(model.at(0, model.columnCount())).isValid());
        QVERIFY(!model.event(1) && !model.event(-1));
    }

    void foregroundFollowsPriority_data()
    {
        QTest::addColumn<QString>("word");
        QTest::addColumn<QVariant>("colour");
        const QVariant none;
        QTest::newRow("unknown") << QStringLiteral("Warning") << none;
        QTest::newRow("emergency") << QStringLiteral("emerg") << QVariant(QColor(Qt::red));
        QTest::newRow("alert") << QStringLiteral("alert") << QVariant(QColor(Qt::red));
        QTest::newRow("critical") << QStringLiteral("crit") << QVariant(QColor(Qt::red));
        QTest::newRow("error") << QStringLiteral("error") << QVariant(QColor(Qt::darkYellow));
        QTest::newRow("warning") << QStringLiteral("warning") << QVariant(QColor(Qt::darkYellow));
        QTest::newRow("notice") << QStringLiteral("notice") << none;
        QTest::newRow("info") << QStringLiteral("informational") << none;
        QTest::newRow("debug") << QStringLiteral("debug") << none;
    }

    void foregroundFollowsPriority()
    {
        QFETCH(QString, word);
        QFETCH(QVariant, colour);
        EventsModel model;
        model.setEvents(page(1, word));
        // The whole row takes the colour, auxiliary columns included.
        for (int column : {0, int(EventsModel::NameColumn), model.columnOfType(AuxParId::Host)}) {
            const QVariant foreground = model.data(model.index(0, column), Qt::ForegroundRole);
            QCOMPARE(foreground.isValid(), colour.isValid());
            if (colour.isValid())
                QCOMPARE(foreground.value<QColor>(), colour.value<QColor>());
        }
    }

    void headersAndAuxiliaryColumns()
    {
        const AuxParRegistry &registry = AuxParRegistry::instance();
        EventsModel model;
        const QStringList fixed{QStringLiteral("№"),        QStringLiteral("Date and time"), QStringLiteral("Message ID"),
                                QStringLiteral("Event type"), QStringLiteral("Priority"),    QStringLiteral("Event name")};
        for (int section = 0; section < fixed.size(); ++section)
            QCOMPARE(model.headerData(section, Qt::Horizontal).toString(), fixed.at(section));
        QVERIFY(!model.headerData(0, Qt::Vertical).isValid());
        QVERIFY(!model.headerData(1, Qt::Horizontal, Qt::ToolTipRole).isValid());
        QVERIFY(!model.headerData(model.columnCount(), Qt::Horizontal).isValid());
        QVERIFY(!model.headerData(-1, Qt::Horizontal).isValid());

        // Every kind but time and the two types, and every custom parameter, once.
        QCOMPARE(model.firstAuxColumn(), 6);
        QCOMPARE(model.columnCount(), 6 + AuxParRegistry::count() - 3 + registry.customParameters().size());
        QStringList headers;
        for (int column = model.firstAuxColumn(); column < model.columnCount(); ++column)
            headers.append(model.headerData(column, Qt::Horizontal).toString());
        QStringList sorted = headers;
        std::sort(sorted.begin(), sorted.end());
        QCOMPARE(headers, sorted);

        std::set<int> columns;
        for (int type = 0; type < AuxParRegistry::count(); ++type) {
            const int column = model.columnOfType(type);
            if (type == AuxParId::Time || type == AuxParId::TypeEn || type == AuxParId::TypeRu) {
                QCOMPARE(column, -1);
                continue;
            }
            const AuxPar *prototype = registry.prototype(type);
            QCOMPARE(model.headerData(column, Qt::Horizontal).toString(), prototype->label());
            QCOMPARE(model.columnOfName(prototype->key()), column);
            QCOMPARE(model.typeOfColumn(column), type);
            QCOMPARE(model.nameOfColumn(column), prototype->key());
            columns.insert(column);
        }
        QCOMPARE(registry.customParameters().size(), 2);
        for (const CustomParameter &parameter : registry.customParameters()) {
            const int column = model.columnOfName(parameter.name);
            QCOMPARE(model.headerData(column, Qt::Horizontal).toString(), parameter.label);
            QCOMPARE(model.typeOfColumn(column), -1);
            QCOMPARE(model.nameOfColumn(column), parameter.name);
            columns.insert(column);
        }
        QCOMPARE(int(columns.size()), model.columnCount() - model.firstAuxColumn());
        QCOMPARE(model.columnOfName(QStringLiteral("no such parameter")), -1);
        QCOMPARE(model.columnOfType(AuxParRegistry::count()), -1);
        QCOMPARE(model.typeOfColumn(EventsModel::NameColumn), -1);
        QVERIFY(model.nameOfColumn(EventsModel::NameColumn).isEmpty());
    }

    void columnsFromAnotherRegistry()
    {
        // Custom names are simplified and a missing label falls back to the name.
        const AuxParRegistry registry(QStringLiteral(NIMB_TEST_DATA_DIR "/model/emp"));
        EventsModel model(registry);
        QCOMPARE(model.columnCount(), 6 + AuxParRegistry::count() - 3 + registry.customParameters().size());
        const int badge = model.columnOfName(QStringLiteral("badge number"));
        QVERIFY(badge >= model.firstAuxColumn());
        QCOMPARE(model.headerData(badge, Qt::Horizontal).toString(), registry.customLabel(QStringLiteral("badge number")));
        QCOMPARE(model.columnOfName(QStringLiteral("site code")), -1);
    }

    void auxiliaryCellsShowParameterTexts()
    {
        EventsModel model;
        const QJsonObject extra{{QStringLiteral("user"), QStringLiteral("alice")},
                                {QStringLiteral("pid"), 4242},
                                {QStringLiteral("success"), false},
                                {QStringLiteral("state"), QStringLiteral("yes")},
                                {QStringLiteral("shift"), QStringLiteral("night")}};
        model.setEvents({views::event(views::line(QStringLiteral("a"), QStringLiteral("info"), extra))});
        const auto text = [&model](int column) { return model.data(model.index(0, column)).toString(); };
        QCOMPARE(text(model.columnOfType(53)), QStringLiteral("alice"));
        QCOMPARE(text(model.columnOfType(32)), QStringLiteral("4242"));
        QCOMPARE(text(model.columnOfType(AuxParId::Success)), QStringLiteral("failed"));
        QCOMPARE(text(model.columnOfType(AuxParId::State)), QStringLiteral("enabled"));
        QCOMPARE(text(model.columnOfType(AuxParId::Host)), QStringLiteral("host1"));
        QCOMPARE(text(model.columnOfType(AuxParId::Source)),
                 Language::isRussian() ? QStringLiteral("Удалённая оболочка") : QStringLiteral("Remote shell"));
        QCOMPARE(text(model.columnOfName(QStringLiteral("shift"))), QStringLiteral("night"));
        // Parameters the event does not carry are empty cells.
        QCOMPARE(text(model.columnOfType(13)), QString());
        QCOMPARE(text(model.columnOfName(QStringLiteral("site code"))), QString());
    }

    void newPageReplacesTheEvents()
    {
        EventsModel model;
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
        model.setEvents(page(3));
        QCOMPARE(model.rowCount(), 3);
        QCOMPARE(model.data(model.index(2, EventsModel::MessageIdColumn)).toString(), QStringLiteral("id-2"));

        std::vector<Event *> next = page(1, QStringLiteral("alert"));
        const Event *kept = next.front();
        model.setEvents(std::move(next));
        QCOMPARE(model.rowCount(), 1);
        QCOMPARE(model.event(0), kept);
        QCOMPARE(model.events().size(), std::size_t(1));
        model.clear();
        QCOMPARE(model.rowCount(), 0);
        QCOMPARE(resets.count(), 3);
        // The last page is deleted with the model (the sanitizer build checks for leaks).
        model.setEvents(page(2));
    }

    void enterRequestsDetailsBeforeTheBaseHandling()
    {
        EventsModel model;
        model.setEvents(page(5));
        EventsView view;
        view.setModel(&model);
        view.resize(600, 300);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        view.setFocus();
        view.setCurrentIndex(model.index(1, EventsModel::MessageIdColumn));

        // The base view answers Return and Enter by activating the current index.
        QStringList order;
        connect(&view, &EventsView::showDetailsRequest, &view,
                [&] { order << QStringLiteral("details %1").arg(view.currentIndex().row()); });
        connect(&view, &QAbstractItemView::activated, &view,
                [&](const QModelIndex &index) { order << QStringLiteral("activated %1").arg(index.row()); });
        QTest::keyClick(&view, Qt::Key_Return);
        QCOMPARE(order, (QStringList{QStringLiteral("details 1"), QStringLiteral("activated 1")}));

        order.clear();
        QTest::keyClick(&view, Qt::Key_Down);
        QTest::keyClick(&view, Qt::Key_Enter, Qt::KeypadModifier);
        QCOMPARE(order, (QStringList{QStringLiteral("details 2"), QStringLiteral("activated 2")}));
        // Other keys ask for nothing.
        order.clear();
        QTest::keyClick(&view, Qt::Key_Up);
        QTest::keyClick(&view, Qt::Key_Space);
        QCOMPARE(view.currentIndex().row(), 1);
        QVERIFY(order.isEmpty());

        // Rows are selected whole, several at a time.
        QTest::keyClick(&view, Qt::Key_Down, Qt::ShiftModifier);
        const QModelIndexList rows = view.selectionModel()->selectedRows();
        QCOMPARE(rows.size(), 2);
    }

    void viewReportsItsGeometry()
    {
        QWidget window;
        auto *view = new EventsView(&window);
        QSignalSpy geometry(view, &EventsView::geometryChanged);
        view->setGeometry(10, 20, 300, 200);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QTRY_VERIFY(!geometry.isEmpty());
        QCOMPARE(geometry.last(), (QVariantList{10, 20, 300, 200}));

        geometry.clear();
        view->move(30, 40);
        QTRY_VERIFY(!geometry.isEmpty());
        QCOMPARE(geometry.last(), (QVariantList{30, 40, 300, 200}));
        geometry.clear();
        view->resize(250, 120);
        QTRY_VERIFY(!geometry.isEmpty());
        QCOMPARE(geometry.last(), (QVariantList{30, 40, 250, 120}));
    }
};

NIMB_TEST_MAIN_WITH(TestEventsModel, QApplication, NIMB_TEST_DATA_DIR "/model/sysroot")
#include "test_eventsmodel.moc"
