#include "AuxParKinds.h"
#include "AuxParRegistry.h"
#include "Dictionary.h"
#include "LabelText.h"
#include "Language.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QSpinBox>
#include <QtTest>

#include <memory>
#include <typeinfo>

namespace
{
const AuxParRegistry &registry()
{
    return AuxParRegistry::instance();
}

// A fresh parameter of the kind with this journal key.
std::unique_ptr<AuxPar> make(const char *key)
{
    const int type = registry().typeOf(QString::fromLatin1(key));
    if (type < 0)
        qFatal("no parameter kind %s", key);
    return registry().create(type);
}

std::unique_ptr<AuxPar> make(const char *key, const QVariant &value)
{
    auto parameter = make(key);
    parameter->setValue(value);
    return parameter;
}

std::unique_ptr<QWidget> editorOf(const char *key)
{
    return std::unique_ptr<QWidget>(make(key)->createEditor());
}
}

class TestAuxPar : public QObject
{
    Q_OBJECT

private slots:
    void freshParametersCarryNoValue()
    {
        for (int type = 0; type < AuxParRegistry::count(); ++type) {
            const std::unique_ptr<AuxPar> parameter = registry().create(type);
            QVERIFY(parameter);
            QVERIFY2(!parameter->isValid(), parameter->key().toLatin1());
            QVERIFY2(parameter->toString().isEmpty(), parameter->key().toLatin1());
        }
    }

    void integersAndTheirMissingValue()
    {
        QCOMPARE(make("pid", 1234)->toString(), QStringLiteral("1234"));
        QVERIFY(make("pid", 0)->isValid());
        QCOMPARE(make("pid", 0)->toString(), QStringLiteral("0"));
        // The journal's numbers arrive as doubles, sometimes as text.
        QCOMPARE(make("uid", 1000.0)->toString(), QStringLiteral("1000"));
        QCOMPARE(make("uid", QStringLiteral("42"))->toString(), QStringLiteral("42"));
        QVERIFY(!make("uid", -1)->isValid());
        QVERIFY(!make("uid", -1.0)->isValid());
        QCOMPARE(make("uid", -1)->toString(), QString());
        QVERIFY(!make("uid", QStringLiteral("root"))->isValid());
        QCOMPARE(make("uid", QStringLiteral("root"))->toString(), QString());
        QVERIFY(!make("gid", QVariant())->isValid());
        QVERIFY(make("tally", -2)->isValid());
    }

    void longIntegersAreTestedOnTheirLow32Bits()
    {
        QVERIFY(!make("unixtime", Q_INT64_C(4294967295))->isValid());
        QCOMPARE(make("unixtime", Q_INT64_C(4294967295))->toString(), QString());
        QVERIFY(!make("unixtime", 4294967295.0)->isValid());
        QVERIFY(!make("end_time", Q_INT64_C(8589934591))->isValid());
        QVERIFY(!make("start_time", -1)->isValid());
        QVERIFY(!make("start_time", QStringLiteral("yesterday"))->isValid());

        QCOMPARE(make("unixtime", Q_INT64_C(4294967296))->toString(), QStringLiteral("4294967296"));
        QCOMPARE(make("unixtime", Q_INT64_C(4294967294))->toString(), QStringLiteral("4294967294"));
        QCOMPARE(make("unixtime", 1700000000.0)->toString(), QStringLiteral("1700000000"));
        QCOMPARE(make("end_time", QStringLiteral("1700000000"))->toString(), QStringLiteral("1700000000"));
        QCOMPARE(make("start_time", 0)->toString(), QStringLiteral("0"));
    }

    void securityLabelsNeedFiveNumbers_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<bool>("valid");
        QTest::newRow("zeros") << QStringLiteral("0:0:0:0:0") << true;
        QTest::newRow("field beyond int") << QStringLiteral("3:63:4294967295:0:1") << false;
        QTest::newRow("large fields") << QStringLiteral("3:63:2147483647:0:1") << true;
        QTest::newRow("negative") << QStringLiteral("-1:0:0:0:0") << true;
        QTest::newRow("four parts") << QStringLiteral("0:0:0:0") << false;
        QTest::newRow("six parts") << QStringLiteral("0:0:0:0:0:0") << false;
        QTest::newRow("not a number") << QStringLiteral("0:0:x:0:0") << false;
        QTest::newRow("last not a number") << QStringLiteral("0:0:0:0:z") << false;
        QTest::newRow("empty part") << QStringLiteral("1::0:0:0") << false;
        QTest::newRow("trailing colon") << QStringLiteral("0:0:0:0:") << false;
        QTest::newRow("hex") << QStringLiteral("0x1:0:0:0:0") << false;
        QTest::newRow("empty") << QString() << false;
        QTest::newRow("colons only") << QStringLiteral("::::") << false;
    }

    void securityLabelsNeedFiveNumbers()
    {
        QFETCH(QString, value);
        QFETCH(bool, valid);
        for (const char *key : {"obj", "obj_new", "subj"}) {
            const auto parameter = make(key, value);
            QCOMPARE(parameter->isValid(), valid);
            QCOMPARE(parameter->toString().isEmpty(), !valid);
        }
    }

    void securityLabelsRenderThreeFields()
    {
        const QString pattern = QStringLiteral("MAC level: %1, MIC level: %2, MAC categories: %3");
        // The level goes to the library as its low 8 bits; the last two fields are never shown.
        QCOMPARE(make("obj", QStringLiteral("257:2:5:9:9"))->toString(),
                 pattern.arg(LabelText::level(1), LabelText::integrityLevel(2), LabelText::categories(5)));
        QCOMPARE(make("subj", QStringLiteral("0:0:0:0:0"))->toString(),
                 pattern.arg(LabelText::level(0), LabelText::integrityLevel(0), LabelText::categories(0)));
#ifndef NIMB_HAVE_QLB
        // Our stand-ins print numbers and the members of the category set.
        QCOMPARE(make("obj_new", QStringLiteral("1:2:5:0:0"))->toString(),
                 QStringLiteral("MAC level: 1, MIC level: 2, MAC categories: 0,2"));
        QCOMPARE(make("subj", QStringLiteral("2:0:0:77:-5"))->toString(),
                 QStringLiteral("MAC level: 2, MIC level: 0, MAC categories: "));
#endif
    }

    void booleansRenderTheirLeafsWords_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("yes");
        QTest::addColumn<QString>("no");
        QTest::newRow("onsudo") << QStringLiteral("onsudo") << QStringLiteral("yes") << QStringLiteral("no");
        QTest::newRow("result") << QStringLiteral("result") << QStringLiteral("success") << QStringLiteral("failed");
        QTest::newRow("state") << QStringLiteral("state") << QStringLiteral("enabled") << QStringLiteral("disabled");
        QTest::newRow("success") << QStringLiteral("success") << QStringLiteral("success") << QStringLiteral("failed");
    }

    void booleansRenderTheirLeafsWords()
    {
        QFETCH(QString, key);
        QFETCH(QString, yes);
        QFETCH(QString, no);
        const QByteArray latinKey = key.toLatin1();
        QCOMPARE(make(latinKey.constData(), true)->toString(), yes);
        QCOMPARE(make(latinKey.constData(), false)->toString(), no);
        QVERIFY(make(latinKey.constData(), false)->isValid());
        QVERIFY(!make(latinKey.constData(), -1)->isValid());
        QCOMPARE(make(latinKey.constData(), -1)->toString(), QString());
        QVERIFY(!make(latinKey.constData(), QVariant())->isValid());
        QCOMPARE(make(latinKey.constData(), QVariant())->toString(), QString());

        // The filter window's values: the true word with true first, then false.
        const std::unique_ptr<QWidget> editor = editorOf(latinKey.constData());
        auto *combo = qobject_cast<QComboBox *>(editor.get());
        QVERIFY(combo);
        QCOMPARE(combo->count(), 2);
        QCOMPARE(combo->itemText(0), yes);
        QCOMPARE(combo->itemData(0), QVariant(true));
        QCOMPARE(combo->itemData(0).type(), QVariant::Bool);
        QCOMPARE(combo->itemText(1), no);
        QCOMPARE(combo->itemData(1), QVariant(false));
        QCOMPARE(combo->itemData(1).type(), QVariant::Bool);
    }

    void sourcesRenderTheDictionarysText()
    {
        const bool russian = Language::isRussian();
        QCOMPARE(make("source", QStringLiteral("kernel"))->toString(),
                 russian ? QStringLiteral("Ядро") : QStringLiteral("Kernel"));
        QCOMPARE(make("source", QStringLiteral("sshd"))->toString(),
                 russian ? QStringLiteral("Удалённая оболочка") : QStringLiteral("Remote shell"));
        // Keys are exact; anything the table lacks is its "unrecognized" entry.
        const QString unknown = russian ? QStringLiteral("Неизвестный источник") : QStringLiteral("Unknown source");
        QCOMPARE(make("source", QStringLiteral("Kernel"))->toString(), unknown);
        QCOMPARE(make("source", QStringLiteral("no-such-daemon"))->toString(), unknown);
        QVERIFY(make("source", QStringLiteral("no-such-daemon"))->isValid());
        QVERIFY(!make("source", QString())->isValid());
        QCOMPARE(make("source", QString())->toString(), QString());

        const std::unique_ptr<QWidget> editor = editorOf("source");
        auto *combo = qobject_cast<QComboBox *>(editor.get());
        QVERIFY(combo);
        const QMap<QString, QString> &sources = Dictionary::instance().sources();
        QCOMPARE(combo->count(), sources.size());
        QStringList keys;
        for (int i = 0; i < combo->count(); ++i) {
            keys << combo->itemData(i).toString();
            QCOMPARE(combo->itemText(i), sources.value(keys.last()));
        }
        QVERIFY(keys.contains(QStringLiteral("kernel")));
        QVERIFY(keys.contains(QStringLiteral("sshd")));
    }

    void signalsRenderByName()
    {
        QCOMPARE(make("signal", 9)->toString(), QStringLiteral("SIGKILL"));
        QCOMPARE(make("signal", 15.0)->toString(), QStringLiteral("SIGTERM"));
        QCOMPARE(make("signal", 34)->toString(), QStringLiteral("SIGRTMIN"));
        QCOMPARE(make("signal", 64)->toString(), QStringLiteral("SIGRTMAX"));
        // A number without a name is a value all the same, shown as nothing.
        QVERIFY(make("signal", 32)->isValid());
        QCOMPARE(make("signal", 32)->toString(), QString());
        QVERIFY(!make("signal", -1)->isValid());
        QVERIFY(!make("signal", QStringLiteral("SIGKILL"))->isValid());

        const std::unique_ptr<QWidget> editor = editorOf("signal");
        auto *combo = qobject_cast<QComboBox *>(editor.get());
        QVERIFY(combo);
        QCOMPARE(combo->count(), Dictionary::instance().signalNames().size());
        QList<int> numbers;
        for (int i = 0; i < combo->count(); ++i)
            numbers << combo->itemData(i).toInt();
        QVERIFY(numbers.contains(9));
        QVERIFY(numbers.contains(64));
        QVERIFY(!numbers.contains(32));
        QVERIFY(combo->itemText(numbers.indexOf(9)).contains(QLatin1String("SIGKILL")));
    }

    void timesRenderIsoTextAndOfferNoEditor()
    {
        const QDateTime moment(QDate(2024, 2, 29), QTime(12, 30, 5), Qt::OffsetFromUTC, 3 * 3600);
        QCOMPARE(make("time", moment)->toString(), QStringLiteral("2024-02-29T12:30:05+03:00"));
        QVERIFY(!make("time", QDateTime())->isValid());
        QCOMPARE(make("time", QDateTime())->toString(), QString());
        QVERIFY(!make("time", QDateTime::fromString(QStringLiteral("garbage"), Qt::ISODate))->isValid());
        QVERIFY(!make("time")->createEditor());
    }

    void stringsAreShownAsTheyStand()
    {
        QCOMPARE(make("user", QStringLiteral(" root "))->toString(), QStringLiteral(" root "));
        QVERIFY(!make("user", QString())->isValid());
        QCOMPARE(make("command", QStringLiteral("/bin/ls -l"))->toString(), QStringLiteral("/bin/ls -l"));
    }

    void spinBoxBounds_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<int>("maximum");
        // Like parameters differ on purpose.
        QTest::newRow("uid") << QStringLiteral("uid") << 65535;
        QTest::newRow("auid") << QStringLiteral("auid") << 65535;
        QTest::newRow("gid") << QStringLiteral("gid") << 65536;
        QTest::newRow("pid") << QStringLiteral("pid") << 32768;
        QTest::newRow("ppid") << QStringLiteral("ppid") << 32768;
        QTest::newRow("deny") << QStringLiteral("deny") << 32767;
        QTest::newRow("tally") << QStringLiteral("tally") << 32767;
        QTest::newRow("level") << QStringLiteral("level") << 3;
    }

    void spinBoxBounds()
    {
        QFETCH(QString, key);
        QFETCH(int, maximum);
        const std::unique_ptr<QWidget> editor = editorOf(key.toLatin1().constData());
        auto *spin = qobject_cast<QSpinBox *>(editor.get());
        QVERIFY(spin);
        QCOMPARE(spin->minimum(), 0);
        QCOMPARE(spin->maximum(), maximum);
        QVERIFY(!editor->parent());
    }

    void editorsOfTheOtherKinds()
    {
        for (const char *key : {"obj", "obj_new", "subj"}) {
            const std::unique_ptr<QWidget> editor = editorOf(key);
            auto *edit = qobject_cast<QLineEdit *>(editor.get());
            QVERIFY2(edit, key);
            QCOMPARE(edit->placeholderText(), QStringLiteral("0:0:0:0:0"));
            QVERIFY(edit->text().isEmpty());
        }
        for (const char *key : {"user", "host", "undefined", "end_time", "unixtime", "type_en", "categories"}) {
            const std::unique_ptr<QWidget> editor = editorOf(key);
            auto *edit = qobject_cast<QLineEdit *>(editor.get());
            QVERIFY2(edit, key);
            QVERIFY2(edit->placeholderText() != QLatin1String("0:0:0:0:0"), key);
        }
        // Every kind but time gives a parentless editor the caller owns.
        for (int type = 0; type < AuxParRegistry::count(); ++type) {
            const std::unique_ptr<QWidget> editor(registry().prototype(type)->createEditor());
            if (type == AuxParId::Time) {
                QVERIFY(!editor);
                continue;
            }
            QVERIFY2(editor, qPrintable(QString::number(type)));
            QVERIFY(!editor->parent());
        }
    }

    void cloneCopiesValueAndClass()
    {
        const QList<QPair<const char *, QVariant>> samples = {
            {"user", QStringLiteral("root")},
            {"pid", 4242},
            {"unixtime", Q_INT64_C(1700000000)},
            {"obj", QStringLiteral("1:2:3:4:5")},
            {"result", true},
            {"signal", 9},
            {"source", QStringLiteral("kernel")},
            {"time", QDateTime(QDate(2023, 1, 2), QTime(3, 4, 5), Qt::UTC)},
            {"type_ru", QStringLiteral("Вход")},
        };
        for (const auto &sample : samples) {
            const auto original = make(sample.first, sample.second);
            const std::unique_ptr<AuxPar> copy(original->clone());
            QVERIFY(copy.get() != original.get());
            QVERIFY2(typeid(*copy) == typeid(*original), sample.first);
            QCOMPARE(copy->typeId(), original->typeId());
            QCOMPARE(copy->key(), original->key());
            QCOMPARE(copy->value(), sample.second);
            QCOMPARE(copy->toString(), original->toString());
            // Independent values.
            copy->setValue(QVariant());
            QCOMPARE(original->value(), sample.second);
        }
        // Kinds of one family stay apart: the same value, each leaf's own words.
        const auto result = make("result", false);
        const std::unique_ptr<AuxPar> resultCopy(result->clone());
        QCOMPARE(resultCopy->toString(), QStringLiteral("failed"));
        const auto onsudo = make("onsudo", false);
        QCOMPARE(std::unique_ptr<AuxPar>(onsudo->clone())->toString(), QStringLiteral("no"));
        // The copy of an empty parameter is empty too.
        const std::unique_ptr<AuxPar> emptyCopy(registry().prototype(AuxParId::Signal)->clone());
        QVERIFY(!emptyCopy->isValid());
    }

    void editorValueHelpers()
    {
        QLineEdit edit;
        edit.setText(QStringLiteral("1:0:0:0:0"));
        const QVariant read = AuxPar::editorValue(&edit);
        QCOMPARE(read.type(), QVariant::String);
        QCOMPARE(read.toString(), QStringLiteral("1:0:0:0:0"));
        edit.clear();
        QCOMPARE(AuxPar::editorValue(&edit).type(), QVariant::String);
        QCOMPARE(AuxPar::editorValue(&edit).toString(), QString());

        QSpinBox spin;
        spin.setValue(7);
        QVERIFY(!AuxPar::editorValue(&spin).isValid());
        QComboBox combo;
        combo.addItem(QStringLiteral("yes"), true);
        QVERIFY(!AuxPar::editorValue(&combo).isValid());
        QVERIFY(!AuxPar::editorValue(nullptr).isValid());

        AuxPar::setEditorValue(&edit, QStringLiteral("root"));
        QCOMPARE(edit.text(), QStringLiteral("root"));
        AuxPar::setEditorValue(&edit, 1000);
        QCOMPARE(edit.text(), QStringLiteral("1000"));
        AuxPar::setEditorValue(&spin, 3);
        QCOMPARE(spin.value(), 7);
        AuxPar::setEditorValue(nullptr, QStringLiteral("ignored"));
    }

    void registryLookups()
    {
        const AuxParRegistry &parameters = registry();
        QCOMPARE(AuxParRegistry::count(), 55);
        QCOMPARE(parameters.typeOf(QStringLiteral("account_type")), 0);
        QCOMPARE(parameters.typeOf(QStringLiteral("auid")), 3);
        QCOMPARE(parameters.typeOf(QStringLiteral("host")), 16);
        QCOMPARE(parameters.typeOf(QStringLiteral("source")), 39);
        QCOMPARE(parameters.typeOf(QStringLiteral("time")), 46);
        QCOMPARE(parameters.typeOf(QStringLiteral("undefined")), 50);
        QCOMPARE(parameters.typeOf(QStringLiteral("unixtime")), 52);
        QCOMPARE(parameters.typeOf(QStringLiteral("vendor_id")), 54);
        QCOMPARE(parameters.typeOf(QStringLiteral("UID")), -1);
        QCOMPARE(parameters.typeOf(QStringLiteral("message_id")), -1);
        QCOMPARE(parameters.typeOf(QString()), -1);
        QVERIFY(!parameters.prototype(-1));
        QVERIFY(!parameters.prototype(55));
        QVERIFY(!parameters.create(55));

        // Type numbers follow the keys' alphabetical order.
        QString previous;
        for (int type = 0; type < AuxParRegistry::count(); ++type) {
            const AuxPar *prototype = parameters.prototype(type);
            QVERIFY(prototype);
            QCOMPARE(prototype->typeId(), type);
            const QString key = prototype->key();
            QVERIFY2(previous < key, qPrintable(previous + QLatin1String(" / ") + key));
            QCOMPARE(parameters.typeOf(key), type);
            QVERIFY(!prototype->label().isEmpty());
            previous = key;
            const std::unique_ptr<AuxPar> made = parameters.create(type);
            QCOMPARE(made->typeId(), type);
            QVERIFY(typeid(*made) == typeid(*prototype));
        }
        QCOMPARE(parameters.prototype(AuxParId::TypeEn)->label(), parameters.prototype(AuxParId::TypeRu)->label());
        QCOMPARE(parameters.prototype(3)->label(), QStringLiteral("Event initiator ID"));

        QList<int> excluded;
        for (int type = -1; type <= AuxParRegistry::count(); ++type)
            if (AuxParRegistry::isExcludedFromMatching(type))
                excluded << type;
        QCOMPARE(excluded, (QList<int>{10, 40, 46, 47, 48, 52}));
    }
};

int main(int argc, char **argv)
{
    qputenv("NIMB_EVENT_VIEWER_SYSROOT", QFile::encodeName(QStringLiteral(NIMB_TEST_DATA_DIR "/model/sysroot")));
    QApplication app(argc, argv);
    TestAuxPar test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_auxpar.moc"
