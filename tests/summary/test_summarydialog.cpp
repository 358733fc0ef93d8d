// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "Dictionary.h"
#include "FilteringLogParser.h"
#include "NimbTestMain.h"
#include "SummaryDialog.h"

#include <QApplication>
#include <QDir>
#include <QProcess>
#include <QProgressBar>
#include <QStandardItemModel>
#include <QTemporaryDir>
#include <QTreeView>

namespace
{
QByteArray line(const QByteArray &priority, const QByteArray &source, qint64 secondsAgo)
{
    const QDateTime time = QDateTime::currentDateTime().addSecs(-secondsAgo);
    return "{\"FACILITY\":\"auth\",\"PRIORITY\":\"" + priority + "\",\"HOST\":\"h\",\"ISODATE\":\""
        + time.toString(Qt::ISODate).toUtf8() + "\",\"MSG\":{\"" + source
        + "\":{\"message_id\":\"m\",\"name_en\":\"n\"}}}\n";
}

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

QByteArray runTool(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return QByteArray("failed: ") + process.readAllStandardError();
    return process.readAllStandardOutput().trimmed();
}

struct Row {
    QString priority;
    QString source;
    int hour;
    int day;
    int week;
    bool operator==(const Row &other) const
    {
        return priority == other.priority && source == other.source && hour == other.hour && day == other.day
            && week == other.week;
    }
};

char *toString(const Row &row)
{
    return QTest::toString(QStringLiteral("(%1, %2, %3, %4, %5)")
                               .arg(row.priority, row.source)
                               .arg(row.hour)
                               .arg(row.day)
                               .arg(row.week));
}

Row rowAt(const QStandardItemModel *model, int row, const QModelIndex &parent = QModelIndex())
{
    auto text = [&](int column) { return model->index(row, column, parent).data(); };
    return {text(0).toString(), text(1).toString(), text(2).toInt(), text(3).toInt(), text(4).toInt()};
}

// Priority rows by name, each with its source rows in the order shown.
QMap<QString, QPair<Row, QList<Row>>> treeOf(const QStandardItemModel *model)
{
    QMap<QString, QPair<Row, QList<Row>>> tree;
    for (int r = 0; r < model->rowCount(); ++r) {
        const QModelIndex parent = model->index(r, 0);
        QList<Row> children;
        for (int c = 0; c < model->rowCount(parent); ++c)
            children << rowAt(model, c, parent);
        tree.insert(parent.data().toString(), {rowAt(model, r), children});
    }
    return tree;
}

QTreeView *treeView(SummaryDialog &dialog)
{
    return dialog.findChild<QTreeView *>(QStringLiteral("treeView"));
}

QProgressBar *progressBar(SummaryDialog &dialog)
{
    return dialog.findChild<QProgressBar *>(QStringLiteral("progressBar"));
}

void doubleClick(QTreeView *view, const QModelIndex &index)
{
    view->scrollTo(index);
    const QPoint centre = view->visualRect(index).center();
    // The view takes a double click only on the index the press before it hit.
    QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, centre);
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, centre);
}

// The index of the row whose cell in `column` shows `text`, among the children of `parent`.
QModelIndex find(const QAbstractItemModel *model, const QString &text, int column, const QModelIndex &parent = {})
{
    for (int r = 0; r < model->rowCount(parent); ++r) {
        if (model->index(r, column, parent).data().toString() == text)
            return model->index(r, column, parent);
    }
    return {};
}

// The Priority and Source texts of every row as the view shows them, top to bottom.
QStringList shownRows(QTreeView *view)
{
    QStringList rows;
    for (QModelIndex index = view->indexAt(QPoint(1, 1)); index.isValid(); index = view->indexBelow(index)) {
        rows << index.sibling(index.row(), SummaryDialog::PriorityColumn).data().toString() + QLatin1Char('/')
                    + index.sibling(index.row(), SummaryDialog::SourceColumn).data().toString();
    }
    return rows;
}

bool summarise(SummaryDialog &dialog)
{
    if (!dialog.requestSummary())
        return false;
    return QTest::qWaitFor([&] { return dialog.isReady(); }, 60000);
}
}

class TestSummaryDialog : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

private slots:
    void treeOfPrioritiesAndSources()
    {
        const QString path = m_dir.filePath("week.log");
        write(path, line("err", "velmo-auth", 1800) + line("error", "velmo-auth", 3 * 3600)
                        + line("error", "velmo-nosuch", 1800) + line("notice", "velmo-usb", 3 * 86400)
                        + line("notice", "velmo-usb", 8 * 86400) + line("notice", "velmo-usb", -3600)
                        // An unknown priority word is never counted.
                        + line("Warning", "velmo-auth", 60) + "not json\n");
        SummaryDialog dialog(path);
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Summary of events"));
        QVERIFY(dialog.isReady());
        QVERIFY(summarise(dialog));
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        QVERIFY(progressBar(dialog)->isHidden());

        const QStandardItemModel *model = dialog.model();
        QVERIFY(model);
        QCOMPARE(treeView(dialog)->model(), model);
        QStringList headers;
        for (int c = 0; c < model->columnCount(); ++c)
            headers << model->headerData(c, Qt::Horizontal).toString();
        QCOMPARE(headers, QStringList({"Priority", "Source", "Hour", "Day", "Week"}));

        const auto tree = treeOf(model);
        QCOMPARE(tree.keys(), QStringList({"error", "notice"}));
        QCOMPARE(tree["error"].first, (Row{"error", "-", 2, 3, 3}));
        // An unknown source shows as empty text, after the known ones.
        QCOMPARE(tree["error"].second, QList<Row>({{"", "Authentication service", 1, 2, 2}, {"", "", 1, 1, 1}}));
        QCOMPARE(tree["notice"].first, (Row{"notice", "-", 0, 0, 1}));
        QCOMPARE(tree["notice"].second, QList<Row>({{"", "Device monitor", 0, 0, 1}}));
        QVERIFY(treeView(dialog)->isExpanded(model->index(0, 0)));
        QVERIFY(treeView(dialog)->isExpanded(model->index(1, 0)));

        // Double clicks ask for the priority, and for the source key of a source row.
        QSignalSpy requests(&dialog, &SummaryDialog::filterRequest);
        QTreeView *view = treeView(dialog);
        const QModelIndex error = find(model, QStringLiteral("error"), 0);
        doubleClick(view, error.sibling(error.row(), SummaryDialog::DayColumn));
        doubleClick(view, find(model, QString(), SummaryDialog::SourceColumn, error));
        doubleClick(view, find(model, QStringLiteral("Device monitor"), SummaryDialog::SourceColumn,
                               find(model, QStringLiteral("notice"), 0)));
        QCOMPARE(requests.size(), 3);
        const QList<QPair<int, QString>> expected{
            {Event::Error, QString()}, {Event::Error, Dictionary::unrecognizedSource()}, {Event::Notice, "velmo-usb"}};
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(requests[i].at(0).value<Event::Priority>(), Event::Priority(expected[i].first));
            QCOMPARE(requests[i].at(1).toString(), expected[i].second);
        }

        // Each count replaces the whole tree.
        write(path, line("debug", "velmo-net", 10));
        QVERIFY(summarise(dialog));
        QCOMPARE(treeOf(dialog.model()).keys(), QStringList({"debug"}));
    }

    // Emergency first, debug last; sources by the name shown, unknown ones after them.
    void prioritiesBySeveritySourcesByName()
    {
        const QString path = m_dir.filePath("order.log");
        QByteArray lines;
        for (const QByteArray priority : {"debug", "notice", "emerg", "warning", "crit", "info", "alert", "err"})
            lines += line(priority, "velmo-auth", 60);
        // Keys in another order than their names: usb is "Device monitor", custom "Site scripts".
        for (const QByteArray source : {"velmo-usb", "velmo-nosuch", "velmo-custom", "velmo-audit", "velmo-net"})
            lines += line("err", source, 60);
        write(path, lines);
        SummaryDialog dialog(path);
        QVERIFY(summarise(dialog));
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));

        const QStringList rows = shownRows(treeView(dialog));
        QStringList priorities;
        for (const QString &row : rows) {
            if (!row.startsWith(QLatin1Char('/')))
                priorities << row;
        }
        QCOMPARE(priorities, QStringList({"emergency/-", "alert/-", "critical/-", "error/-", "warning/-", "notice/-",
                                          "info/-", "debug/-"}));
        const int error = rows.indexOf(QStringLiteral("error/-"));
        QCOMPARE(rows.mid(error, 7), QStringList({"error/-", "/Audit subsystem", "/Authentication service",
                                                  "/Device monitor", "/Network manager", "/Site scripts", "/"}));
    }

    void nothingInTheLastWeek()
    {
        const QString path = m_dir.filePath("old.log");
        write(path, line("error", "velmo-auth", 9 * 86400) + line("info", "velmo-nosuch", 30 * 86400));
        SummaryDialog dialog(path);
        QVERIFY(summarise(dialog));
        const QStandardItemModel *model = dialog.model();
        for (int r = 0; r < model->rowCount(); ++r) {
            const Row row = rowAt(model, r);
            QCOMPARE(row.hour + row.day + row.week, 0);
            for (int c = 0; c < model->rowCount(model->index(r, 0)); ++c) {
                const Row child = rowAt(model, c, model->index(r, 0));
                QCOMPARE(child.hour + child.day + child.week, 0);
            }
        }

        SummaryDialog missing(m_dir.filePath("no-such-file"));
        QVERIFY(summarise(missing));
        QCOMPARE(missing.model()->rowCount(), 0);
    }

    // The filter a double click asks for selects as many events as the command-line
    // tool finds with the same priority (and source).
    void filterRequestsMatchTheTool()
    {
        const QString path = m_dir.filePath("generated.log");
        const QByteArray generated = runTool(QStringLiteral(NIMB_GEN_BINARY),
                                             {"--out", path, "--size", "3M", "--seed", "11", "--days", "10"});
        QVERIFY2(!generated.startsWith("failed"), generated.constData());
        SummaryDialog dialog(path);
        QVERIFY(dialog.requestSummary());
        // Busy until the counts are in: a second request does nothing.
        QVERIFY(!dialog.isReady());
        QVERIFY(progressBar(dialog)->isVisible());
        QVERIFY(!dialog.requestSummary());
        QTRY_VERIFY_WITH_TIMEOUT(dialog.isReady(), 60000);
        QVERIFY(progressBar(dialog)->isHidden());
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));

        // Looked at by eye: the build tree keeps a picture of the dialog.
        const QString shots = QStringLiteral(QT_TESTCASE_BUILDDIR "/screenshots");
        QDir().mkpath(shots);
        dialog.resize(720, 480);
        QVERIFY(dialog.grab().save(shots + QStringLiteral("/summary-dialog.png")));

        QSignalSpy requests(&dialog, &SummaryDialog::filterRequest);
        const QStandardItemModel *model = dialog.model();
        QVERIFY(model->rowCount() >= 3);
        int sourceRows = 0;
        for (int r = 0; r < model->rowCount(); ++r) {
            const QModelIndex priority = model->index(r, 0);
            doubleClick(treeView(dialog), priority);
            for (int c = 0; c < model->rowCount(priority); ++c, ++sourceRows)
                doubleClick(treeView(dialog), model->index(c, SummaryDialog::SourceColumn, priority));
        }
        QCOMPARE(requests.size(), model->rowCount() + sourceRows);
        for (const QList<QVariant> &request : qAsConst(requests)) {
            const auto priority = request.at(0).value<Event::Priority>();
            const QString source = request.at(1).toString();
            FilteringLogParser parser(path);
            parser.setFilter(SummaryDialog::filterFor(priority, source));
            QStringList arguments{"count", path, "--priority", QString::number(priority)};
            if (!source.isEmpty())
                arguments << "--param" << QStringLiteral("source=") + source;
            const QByteArray expected = runTool(QStringLiteral(NIMB_EVENTS_BINARY), arguments);
            QCOMPARE(QByteArray::number(parser.count()), expected);
            // Events of unknown sources are summed under a key that no event carries.
            if (source != Dictionary::unrecognizedSource())
                QVERIFY2(expected.toInt() > 0, qPrintable(source));
        }

    }
};

NIMB_TEST_MAIN_WITH(TestSummaryDialog, QApplication, NIMB_DEMO_DIR "/sysroot")
#include "test_summarydialog.moc"
