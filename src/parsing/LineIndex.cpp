// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "LineIndex.h"

#include <algorithm>

namespace
{
unsigned bitsFor(quint64 value)
{
    return value == 0 ? 1 : 64 - unsigned(__builtin_clzll(value));
}

quint64 lowBits(unsigned width)
{
    return width >= 64 ? ~quint64(0) : (quint64(1) << width) - 1;
}
}

qint64 LineIndex::at(std::size_t row) const
{
    const std::size_t block = row / kBlockLines;
    const std::size_t within = row % kBlockLines;
    if (block == m_blocks.size())
        return m_open[within];
    const Block &packed = m_blocks[block];
    qint64 position = packed.first;
    quint64 offset = packed.bitOffset;
    for (std::size_t i = 0; i < within; ++i, offset += packed.width)
        position += qint64(bitsAt(offset, unsigned(packed.width)));
    return position;
}

void LineIndex::append(qint64 position)
{
    if (m_open.capacity() < kBlockLines)
        m_open.reserve(kBlockLines);
    m_open.push_back(position);
    if (m_open.size() == kBlockLines)
        packOpenBlock();
}

void LineIndex::append(const LineIndex &other)
{
    std::vector<qint64> slice;
    for (std::size_t row = 0; row < other.size(); row += kBlockLines) {
        slice.clear();
        other.copyTo(row, std::min(kBlockLines, other.size() - row), slice);
        for (const qint64 position : slice)
            append(position);
    }
}

void LineIndex::clear()
{
    m_blocks.clear();
    m_bits.clear();
    m_open.clear();
}

void LineIndex::shrinkToFit()
{
    m_blocks.shrink_to_fit();
    m_bits.shrink_to_fit();
}

void LineIndex::copyTo(std::size_t first, std::size_t count, std::vector<qint64> &out) const
{
    const std::size_t end = std::min(size(), first + count);
    std::size_t row = first;
    while (row < end) {
        const std::size_t block = row / kBlockLines;
        const std::size_t blockEnd = std::min(end, (block + 1) * kBlockLines);
        if (block == m_blocks.size()) {
            out.insert(out.end(), m_open.begin() + std::ptrdiff_t(row % kBlockLines),
                       m_open.begin() + std::ptrdiff_t(blockEnd - block * kBlockLines));
            break;
        }
        // One walk through the block for all the rows wanted from it.
        const Block &packed = m_blocks[block];
        qint64 position = packed.first;
        quint64 offset = packed.bitOffset;
        for (std::size_t current = block * kBlockLines; current < blockEnd; ++current) {
            if (current > block * kBlockLines) {
                position += qint64(bitsAt(offset, unsigned(packed.width)));
                offset += packed.width;
            }
            if (current >= row)
                out.push_back(position);
        }
        row = blockEnd;
    }
}

std::size_t LineIndex::memoryBytes() const
{
    return m_blocks.capacity() * sizeof(Block) + m_bits.capacity() * sizeof(quint64)
        + m_open.capacity() * sizeof(qint64);
}

void LineIndex::packOpenBlock()
{
    quint64 longest = 0;
    for (std::size_t i = 1; i < m_open.size(); ++i)
        longest = std::max(longest, quint64(m_open[i] - m_open[i - 1]));
    const unsigned width = bitsFor(longest);
    const quint64 start = quint64(m_bits.size()) * 64;
    // Blocks start on a word, which keeps the arithmetic plain for a few spare bits.
    m_blocks.push_back(Block{m_open.front(), start, width});
    quint64 offset = start;
    m_bits.resize(m_bits.size() + (width * (kBlockLines - 1) + 63) / 64, 0);
    for (std::size_t i = 1; i < m_open.size(); ++i, offset += width) {
        const quint64 distance = quint64(m_open[i] - m_open[i - 1]);
        const std::size_t word = offset / 64;
        const unsigned shift = unsigned(offset % 64);
        m_bits[word] |= distance << shift;
        if (shift + width > 64)
            m_bits[word + 1] |= distance >> (64 - shift);
    }
    m_open.clear();
}

quint64 LineIndex::bitsAt(quint64 offset, unsigned width) const
{
    const std::size_t word = offset / 64;
    const unsigned shift = unsigned(offset % 64);
    quint64 value = m_bits[word] >> shift;
    if (shift + width > 64)
        value |= m_bits[word + 1] << (64 - shift);
    return value & lowBits(width);
}
