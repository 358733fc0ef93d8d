// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "LineIndex.h"
#include "NimbTestMain.h"

#include <functional>
#include <random>

namespace
{
// Ascending offsets from `start`, with distances drawn by `distance`.
template<typename Distance>
std::vector<qint64> offsets(std::size_t count, qint64 start, Distance distance)
{
    std::vector<qint64> result;
    qint64 position = start;
    for (std::size_t i = 0; i < count; ++i) {
        result.push_back(position);
        position += distance(i);
    }
    return result;
}

LineIndex indexOf(const std::vector<qint64> &positions)
{
    LineIndex index;
    for (const qint64 position : positions)
        index.append(position);
    return index;
}

std::vector<qint64> contents(const LineIndex &index)
{
    std::vector<qint64> result;
    index.copyTo(0, index.size(), result);
    return result;
}
}

class TestLineIndex : public QObject
{
    Q_OBJECT

private slots:
    void keepsEveryOffset()
    {
        std::mt19937_64 random(3);
        // Journal lines, lines beyond 64 KB, offsets beyond 4 GB, and mixtures of them in
        // one block; counts around the block size.
        const std::vector<std::pair<qint64, std::function<qint64(std::size_t)>>> shapes{
            {0, [&](std::size_t) { return qint64(200 + random() % 900); }},
            {qint64(5) << 30, [&](std::size_t) { return qint64(1 + random() % 3); }},
            {0, [&](std::size_t) { return qint64(65536 + random() % 200000); }},
            {qint64(3) << 40, [&](std::size_t i) { return i % 97 == 0 ? qint64(1) << 35 : qint64(1 + random() % 500); }},
            {(qint64(1) << 62) - 1000, [&](std::size_t) { return qint64(1); }}};
        for (const auto &[start, distance] : shapes) {
            for (const std::size_t count : {std::size_t(0), std::size_t(1), std::size_t(127), std::size_t(128),
                                            std::size_t(129), std::size_t(5000 + random() % 300)}) {
                const std::vector<qint64> wanted = offsets(count, start, distance);
                const LineIndex index = indexOf(wanted);
                QCOMPARE(index.size(), count);
                QVERIFY(contents(index) == wanted);
                for (std::size_t row = 0; row < count; row += 1 + random() % 50)
                    QCOMPARE(index.at(row), wanted[row]);
                // Slices that start and end inside blocks and in the open last one.
                for (int trial = 0; trial < 20 && count > 0; ++trial) {
                    const std::size_t first = random() % count;
                    const std::size_t length = random() % (count - first + 1);
                    std::vector<qint64> slice{-1};
                    index.copyTo(first, length + 5, slice);
                    const std::size_t available = std::min(count - first, length + 5);
                    QCOMPARE(slice.size(), available + 1);
                    QVERIFY(std::equal(slice.begin() + 1, slice.end(), wanted.begin() + std::ptrdiff_t(first)));
                }
            }
        }
    }

    void joinsIndexesInOrder()
    {
        const std::vector<qint64> all = offsets(1000, 7, [](std::size_t i) { return qint64(i % 5 == 0 ? 70000 : 300); });
        for (const std::size_t split : {std::size_t(0), std::size_t(1), std::size_t(128), std::size_t(333), std::size_t(1000)}) {
            LineIndex head = indexOf({all.begin(), all.begin() + std::ptrdiff_t(split)});
            head.append(indexOf({all.begin() + std::ptrdiff_t(split), all.end()}));
            QVERIFY(contents(head) == all);
        }
        LineIndex cleared = indexOf(all);
        cleared.clear();
        QVERIFY(cleared.empty() && contents(cleared).empty());
        cleared.append(all.front());
        QCOMPARE(cleared.at(0), all.front());
    }

    void journalLinesCostUnderTwoBytes()
    {
        std::mt19937 random(5);
        // Lines of a few hundred bytes, as the logger writes them.
        LineIndex index = indexOf(offsets(200000, 0, [&](std::size_t) { return qint64(250 + random() % 800); }));
        index.shrinkToFit();
        QVERIFY2(double(index.memoryBytes()) / double(index.size()) <= 2.0,
                 qPrintable(QString::number(double(index.memoryBytes()) / double(index.size()))));
    }
};

NIMB_TEST_MAIN(TestLineIndex)
#include "test_lineindex.moc"
