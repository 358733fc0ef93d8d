// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "LabelText.h"

#include <QtTest>

#include <atomic>
#include <thread>

class TestLabelText : public QObject
{
    Q_OBJECT

private slots:
#ifdef NIMB_HAVE_QLB
    void initTestCase() { QSKIP("built against the system label library, whose texts are its own"); }
#endif

    void categoriesListTheSetBits()
    {
        for (const auto &[set, text] : {std::make_pair(quint64(0b101), "0,2"), std::make_pair(quint64(0), ""),
                                        std::make_pair(quint64(1) << 63, "63")})
            QCOMPARE(LabelText::categories(set), QString::fromLatin1(text));
        QCOMPARE(LabelText::categories(~quint64(0)).split(QLatin1Char(',')).size(), 64);
    }

    // A caller formatting one label holds its three texts at once, while other threads do the same.
    void eachThreadAndFieldKeepsItsOwnText()
    {
        std::atomic<int> mismatches{0};
        std::thread threads[4];
        for (int t = 0; t < 4; ++t)
            threads[t] = std::thread([t, &mismatches] {
                for (int i = 0; i < 2000; ++i) {
                    const int value = t * 100000 + i, bit = t * 8 + i % 8;
                    const char *level = qlb_lev_get_text(value, 0);
                    const char *integrity = qlb_ilev_get_text(-value, 0);
                    const char *categories = qlb_cat_get_text(quint64(1) << bit, 0);
                    mismatches += QByteArray(level) != QByteArray::number(value)
                        || QByteArray(integrity) != QByteArray::number(-value) || QByteArray(categories) != QByteArray::number(bit);
                }
            });
        for (std::thread &thread : threads)
            thread.join();
        QCOMPARE(mismatches.load(), 0);
    }
};

QTEST_GUILESS_MAIN(TestLabelText)
#include "test_labeltext.moc"
