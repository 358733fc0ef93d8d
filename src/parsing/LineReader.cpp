// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "LineReader.h"

#include <QIODevice>

#include <algorithm>
#include <cstring>

LineReader::LineReader(QIODevice &device, qint64 blockSize)
    : m_device(device)
    , m_blockSize(std::max<qint64>(blockSize, 4096))
    , m_bufferStart(device.pos())
{
}

bool LineReader::seek(qint64 position)
{
    if (position >= m_bufferStart && position <= m_bufferStart + m_end) {
        m_begin = position - m_bufferStart;
        return true;
    }
    if (!m_device.seek(position))
        return false;
    m_bufferStart = position;
    m_begin = 0;
    m_end = 0;
    return true;
}

bool LineReader::fill()
{
    if (m_begin > 0) {
        const qint64 rest = m_end - m_begin;
        if (rest > 0)
            std::memmove(m_buffer.data(), m_buffer.constData() + m_begin, static_cast<size_t>(rest));
        m_bufferStart += m_begin;
        m_end = rest;
        m_begin = 0;
    }
    // A line longer than the buffer makes it grow; it never shrinks again, so a
    // single huge line costs its size once.
    if (m_end == m_buffer.size())
        m_buffer.resize(static_cast<int>(std::max<qint64>(m_blockSize, 2 * qint64(m_buffer.size()))));
    // Reading again after an earlier end is deliberate: the journal may have grown.
    const qint64 got = m_device.read(m_buffer.data() + m_end, m_buffer.size() - m_end);
    if (got <= 0)
        return false;
    m_end += got;
    return true;
}

bool LineReader::readLine(const char **data, qint64 *size)
{
    m_lastOverlong = false;
    qint64 searched = 0; // bytes after m_begin known to hold no line feed
    for (;;) {
        const char *base = m_buffer.constData();
        const qint64 from = m_begin + searched;
        if (from < m_end) {
            const void *found = std::memchr(base + from, '\n', static_cast<size_t>(m_end - from));
            if (found) {
                const qint64 feed = static_cast<const char *>(found) - base;
                *data = base + m_begin;
                *size = feed - m_begin;
                m_begin = feed + 1;
                m_lastTerminated = true;
                return true;
            }
        }
        searched = m_end - m_begin;
        if (searched > kMaxLine)
            return skipOverlong(data, size);
        if (!fill()) {
            if (m_begin == m_end)
                return false;
            *data = m_buffer.constData() + m_begin;
            *size = m_end - m_begin;
            m_begin = m_end;
            m_lastTerminated = false;
            return true;
        }
    }
}

bool LineReader::skipOverlong(const char **data, qint64 *size)
{
    m_lastOverlong = true;
    *data = m_buffer.constData();
    *size = 0;
    for (;;) {
        // Everything buffered belongs to the line: drop it and read on in place.
        m_bufferStart += m_end;
        m_begin = m_end = 0;
        const qint64 got = m_device.read(m_buffer.data(), m_buffer.size());
        if (got <= 0) {
            m_lastTerminated = false;
            return true;
        }
        m_end = got;
        if (const void *found = std::memchr(m_buffer.constData(), '\n', static_cast<size_t>(got))) {
            m_begin = static_cast<const char *>(found) - m_buffer.constData() + 1;
            m_lastTerminated = true;
            return true;
        }
    }
}

bool LineReader::readLine(QByteArray *line)
{
    const char *data = nullptr;
    qint64 size = 0;
    if (!readLine(&data, &size))
        return false;
    *line = QByteArray::fromRawData(data, static_cast<int>(size));
    return true;
}

bool LineReader::skipLine()
{
    const char *data = nullptr;
    qint64 size = 0;
    return readLine(&data, &size);
}

bool LineReader::atEnd()
{
    return m_begin == m_end && !fill();
}
