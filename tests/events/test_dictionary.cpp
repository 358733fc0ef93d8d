#include "Dictionary.h"
#include "Language.h"

#include <QtTest>

namespace
{
QString fixture(const QString &relative)
{
    return QStringLiteral(NIMB_TEST_DATA_DIR "/model/") + relative;
}

QString sysroot()
{
    return fixture(QStringLiteral("sysroot"));
}
}

class TestDictionary : public QObject
{
    Q_OBJECT

private:
    static Dictionary fromFixture()
    {
        return Dictionary(fixture(QStringLiteral("dictionary/event-settings")),
                          fixture(QStringLiteral("dictionary/sources")));
    }

private slots:
    void eventGroupsComeFromTheFileNamedAfterTheirDirectory()
    {
        const Dictionary dictionary = fromFixture();
        const QMap<QString, QString> &types = dictionary.eventTypes();

        // "network" holds only a file of another name, "stray" is a file and no group.
        QVERIFY(!types.contains(QStringLiteral("network")));
        QVERIFY(!types.contains(QStringLiteral("stray")));
        QVERIFY(!types.contains(QStringLiteral("description")));

        QVERIFY(types.contains(QStringLiteral("auth")));
        QVERIFY(types.contains(QStringLiteral("zeta")));
        // auth.bak lies beside auth and must not be the one read.
        if (Language::isRussian()) {
            QCOMPARE(dictionary.eventTypeText(QStringLiteral("auth")), QStringLiteral("Авторизация"));
            QCOMPARE(dictionary.eventTypeText(QStringLiteral("zeta")), QStringLiteral("Зета"));
            // A description without a Russian name gives the group no display name here.
            QCOMPARE(dictionary.eventTypeText(QStringLiteral("audit")), QString());
        } else {
            QCOMPARE(dictionary.eventTypeText(QStringLiteral("auth")), QStringLiteral("Authorisation"));
            QCOMPARE(dictionary.eventTypeText(QStringLiteral("zeta")), QStringLiteral("Zeta"));
            QCOMPARE(dictionary.eventTypeText(QStringLiteral("audit")), QStringLiteral("Audit"));
        }
        // A description that does not parse yields no display name.
        QCOMPARE(dictionary.eventTypeText(QStringLiteral("broken")), QString());
        for (const QString &name : types)
            QVERIFY2(!name.contains(QLatin1String("Stale")) && !name.contains(QLatin1String("Broken")),
                     qPrintable(name));

        // Fixed entry for the filter window's own "Custom events" item.
        QVERIFY(types.contains(QStringLiteral("custom-events")));
        QCOMPARE(types.value(QStringLiteral("custom-events"), QStringLiteral("missing")), QString());

        // Callers fill lists straight from the table, so it comes in name order.
        const QStringList keys = types.keys();
        QStringList sorted = keys;
        std::sort(sorted.begin(), sorted.end());
        QCOMPARE(keys, sorted);
        QVERIFY(keys.indexOf(QStringLiteral("auth")) < keys.indexOf(QStringLiteral("zeta")));
    }

    void sourcesInTheSystemLanguageOnly()
    {
        const Dictionary dictionary = fromFixture();
        const QMap<QString, QString> &sources = dictionary.sources();
        QMap<QString, QString> expected;
        if (Language::isRussian()) {
            expected.insert(QStringLiteral("kernel"), QStringLiteral("Ядро"));
            expected.insert(QStringLiteral("onlyru"), QStringLiteral("Только русский"));
            expected.insert(QStringLiteral("sshd"), QStringLiteral("Удалённая оболочка"));
        } else {
            expected.insert(QStringLiteral("kernel"), QStringLiteral("Kernel"));
            expected.insert(QStringLiteral("onlyen"), QStringLiteral("English only"));
            expected.insert(QStringLiteral("sshd"), QStringLiteral("Remote shell"));
        }
        // Not parsing, not an array, empty, without "name", not an object: all passed over.
        QCOMPARE(sources, expected);
        QVERIFY(dictionary.hasSource(QStringLiteral("kernel")));
        QVERIFY(!dictionary.hasSource(QStringLiteral("lost")));
        QVERIFY(!dictionary.hasSource(QStringLiteral("single")));
        QCOMPARE(dictionary.sourceText(QStringLiteral("nosuch")), QString());
        // No entry of its own: the fallback word.
        QCOMPARE(dictionary.unrecognizedSourceText(), QStringLiteral("unrecognized"));
    }

    void missingDirectoriesLeaveTablesEmpty()
    {
        const Dictionary dictionary(QStringLiteral("/nonexistent/nimb/event-settings"),
                                    QStringLiteral("/nonexistent/nimb/sources/"));
        QCOMPARE(dictionary.eventTypes().size(), 1);
        QVERIFY(dictionary.eventTypes().contains(QStringLiteral("custom-events")));
        QVERIFY(dictionary.sources().isEmpty());
        QCOMPARE(dictionary.unrecognizedSourceText(), QStringLiteral("unrecognized"));
        // The built-in tables do not depend on the installation.
        QCOMPARE(dictionary.priorities().size(), 8);
        QCOMPARE(dictionary.months().size(), 12);
        QCOMPARE(dictionary.signalName(9), QStringLiteral("SIGKILL"));
    }

    void signalTableLeavesTheThreadingLibrarysSignalsOut()
    {
        const Dictionary dictionary = fromFixture();
        const QMap<int, QString> &names = dictionary.signalNames();

        QCOMPARE(dictionary.signalName(1), QStringLiteral("SIGHUP"));
        QCOMPARE(dictionary.signalName(9), QStringLiteral("SIGKILL"));
        QCOMPARE(dictionary.signalName(15), QStringLiteral("SIGTERM"));
        QCOMPARE(dictionary.signalName(16), QStringLiteral("SIGSTKFLT"));
        QCOMPARE(dictionary.signalName(30), QStringLiteral("SIGPWR"));
        QCOMPARE(dictionary.signalName(31), QStringLiteral("SIGSYS"));
        QVERIFY(!names.contains(0));
        QVERIFY(!names.contains(32));
        QVERIFY(!names.contains(33));
        QCOMPARE(dictionary.signalName(32), QString());
        QCOMPARE(dictionary.signalName(34), QStringLiteral("SIGRTMIN"));
        QCOMPARE(dictionary.signalName(35), QStringLiteral("SIGRTMIN+1"));
        QCOMPARE(dictionary.signalName(42), QStringLiteral("SIGRTMIN+8"));
        QCOMPARE(dictionary.signalName(49), QStringLiteral("SIGRTMIN+15"));
        QCOMPARE(dictionary.signalName(50), QStringLiteral("SIGRTMAX-14"));
        QCOMPARE(dictionary.signalName(57), QStringLiteral("SIGRTMAX-7"));
        QCOMPARE(dictionary.signalName(63), QStringLiteral("SIGRTMAX-1"));
        QCOMPARE(dictionary.signalName(64), QStringLiteral("SIGRTMAX"));
        QVERIFY(!names.contains(65));
        // 1..31, then 34..64 without a hole.
        QCOMPARE(names.size(), 31 + 31);
        for (int number = 34; number <= 64; ++number)
            QVERIFY2(names.contains(number), qPrintable(QString::number(number)));
        QCOMPARE(names.firstKey(), 1);
        QCOMPARE(names.lastKey(), 64);
    }

    void priorityWordsAndMonths()
    {
        const Dictionary dictionary = fromFixture();
        const QMap<Event::Priority, QString> &priorities = dictionary.priorities();
        const QStringList words = {QStringLiteral("emergency"), QStringLiteral("alert"),
                                   QStringLiteral("critical"),  QStringLiteral("error"),
                                   QStringLiteral("warning"),   QStringLiteral("notice"),
                                   QStringLiteral("info"),      QStringLiteral("debug")};
        QCOMPARE(priorities.keys().size(), 8);
        for (int i = 0; i < words.size(); ++i) {
            const auto priority = static_cast<Event::Priority>(i + 1);
            QVERIFY(dictionary.hasPriority(priority));
            QCOMPARE(dictionary.priorityText(priority), words.at(i));
        }
        // Unknown has no display word, which is what drops the "Priority" row.
        QVERIFY(!dictionary.hasPriority(Event::Unknown));
        QCOMPARE(dictionary.priorityText(Event::Unknown), QString());
        QCOMPARE(dictionary.priorityText(static_cast<Event::Priority>(9)), QString());

        const QStringList months = {QStringLiteral("Jan"), QStringLiteral("Feb"), QStringLiteral("Mar"),
                                    QStringLiteral("Apr"), QStringLiteral("May"), QStringLiteral("Jun"),
                                    QStringLiteral("Jul"), QStringLiteral("Aug"), QStringLiteral("Sep"),
                                    QStringLiteral("Oct"), QStringLiteral("Nov"), QStringLiteral("Dec")};
        QCOMPARE(dictionary.months().size(), 12);
        for (int i = 0; i < months.size(); ++i)
            QCOMPARE(dictionary.month(months.at(i)), i + 1);
        // Exact case, abbreviations only.
        QCOMPARE(dictionary.month(QStringLiteral("jan")), 0);
        QCOMPARE(dictionary.month(QStringLiteral("JAN")), 0);
        QCOMPARE(dictionary.month(QStringLiteral("January")), 0);
        QCOMPARE(dictionary.month(QString()), 0);
    }

    void instanceReadsTheSystemTree()
    {
        const Dictionary &dictionary = Dictionary::instance();
        QCOMPARE(&dictionary, &Dictionary::instance());
        QVERIFY(dictionary.eventTypes().contains(QStringLiteral("auth")));
        QVERIFY(dictionary.eventTypes().contains(QStringLiteral("custom-events")));
        QCOMPARE(dictionary.sources().size(), 3);
        QCOMPARE(dictionary.unrecognizedSourceText(),
                 Language::isRussian() ? QStringLiteral("Неизвестный источник") : QStringLiteral("Unknown source"));
    }
};

int main(int argc, char **argv)
{
    // Before anything asks for the process-wide dictionary.
    qputenv("NIMB_EVENT_VIEWER_SYSROOT", QFile::encodeName(sysroot()));
    QCoreApplication app(argc, argv);
    TestDictionary test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_dictionary.moc"
