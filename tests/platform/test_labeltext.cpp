#include "LabelText.h"

#include <QtTest>

#include <atomic>
#include <thread>
#include <vector>

class TestLabelText : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
#ifdef NIMB_HAVE_QLB
        QSKIP("built against the system label library, whose texts are its own");
#endif
    }

    void fieldsAreDecimalNumbersAndCategoriesListTheSetBits()
    {
        QCOMPARE(QByteArray(qlb_lev_get_text(0, 0)), QByteArray("0"));
        QCOMPARE(QByteArray(qlb_lev_get_text(255, 0)), QByteArray("255"));
        QCOMPARE(QByteArray(qlb_ilev_get_text(63, 0)), QByteArray("63"));
        QCOMPARE(QByteArray(qlb_ilev_get_text(-1, 0)), QByteArray("-1"));
        QCOMPARE(LabelText::level(3), QStringLiteral("3"));
        QCOMPARE(LabelText::integrityLevel(2147483647), QStringLiteral("2147483647"));
        QVERIFY(qlb_cat_get_text(0, 0) != nullptr);
        for (const auto &[set, text] : {std::make_pair(quint64(0b101), "0,2"), std::make_pair(quint64(1), "0"),
                                        std::make_pair(quint64(0), ""), std::make_pair(quint64(1) << 63, "63"),
                                        std::make_pair(quint64(0xF0), "4,5,6,7")})
            QCOMPARE(LabelText::categories(set), QString::fromLatin1(text));
        QCOMPARE(LabelText::categories(~quint64(0)).split(QLatin1Char(',')).size(), 64);

        // A caller formatting one label holds all three texts at once.
        const char *level = qlb_lev_get_text(1, 0);
        const char *integrity = qlb_ilev_get_text(2, 0);
        const char *categories = qlb_cat_get_text(0b1000, 0);
        QCOMPARE(QByteArray(level) + integrity + categories, QByteArray("123"));
    }

    void threadsGetTheirOwnTexts()
    {
        std::atomic<int> mismatches{0};
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t) {
            threads.emplace_back([t, &mismatches] {
                for (int i = 0; i < 2000; ++i) {
                    const int value = t * 100000 + i;
                    const char *level = qlb_lev_get_text(value, 0);
                    const char *categories = qlb_cat_get_text(quint64(1) << (t * 8 + i % 8), 0);
                    mismatches += QByteArray(level) != QByteArray::number(value);
                    mismatches += QByteArray(categories) != QByteArray::number(t * 8 + i % 8);
                    mismatches += LabelText::integrityLevel(value) != QString::number(value);
                }
            });
        }
        for (auto &thread : threads)
            thread.join();
        QCOMPARE(mismatches.load(), 0);
    }
};

QTEST_GUILESS_MAIN(TestLabelText)
#include "test_labeltext.moc"
