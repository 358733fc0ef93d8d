// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "AuxParKinds.h"
#include "AuxParRegistry.h"
#include "Dictionary.h"
#include "LabelText.h"
#include "Language.h"
#include "NimbTestMain.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QSpinBox>

#include <memory>

namespace
{
const AuxParRegistry &registry()
{
    return AuxParRegistry::instance();
}

// A fresh parameter of the kind with this journal key.
std::unique_ptr<AuxPar> make(const char *key, const QVariant &value = QVariant())
{
    const int type = registry().typeOf(QString::fromLatin1(key));
    if (type < 0)
        qFatal("no parameter kind %s", key);
    auto parameter = registry().create(type);
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
    void valuesAndTheirTexts()
    {
        const QDateTime moment(QDate(2024, 2, 29), QTime(12, 30, 5), Qt::OffsetFromUTC, 3 * 3600);
        // key, value, valid, text (null: not checked). The journal's numbers arrive as doubles,
        // sometimes as text; long integers are tested on their low 32 bits.
        const QVector<std::tuple<const char *, QVariant, bool, const char *>> cases{
            {"pid", 1234, true, "1234"}, {"pid", 0, true, "0"}, {"uid", 1000.0, true, "1000"}, {"uid", "42", true, "42"},
            {"uid", -1, false, ""}, {"uid", -1.0, false, nullptr}, {"uid", "root", false, ""},
            {"gid", QVariant(), false, nullptr},
            {"tally", -2, true, nullptr}, {"unixtime", Q_INT64_C(4294967295), false, ""},
            {"unixtime", 4294967295.0, false, nullptr}, {"end_time", Q_INT64_C(8589934591), false, nullptr},
            {"start_time", -1, false, nullptr}, {"start_time", "yesterday", false, nullptr},
            {"unixtime", Q_INT64_C(4294967296), true, "4294967296"}, {"unixtime", Q_INT64_C(4294967294), true, "4294967294"},
            {"unixtime", 1700000000.0, true, "1700000000"}, {"end_time", "1700000000", true, "1700000000"},
            {"start_time", 0, true, "0"}, {"signal", 9, true, "SIGKILL"}, {"signal", 15.0, true, "SIGTERM"},
            {"signal", 34, true, "SIGRTMIN"}, {"signal", 64, true, "SIGRTMAX"},
            {"signal", 32, true, ""}, // a number without a name is a value all the same
            {"signal", -1, false, nullptr}, {"signal", "SIGKILL", false, nullptr},
            {"time", moment, true, "2024-02-29T12:30:05+03:00"}, {"time", QDateTime(), false, ""},
            {"time", QDateTime::fromString(QStringLiteral("garbage"), Qt::ISODate), false, nullptr},
            {"user", " root ", true, " root "}, {"user", QString(), false, nullptr},
            {"command", "/bin/ls -l", true, "/bin/ls -l"}};
        for (const auto &[key, value, valid, text] : cases) {
            const auto parameter = make(key, value);
            const QByteArray what = QByteArray(key) + ' ' + value.toString().toUtf8();
            QVERIFY2(parameter->isValid() == valid, what.constData());
            if (text)
                QVERIFY2(parameter->toString() == QString::fromUtf8(text), qPrintable(parameter->toString()));
        }
    }

    void securityLabelsNeedFiveNumbers()
    {
        const QVector<QPair<QString, bool>> cases{
            {"0:0:0:0:0", true},     {"3:63:4294967295:0:1", false}, {"3:63:2147483647:0:1", true},
            {"-1:0:0:0:0", true},    {"0:0:0:0", false},             {"0:0:0:0:0:0", false},
            {"0:0:x:0:0", false},    {"0:0:0:0:z", false},           {"1::0:0:0", false},
            {"0:0:0:0:", false},     {"0x1:0:0:0:0", false},         {QString(), false},
            {"::::", false}};
        for (const auto &[value, valid] : cases) {
            for (const char *key : {"obj", "obj_new", "subj"}) {
                const auto parameter = make(key, value);
                QVERIFY2(parameter->isValid() == valid, qPrintable(value));
                QVERIFY2(parameter->toString().isEmpty() == !valid, qPrintable(value));
            }
        }
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

    void booleansRenderTheirLeafsWords()
    {
        for (const auto &[key, yes, no] :
             {std::make_tuple("onsudo", "yes", "no"), std::make_tuple("result", "success", "failed"),
              std::make_tuple("state", "enabled", "disabled"), std::make_tuple("success", "success", "failed")}) {
            QCOMPARE(make(key, true)->toString(), QString::fromLatin1(yes));
            QCOMPARE(make(key, false)->toString(), QString::fromLatin1(no));
            QVERIFY(make(key, false)->isValid());
            for (const QVariant &none : {QVariant(-1), QVariant()}) {
                QVERIFY(!make(key, none)->isValid());
                QCOMPARE(make(key, none)->toString(), QString());
            }
            // The filter window's values: the true word with true first, then false.
            const std::unique_ptr<QWidget> editor = editorOf(key);
            auto *combo = qobject_cast<QComboBox *>(editor.get());
            QVERIFY(combo);
            QCOMPARE(QStringList({combo->itemText(0), combo->itemText(1)}), QStringList({yes, no}));
            QCOMPARE(QVariantList({combo->itemData(0), combo->itemData(1)}), QVariantList({true, false}));
            QVERIFY(combo->count() == 2 && combo->itemData(0).type() == QVariant::Bool
                    && combo->itemData(1).type() == QVariant::Bool);
        }
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
        QMap<QString, QString> offered;
        for (int i = 0; i < combo->count(); ++i)
            offered.insert(combo->itemData(i).toString(), combo->itemText(i));
        QCOMPARE(offered, Dictionary::instance().sources());
        QVERIFY(offered.contains(QStringLiteral("kernel")) && offered.contains(QStringLiteral("sshd")));
    }

    void editors()
    {
        const std::unique_ptr<QWidget> signalEditor = editorOf("signal");
        auto *signalCombo = qobject_cast<QComboBox *>(signalEditor.get());
        QVERIFY(signalCombo);
        QCOMPARE(signalCombo->count(), Dictionary::instance().signalNames().size());
        QList<int> numbers;
        for (int i = 0; i < signalCombo->count(); ++i)
            numbers << signalCombo->itemData(i).toInt();
        QVERIFY(numbers.contains(9) && numbers.contains(64) && !numbers.contains(32));
        QVERIFY(signalCombo->itemText(numbers.indexOf(9)).contains(QLatin1String("SIGKILL")));

        // Like parameters differ on purpose.
        for (const auto &[key, maximum] : {std::make_pair("uid", 65535), std::make_pair("auid", 65535),
                                           std::make_pair("gid", 65536), std::make_pair("pid", 32768),
                                           std::make_pair("ppid", 32768), std::make_pair("deny", 32767),
                                           std::make_pair("tally", 32767), std::make_pair("level", 3)}) {
            const std::unique_ptr<QWidget> editor = editorOf(key);
            auto *spin = qobject_cast<QSpinBox *>(editor.get());
            QVERIFY2(spin && spin->minimum() == 0 && spin->maximum() == maximum, key);
        }
        for (const char *key : {"obj", "obj_new", "subj", "user", "host", "undefined", "end_time", "unixtime", "type_en",
                                "categories"}) {
            const std::unique_ptr<QWidget> editor = editorOf(key);
            auto *edit = qobject_cast<QLineEdit *>(editor.get());
            QVERIFY2(edit && edit->text().isEmpty(), key);
            const bool label = QByteArray(key).startsWith("obj") || QByteArray(key) == "subj";
            QVERIFY2((edit->placeholderText() == QLatin1String("0:0:0:0:0")) == label, key);
        }
        // Every kind but time gives a parentless editor the caller owns; fresh parameters are empty.
        for (int type = 0; type < AuxParRegistry::count(); ++type) {
            const std::unique_ptr<QWidget> editor(registry().prototype(type)->createEditor());
            QVERIFY2(bool(editor) == (type != AuxParId::Time), qPrintable(QString::number(type)));
            QVERIFY(!editor || !editor->parent());
            QVERIFY(!registry().create(type)->isValid());
        }
    }
};

NIMB_TEST_MAIN_WITH(TestAuxPar, QApplication, NIMB_TEST_DATA_DIR "/model/sysroot")
#include "test_auxpar.moc"
