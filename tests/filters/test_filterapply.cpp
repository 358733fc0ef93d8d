// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "FilterWindowDriver.h"

#include "ConfigStore.h"
#include "FilteringLogParser.h"
#include "JournalGenerator.h"
#include "LogParser.h"
#include "NimbTestMain.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <functional>

namespace
{
const QString kSysroot = QStringLiteral(NIMB_DEMO_DIR "/sysroot");
// The newest event of the generated journal, a whole minute in local time.
const QDateTime kEnd(QDate(2026, 3, 2), QTime(9, 30));

using Drive = std::function<void(FilterWindowDriver &)>;
}
Q_DECLARE_METATYPE(Drive)

// A filter composed in the window and applied counts the same events as the command-line
// tool given the same criteria.
class TestFilterApply : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_journal = m_dir.filePath(QStringLiteral("events"));
        QFile file(m_journal);
        QVERIFY(file.open(QIODevice::WriteOnly));
        nimbgen::GeneratorOptions options;
        options.lines = 20000;
        options.seed = 11;
        options.days = 10;
        options.end = kEnd.toSecsSinceEpoch();
        QVERIFY(nimbgen::JournalGenerator(nimbgen::Catalogue::builtIn(), options).write(&file));
        file.close();
        m_total = LogParser(m_journal).count();
        QVERIFY(m_total > 19000);
    }

    void sameCountAsTheTool_data()
    {
        QTest::addColumn<Drive>("drive");
        QTest::addColumn<QStringList>("options");

        const QDateTime from = kEnd.addDays(-3);
        const QDateTime to = kEnd.addDays(-1).addSecs(-17 * 60);
        QTest::newRow("time and priorities")
            << Drive([=](FilterWindowDriver &d) {
                   d.setChecked("checkBoxFrom", true);
                   d.setChecked("checkBoxTo", true);
                   d.setTimes(from, to);
                   d.setChecked("checkBoxPriority", true);
                   d.checkPriority("warning");
                   d.checkPriority("error");
               })
            << QStringList{"--from", from.toString(Qt::ISODate), "--to", to.addSecs(59).toString(Qt::ISODate),
                           "--priority", "warning,error"};

        QTest::newRow("type, result and name")
            << Drive([](FilterWindowDriver &d) {
                   d.setChecked("checkBoxTypeContains", true);
                   d.checkType("Authentication");
                   d.setChecked("check_result", true);
                   d.choose(d.get<QComboBox>("result"), "failed");
                   d.setChecked("checkBoxNameContains", true);
                   d.type("nameContains", "LOGIN");
               })
            << QStringList{"--type", "Authentication", "--param", "result=false", "--name-contains", "LOGIN"};

        QTest::newRow("message ID and source")
            << Drive([](FilterWindowDriver &d) {
                   d.setChecked("checkBoxId", true);
                   d.type("id", "auth-login-failure");
                   d.setChecked("check_source", true);
                   d.choose(d.get<QComboBox>("source"), "Authentication service");
                   d.setChecked("check_uid", true);
                   d.typeNumber(d.get<QSpinBox>("uid"), 0);
               })
            << QStringList{"--id", "auth-login-failure", "--param", "source=velmo-auth", "--param", "uid=0"};

        QTest::newRow("keyword, custom events excluded by name")
            << Drive([](FilterWindowDriver &d) {
                   d.setChecked("checkBoxSearch", true);
                   d.type("searchLine", "root");
                   d.setChecked(d.get<QCheckBox>("wholewordCheckBox"), true);
                   d.setChecked("checkBoxNameExcludes", true);
                   d.type("nameExcludes", "command");
               })
            << QStringList{"--search", "root", "--whole-word", "--name-excludes", "command"};
    }

    void sameCountAsTheTool()
    {
        QFETCH(Drive, drive);
        QFETCH(QStringList, options);
        ConfigStore store;
        FilterWindow window(store);
        window.resize(1024, 768);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        FilterWindowDriver driver(window);
        drive(driver);
        QCOMPARE(driver.warning(), QString());
        const FilterPack pack = driver.apply();
        QVERIFY(!window.isVisible());

        FilteringLogParser parser(m_journal);
        parser.setFilter(pack);
        const int filtered = parser.count();
        // Only a filter that keeps some events and drops others tells anything.
        QVERIFY2(filtered > 0 && filtered < m_total, qPrintable(QString::number(filtered)));
        QCOMPARE(filtered, toolCount(options));
        QTRY_VERIFY(clearButtonsSettled(window));
    }

private:
    int toolCount(const QStringList &options) const
    {
        QProcess tool;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("NIMB_EVENT_VIEWER_SYSROOT"), kSysroot);
        tool.setProcessEnvironment(environment);
        tool.start(QStringLiteral(NIMB_EVENTS_BINARY), QStringList{"count", m_journal} + options);
        if (!tool.waitForFinished(120000) || tool.exitCode() != 0) {
            qWarning("nimb-events failed: %s", tool.readAllStandardError().constData());
            return -1;
        }
        bool ok = false;
        const int count = tool.readAllStandardOutput().trimmed().toInt(&ok);
        return ok ? count : -1;
    }

    QTemporaryDir m_dir;
    QString m_journal;
    int m_total = 0;
};

NIMB_TEST_MAIN_WITH(TestFilterApply, QApplication, NIMB_DEMO_DIR "/sysroot")

#include "test_filterapply.moc"
