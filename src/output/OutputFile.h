// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QString>

#include <memory>

class QFileDevice;

// The file an export or a printout goes to. A regular file is written under a
// temporary name beside it and takes the earlier file's place only once complete, so
// that a failure leaves the earlier file whole and nothing half-written behind. A
// device or a pipe cannot be replaced that way (the rename would replace the device
// itself) and is written directly. Every failure keeps the reason the system gave.
class OutputFile
{
public:
    explicit OutputFile(const QString &path);
    // Leaves the earlier file as it was unless committed.
    ~OutputFile();
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;

    bool open();
    // All of the bytes, or a failure; once failed, nothing more is written.
    bool write(const char *data, qint64 size);
    bool write(const QByteArray &bytes);
    // Puts what was written in place of the earlier file.
    bool commit();
    // Drops what was written; the earlier file stays.
    void discard();

    bool failed() const { return m_failed; }
    // Why the file could not be written; empty while nothing failed.
    QString errorString() const { return m_error; }

private:
    void fail(const QString &reason);

    QString m_path;
    std::unique_ptr<QFileDevice> m_device;
    bool m_direct = false;
    bool m_failed = false;
    QString m_error;
};
