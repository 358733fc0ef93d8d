// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "Dictionary.h"
#include "Language.h"
#include "NimbTestMain.h"

namespace
{
Dictionary fromFixture()
{
    return Dictionary(QStringLiteral(NIMB_TEST_DATA_DIR "/model/dictionary/event-settings"),
                      QStringLiteral(NIMB_TEST_DATA_DIR "/model/dictionary/sources"));
}

QString inLanguage(const char *english, const char *russian)
{
    return QString::fromUtf8(Language::isRussian() ? russian : english);
}
}

class TestDictionary : public QObject
{
    Q_OBJECT

private slots:
    void eventGroupsComeFromTheFileNamedAfterTheirDirectory()
    {
        const Dictionary dictionary = fromFixture();
        const QMap<QString, QString> &types = dictionary.eventTypes();
        // "network" holds only a file of another name, "stray" is a file and no group.
        for (const char *absent : {"network", "stray", "description"})
            QVERIFY2(!types.contains(QLatin1String(absent)), absent);
        QVERIFY(types.contains(QStringLiteral("auth")) && types.contains(QStringLiteral("zeta")));
        // auth.bak lies beside auth and must not be the one read. A description without a
        // Russian name gives the group no display name there; one that does not parse, none at all.
        QCOMPARE(dictionary.eventTypeText(QStringLiteral("auth")), inLanguage("Authorisation", "Авторизация"));
        QCOMPARE(dictionary.eventTypeText(QStringLiteral("zeta")), inLanguage("Zeta", "Зета"));
        QCOMPARE(dictionary.eventTypeText(QStringLiteral("audit")), inLanguage("Audit", ""));
        QCOMPARE(dictionary.eventTypeText(QStringLiteral("broken")), QString());
        for (const QString &name : types)
            QVERIFY2(!name.contains(QLatin1String("Stale")) && !name.contains(QLatin1String("Broken")), qPrintable(name));
        // Fixed entry for the filter window's own "Custom events" item.
        QCOMPARE(types.value(QStringLiteral("custom-events"), QStringLiteral("missing")), QString());
        // Callers fill lists straight from the table, so it comes in name order.
        const QStringList keys = types.keys();
        QVERIFY(std::is_sorted(keys.begin(), keys.end()));
    }

    void sourcesInTheSystemLanguageOnly()
    {
        const Dictionary dictionary = fromFixture();
        // Not parsing, not an array, empty, without "name", not an object: all passed over.
        const QMap<QString, QString> expected =
            Language::isRussian()
                ? QMap<QString, QString>{{"kernel", "Ядро"}, {"onlyru", "Только русский"}, {"sshd", "Удалённая оболочка"}}
                : QMap<QString, QString>{{"kernel", "Kernel"}, {"onlyen", "English only"}, {"sshd", "Remote shell"}};
        QCOMPARE(dictionary.sources(), expected);
        QVERIFY(dictionary.hasSource(QStringLiteral("kernel")));
        QVERIFY(!dictionary.hasSource(QStringLiteral("lost")) && !dictionary.hasSource(QStringLiteral("single")));
        QCOMPARE(dictionary.sourceText(QStringLiteral("nosuch")), QString());
        // No entry of its own: the fallback word.
        QCOMPARE(dictionary.unrecognizedSourceText(), QStringLiteral("unrecognized"));
    }

    void missingDirectoriesLeaveTablesEmpty()
    {
        const Dictionary dictionary(QStringLiteral("/nonexistent/nimb/event-settings"),
                                    QStringLiteral("/nonexistent/nimb/sources/"));
        QCOMPARE(dictionary.eventTypes().keys(), QStringList({"custom-events"}));
        QVERIFY(dictionary.sources().isEmpty());
        QCOMPARE(dictionary.unrecognizedSourceText(), QStringLiteral("unrecognized"));
        // The built-in tables do not depend on the installation.
        QCOMPARE(dictionary.signalName(9), QStringLiteral("SIGKILL"));
    }

    void signalTableLeavesTheThreadingLibrarysSignalsOut()
    {
        const Dictionary dictionary = fromFixture();
        const QMap<int, QString> &names = dictionary.signalNames();
        for (const auto &[number, name] :
             {std::make_pair(1, "SIGHUP"), std::make_pair(31, "SIGSYS"), std::make_pair(32, ""),
              std::make_pair(34, "SIGRTMIN"), std::make_pair(49, "SIGRTMIN+15"), std::make_pair(50, "SIGRTMAX-14"),
              std::make_pair(64, "SIGRTMAX")})
            QCOMPARE(dictionary.signalName(number), QString::fromLatin1(name));
        // 1..31, then 34..64 without a hole.
        QCOMPARE(names.size(), 31 + 31);
        QVERIFY(names.firstKey() == 1 && names.lastKey() == 64);
        for (int number : {0, 32, 33, 65})
            QVERIFY(!names.contains(number));
    }
};

NIMB_TEST_MAIN(TestDictionary)
#include "test_dictionary.moc"
