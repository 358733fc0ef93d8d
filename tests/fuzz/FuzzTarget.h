// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

// One harness source serves two builds. With NIMB_FUZZ it is a libFuzzer target of
// its own; otherwise every harness is linked into one replay program that runs the
// seed corpus and the saved findings through the same code as a regular test.
#ifdef NIMB_FUZZ_REPLAY
namespace fuzzreplay
{
using Entry = int (*)(const uint8_t *, size_t);
bool registerTarget(const char *name, Entry entry);
}
#define NIMB_FUZZ_TARGET(name)                                                                             \
    static int fuzzTarget_##name(const uint8_t *data, size_t size);                                        \
    static const bool fuzzRegistered_##name = fuzzreplay::registerTarget(#name, fuzzTarget_##name);       \
    static int fuzzTarget_##name(const uint8_t *data, size_t size)
#else
#define NIMB_FUZZ_TARGET(name) extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
#endif

// A broken promise of the code under test: reported and ended like a crash, so that
// libFuzzer keeps the input.
#define FUZZ_CHECK(condition)                                                                              \
    do {                                                                                                   \
        if (!(condition)) {                                                                                \
            std::fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #condition);             \
            std::abort();                                                                                  \
        }                                                                                                  \
    } while (false)

namespace fuzzsupport
{
// Draws typed values from the front of an input, with defaults once it runs out,
// so that every byte string describes some value.
class FuzzInput
{
public:
    FuzzInput(const uint8_t *data, size_t size) : m_data(data), m_size(size) {}

    bool takeBool() { return (takeByte() & 1) != 0; }
    // A value in [low, high].
    qint64 takeInt(qint64 low, qint64 high)
    {
        const quint64 span = quint64(high) - quint64(low);
        quint64 value = 0;
        for (quint64 covered = 0; covered < span && m_used < m_size; covered = (covered << 8) | 0xff)
            value = (value << 8) | takeByte();
        return span == ~quint64(0) ? qint64(value) : qint64(quint64(low) + value % (span + 1));
    }
    double takeDouble()
    {
        quint64 bits = 0;
        for (int i = 0; i < 8; ++i)
            bits = (bits << 8) | takeByte();
        double value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }
    // Up to maxLength bytes as UTF-8, ended early by a zero byte.
    QString takeText(int maxLength)
    {
        QByteArray bytes;
        while (bytes.size() < maxLength && m_used < m_size) {
            const char c = char(takeByte());
            if (c == '\0')
                break;
            bytes += c;
        }
        return QString::fromUtf8(bytes);
    }

private:
    uint8_t takeByte() { return m_used < m_size ? m_data[m_used++] : 0; }

    const uint8_t *m_data;
    size_t m_size;
    size_t m_used = 0;
};

// Points the system tree at the test data and keeps every file the harnesses and the
// code under test write (settings, temporary copies) in a private directory. Runs
// once, before the first input; later calls return the directory.
QString setUp();
// Replaces the file's contents with the bytes given.
bool writeFile(const QString &path, const char *data, qint64 size);
// Gives the file a modification time that no earlier input had, so that caches keyed
// by size and time (QSettings') see every input as new.
void touchUnique(const QString &path);
}
