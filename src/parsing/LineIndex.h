// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QtGlobal>

#include <cstddef>
#include <vector>

// The start offsets of counted lines, ascending, kept packed: blocks of 128 offsets hold
// their first offset whole and each other one as its distance from the one before, in as
// few bits as the block's longest distance needs. Journal lines of a few hundred bytes
// cost about a byte and a half each; any offset is found by unpacking at most one block,
// and offsets beyond 4 GB or distances beyond 64 KB need nothing special.
class LineIndex
{
public:
    std::size_t size() const { return m_blocks.size() * kBlockLines + m_open.size(); }
    bool empty() const { return size() == 0; }
    qint64 at(std::size_t row) const;

    // `position` must lie after every offset already held.
    void append(qint64 position);
    void append(const LineIndex &other);
    void clear();
    void shrinkToFit();

    // The offsets of rows [first, first + count), appended to `out`.
    void copyTo(std::size_t first, std::size_t count, std::vector<qint64> &out) const;

    // What the index occupies, spare capacity included.
    std::size_t memoryBytes() const;

private:
    static constexpr std::size_t kBlockLines = 128;

    struct Block {
        qint64 first;
        quint64 bitOffset : 56; // where the block's distances start in m_bits
        quint64 width : 8;      // bits per distance
    };

    void packOpenBlock();
    quint64 bitsAt(quint64 offset, unsigned width) const;

    std::vector<Block> m_blocks;
    std::vector<quint64> m_bits;
    // The last block, not yet complete, unpacked.
    std::vector<qint64> m_open;
};
