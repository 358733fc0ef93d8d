// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QByteArray>

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

// Values found by names given as raw UTF-8 bytes, without building a string for the
// lookup: the filters look up every member name of every line. Open addressing over a
// table at most a quarter full.
template<typename T>
class NameTable
{
public:
    // Adds the name, or gives the value it already has.
    T &operator[](const QByteArray &name)
    {
        if (T *value = find(name.constData(), name.size()))
            return *value;
        if (4 * (m_entries.size() + 1) > m_slots.size())
            grow();
        m_entries.emplace_back(name, T());
        place(m_entries.size() - 1);
        return m_entries.back().second;
    }

    const T *find(const char *data, int size) const
    {
        if (m_slots.empty())
            return nullptr;
        const std::size_t mask = m_slots.size() - 1;
        for (std::size_t slot = hashOf(data, size) & mask;; slot = (slot + 1) & mask) {
            const int entry = m_slots[slot];
            if (entry == 0)
                return nullptr;
            const QByteArray &name = m_entries[std::size_t(entry - 1)].first;
            if (name.size() == size && std::equal(data, data + size, name.constData()))
                return &m_entries[std::size_t(entry - 1)].second;
        }
    }
    T *find(const char *data, int size)
    {
        return const_cast<T *>(static_cast<const NameTable *>(this)->find(data, size));
    }

private:
    // Names are short: their first and last four bytes and their length tell them apart.
    static std::size_t hashOf(const char *data, int size)
    {
        quint64 hash = quint64(size) * 0x9e3779b97f4a7c15u;
        if (size >= 4) {
            quint32 head = 0;
            quint32 tail = 0;
            std::memcpy(&head, data, 4);
            std::memcpy(&tail, data + size - 4, 4);
            hash ^= (quint64(head) << 32 | tail) * 0xff51afd7ed558ccdu;
        } else {
            for (int i = 0; i < size; ++i)
                hash = (hash ^ uchar(data[i])) * 0x100000001b3u;
        }
        return std::size_t(hash ^ (hash >> 29));
    }

    void grow()
    {
        m_slots.assign(std::max<std::size_t>(64, 2 * m_slots.size()), 0);
        for (std::size_t entry = 0; entry < m_entries.size(); ++entry)
            place(entry);
    }

    void place(std::size_t entry)
    {
        const std::size_t mask = m_slots.size() - 1;
        const QByteArray &name = m_entries[entry].first;
        std::size_t slot = hashOf(name.constData(), name.size()) & mask;
        while (m_slots[slot] != 0)
            slot = (slot + 1) & mask;
        m_slots[slot] = int(entry + 1);
    }

    std::vector<std::pair<QByteArray, T>> m_entries;
    std::vector<int> m_slots;
};
