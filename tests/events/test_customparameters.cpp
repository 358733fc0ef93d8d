// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "AuxParRegistry.h"
#include "Language.h"
#include "NimbTestMain.h"

class TestCustomParameters : public QObject
{
    Q_OBJECT

private slots:
    void declarationsFromTheDirectory()
    {
        const AuxParRegistry registry(QStringLiteral(NIMB_TEST_DATA_DIR "/model/emp"));
        // Not an array, an empty array, a file that does not parse, elements that are
        // not objects, empty or without "name": none of them declares anything.
        const QMap<QString, QString> expected =
            Language::isRussian()
                ? QMap<QString, QString>{{"badge number", "Номер пропуска"}, {"shift", "Смена"}, {"desk", "desk"}}
                : QMap<QString, QString>{{"badge number", "Badge number"}, {"shift", "shift"}, {"desk", "Desk"}};
        QMap<QString, QString> labels;
        for (const CustomParameter &parameter : registry.customParameters())
            labels.insert(parameter.name, parameter.label);
        QCOMPARE(labels, expected);
        QCOMPARE(registry.customParameters().size(), 3);
        for (auto it = expected.cbegin(); it != expected.cend(); ++it)
            QVERIFY(registry.isCustom(it.key()) && registry.customLabel(it.key()) == it.value());
        // The key is the name with its white space simplified.
        for (const QString &name : {QStringLiteral("  badge \t number  "), QStringLiteral("notarray"),
                                    QStringLiteral("truncated"), QStringLiteral("room"), QString()})
            QVERIFY2(!registry.isCustom(name), qPrintable(name));
        // Custom declarations do not touch the built-in kinds.
        QCOMPARE(registry.typeOf(QStringLiteral("shift")), -1);
        QVERIFY(!registry.isCustom(QStringLiteral("uid")));
    }

    void otherDirectoriesDeclareNothing()
    {
        const AuxParRegistry none(QStringLiteral("/nonexistent/nimb/emp"));
        QVERIFY(none.customParameters().isEmpty() && !none.isCustom(QStringLiteral("shift")));
        // The built-in kinds are there all the same.
        QVERIFY(none.prototype(0));
        // The event descriptions are JSON objects, not arrays.
        const AuxParRegistry descriptions(QStringLiteral(NIMB_TEST_DATA_DIR "/model/dictionary/event-settings/auth"));
        QVERIFY(descriptions.customParameters().isEmpty());
    }

    void instanceReadsTheSystemTree()
    {
        const AuxParRegistry &registry = AuxParRegistry::instance();
        QCOMPARE(registry.customParameters().size(), 2);
        QCOMPARE(registry.customLabel(QStringLiteral("site code")),
                 Language::isRussian() ? QStringLiteral("Код площадки") : QStringLiteral("Site code"));
    }
};

NIMB_TEST_MAIN(TestCustomParameters)
#include "test_customparameters.moc"
