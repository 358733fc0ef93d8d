#include "AuxParRegistry.h"
#include "Language.h"

#include <QtTest>

namespace
{
QString fixture(const QString &relative)
{
    return QStringLiteral(NIMB_TEST_DATA_DIR "/model/") + relative;
}

QMap<QString, QString> labelsOf(const AuxParRegistry &registry)
{
    QMap<QString, QString> labels;
    for (const CustomParameter &parameter : registry.customParameters())
        labels.insert(parameter.name, parameter.label);
    return labels;
}
}

class TestCustomParameters : public QObject
{
    Q_OBJECT

private slots:
    void declarationsFromTheDirectory()
    {
        const AuxParRegistry registry(fixture(QStringLiteral("emp")));

        // Not an array, an empty array, a file that does not parse, elements that are
        // not objects, empty or without "name": none of them declares anything.
        QMap<QString, QString> expected;
        if (Language::isRussian()) {
            expected.insert(QStringLiteral("badge number"), QStringLiteral("Номер пропуска"));
            expected.insert(QStringLiteral("shift"), QStringLiteral("Смена"));
            expected.insert(QStringLiteral("desk"), QStringLiteral("desk"));
        } else {
            expected.insert(QStringLiteral("badge number"), QStringLiteral("Badge number"));
            expected.insert(QStringLiteral("shift"), QStringLiteral("shift"));
            expected.insert(QStringLiteral("desk"), QStringLiteral("Desk"));
        }
        QCOMPARE(labelsOf(registry), expected);
        QCOMPARE(registry.customParameters().size(), 3);

        // The key is the name with its white space simplified.
        QVERIFY(registry.isCustom(QStringLiteral("badge number")));
        QVERIFY(!registry.isCustom(QStringLiteral("  badge \t number  ")));
        QVERIFY(!registry.isCustom(QStringLiteral("notarray")));
        QVERIFY(!registry.isCustom(QStringLiteral("truncated")));
        QVERIFY(!registry.isCustom(QStringLiteral("room")));
        QVERIFY(!registry.isCustom(QString()));
        for (auto it = expected.cbegin(); it != expected.cend(); ++it)
            QCOMPARE(registry.customLabel(it.key()), it.value());

        // Custom declarations do not touch the built-in kinds.
        QCOMPARE(registry.typeOf(QStringLiteral("shift")), -1);
        QCOMPARE(registry.typeOf(QStringLiteral("uid")), 49);
        QVERIFY(!registry.isCustom(QStringLiteral("uid")));
    }

    void noDirectoryNoCustomParameters()
    {
        const AuxParRegistry registry(QStringLiteral("/nonexistent/nimb/emp"));
        QVERIFY(registry.customParameters().isEmpty());
        QVERIFY(!registry.isCustom(QStringLiteral("shift")));
        // The built-in kinds are there all the same.
        QVERIFY(registry.prototype(0));
        QCOMPARE(registry.typeOf(QStringLiteral("vendor_id")), 54);
    }

    void aDirectoryOfOtherThingsDeclaresNothing()
    {
        // The event descriptions are JSON objects, not arrays.
        const AuxParRegistry registry(fixture(QStringLiteral("dictionary/event-settings/auth")));
        QVERIFY(registry.customParameters().isEmpty());
    }

    void instanceReadsTheSystemTree()
    {
        const AuxParRegistry &registry = AuxParRegistry::instance();
        QCOMPARE(&registry, &AuxParRegistry::instance());
        QCOMPARE(registry.customParameters().size(), 2);
        QCOMPARE(registry.customLabel(QStringLiteral("site code")),
                 Language::isRussian() ? QStringLiteral("Код площадки") : QStringLiteral("Site code"));
    }
};

int main(int argc, char **argv)
{
    qputenv("NIMB_EVENT_VIEWER_SYSROOT", QFile::encodeName(fixture(QStringLiteral("sysroot"))));
    QCoreApplication app(argc, argv);
    TestCustomParameters test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_customparameters.moc"
