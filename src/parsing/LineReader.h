// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QByteArray>
#include <QtGlobal>

class QIODevice;

// Reads lines from a device in large blocks and splits them with memchr, because
// a readLine() per line costs more than the JSON parsing of a journal line.
// Positions are absolute byte offsets in the device. The device must stay open and
// must not be read or repositioned by anyone else while the reader is in use.
class LineReader
{
public:
    static constexpr qint64 kScanBlock = 2 * 1024 * 1024;
    // Pages jump between scattered rows: a small block keeps a jump cheap.
    static constexpr qint64 kPageBlock = 32 * 1024;
    // No journal line comes near this; a longer one (a file of NULs, a runaway
    // writer) is not an event. It is passed over without being held in memory and
    // handed out as an empty line, so every reader treats it as a malformed one.
    static constexpr qint64 kMaxLine = 16 * 1024 * 1024;

    explicit LineReader(QIODevice &device, qint64 blockSize = kScanBlock);
    LineReader(const LineReader &) = delete;
    LineReader &operator=(const LineReader &) = delete;

    // The start of the next line to be read.
    qint64 position() const { return m_bufferStart + m_begin; }

    // Continues at an absolute position. Inside the buffered block this costs
    // nothing; otherwise the device is repositioned. False when the device refuses.
    bool seek(qint64 position);

    // The next line without its line feed. The bytes stay valid until the next call
    // of any non-const member. False at the end of the data. A line longer than
    // kMaxLine comes out empty, with lastLineOverlong() set.
    bool readLine(const char **data, qint64 *size);
    // The same as a QByteArray that borrows the reader's buffer.
    bool readLine(QByteArray *line);
    bool skipLine();

    // Whether the last line read ended with a line feed (a line cut short by the end
    // of the data may still be being written).
    bool lastLineTerminated() const { return m_lastTerminated; }
    bool lastLineOverlong() const { return m_lastOverlong; }

    // No more bytes can be read now.
    bool atEnd();

private:
    // Brings more bytes behind the unread ones; false when none came.
    bool fill();
    // Passes over the rest of an overlong line whose start is at m_begin.
    bool skipOverlong(const char **data, qint64 *size);

    QIODevice &m_device;
    QByteArray m_buffer;
    qint64 m_blockSize;
    qint64 m_bufferStart = 0; // device offset of m_buffer[0]
    qint64 m_begin = 0;       // first unread byte in the buffer
    qint64 m_end = 0;         // one past the last valid byte in the buffer
    bool m_deviceDrained = false;
    bool m_lastTerminated = true;
    bool m_lastOverlong = false;
};
