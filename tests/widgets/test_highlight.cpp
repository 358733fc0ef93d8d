// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later
#include "EventsModel.h"
#include "EventsView.h"
#include "FilterPack.h"
#include "HighlightProbe.h"
#include "KeywordMatcher.h"
#include "LogWidget.h"
#include "NimbTestMain.h"
#include "TsanDefaults.h"
#include "ViewsFixture.h"

#include <QApplication>
#include <QTemporaryDir>

namespace
{
FilterPack keyword(const QString &search, bool caseSensitive = false, bool wholeWord = false)
{
    FilterPack pack;
    pack.checkSearch = true;
    pack.search = search;
    pack.caseSensitive = caseSensitive;
    pack.wholeWord = wholeWord;
    return pack;
}

// "start+length" per range, comma-separated.
QString written(const QVector<KeywordMatcher::Range> &ranges)
{
    QStringList parts;
    for (const KeywordMatcher::Range &range : ranges)
        parts.append(QStringLiteral("%1+%2").arg(range.start).arg(range.length));
    return parts.join(QLatin1Char(','));
}

enum Column { Number, Time, MessageId, Type, Priority, Name, Columns };
}

class TestHighlight : public QObject
{
    Q_OBJECT

private slots:
    void rangesAreWhereTheFilterFindsTheKeyword_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("search");
        QTest::addColumn<bool>("caseSensitive");
        QTest::addColumn<bool>("wholeWord");
        QTest::addColumn<QString>("ranges");

        const QString roots = QStringLiteral("Root logged as ROOT, root");
        QTest::newRow("any case") << roots << "root" << false << false << "0+4,15+4,21+4";
        QTest::newRow("exact case") << roots << "ROOT" << true << false << "15+4";
        QTest::newRow("whole words") << "rootfs chroot (root) root" << "root" << false << true << "15+4,21+4";
        QTest::newRow("no whole word") << "rootfs chroot" << "root" << false << true << "";
        QTest::newRow("inside words") << "rootfs chroot" << "ROOT" << false << false << "0+4,9+4";
        const QString users = QStringLiteral("Пользователь вошёл; пользователь вышел");
        QTest::newRow("cyrillic any case") << users << "ПОЛЬЗОВАТЕЛЬ" << false << false << "0+12,20+12";
        QTest::newRow("cyrillic exact case") << users << "пользователь" << true << true << "20+12";
        QTest::newRow("yo separates") << "ёкотё котик" << "КОТ" << false << true << "1+3";
        QTest::newRow("literal") << "axb a.b a*b" << "a.b" << false << false << "4+3";
        QTest::newRow("repeated") << "aaaaa" << "aa" << false << false << "0+2,2+2";
        QTest::newRow("absent") << "user logged in" << "root" << false << false << "";
    }

    void rangesAreWhereTheFilterFindsTheKeyword()
    {
        QFETCH(QString, text);
        QFETCH(QString, search);
        QFETCH(bool, caseSensitive);
        QFETCH(bool, wholeWord);
        QFETCH(QString, ranges);
        const FilterPack pack = keyword(search, caseSensitive, wholeWord);
        const KeywordMatcher matcher(pack);
        QCOMPARE(written(matcher.ranges(text)), ranges);
        QCOMPARE(!ranges.isEmpty(), pack.keywordFoundIn(text));

        // The same keyword without the keyword test marks nothing.
        FilterPack off = pack;
        off.checkSearch = false;
        QVERIFY(KeywordMatcher(off).ranges(text).isEmpty());
    }

    void tableMarksTheCellsHoldingTheKeyword()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("events"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        const auto named = [](const QString &id, const QString &name) {
            return views::line(id, QStringLiteral("info"), QJsonObject{{QStringLiteral("name_en"), name}}) + '\n';
        };
        file.write(named(QStringLiteral("alpha-1"), QStringLiteral("Plain one")));
        file.write(named(QStringLiteral("b-2"), QStringLiteral("Name with ALPHA inside and alpha again")));
        file.write(named(QStringLiteral("c-3"), QStringLiteral("alphabet soup")));
        file.write(named(QStringLiteral("d-4"), QStringLiteral("Nothing here")));
        file.write(named(QStringLiteral("e-5"), QStringLiteral("Вход Alpha/ok")));
        file.close();

        const FilterPack filter = keyword(QStringLiteral("alpha"), false, true);
        LogWidget tab(path, filter, {});
        tab.resize(1100, 420);
        tab.show();
        QVERIFY(QTest::qWaitForWindowExposed(&tab));
        tab.refresh();
        QTRY_COMPARE(tab.model()->rowCount(), 3);
        EventsView *view = tab.view();
        view->setHighlight(filter);
        // The clicked event's parameters below are marked by the tab's own filter.
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(tab.model()->index(1, Name)).center());
        auto *parameters = tab.findChild<QTableWidget *>(QStringLiteral("tableWidget"));
        QTRY_VERIFY(parameters->rowCount() > 0);
        QVERIFY(QDir().mkpath(QStringLiteral(NIMB_SCREENSHOT_DIR)));
        QVERIFY(tab.grab().save(QStringLiteral(NIMB_SCREENSHOT_DIR "/highlight.png")));
        highlight::usePlainPalette(parameters);
        QCOMPARE(highlight::markedRows(parameters, 1),
                 QVector<int>{views::rowOf(views::tableRows(parameters), QStringLiteral("Event name"))});

        highlight::usePlainPalette(view);
        const auto marks = [view] {
            QVector<QVector<int>> columns;
            for (int column = 0; column < Columns; ++column)
                columns.append(highlight::markedRows(view, column));
            return columns;
        };
        const QVector<int> none;
        QCOMPARE(marks(), (QVector<QVector<int>>{none, none, {0}, none, none, {1, 2}}));

        view->setHighlight(keyword(QStringLiteral("ALPHA"), true));
        QCOMPARE(marks(), (QVector<QVector<int>>{none, none, none, none, none, {1}}));

        FilterPack withoutKeyword;
        withoutKeyword.checkNameContains = true;
        withoutKeyword.nameContains = QStringLiteral("alpha");
        withoutKeyword.search = QStringLiteral("alpha");
        view->setHighlight(withoutKeyword);
        QCOMPARE(marks(), QVector<QVector<int>>(Columns));

        // A cell too narrow for its match shows no mark for it.
        view->setHighlight(filter);
        QCOMPARE(highlight::markedRows(view, MessageId), QVector<int>{0});
        view->setColumnWidth(MessageId, view->fontMetrics().horizontalAdvance(QStringLiteral("alp")));
        QCOMPARE(highlight::markedRows(view, MessageId), none);
        QCOMPARE(highlight::markedRows(view, Name), (QVector<int>{1, 2}));
    }
};

NIMB_TEST_MAIN_WITH(TestHighlight, QApplication, NIMB_TEST_DATA_DIR "/model/sysroot")
#include "test_highlight.moc"
