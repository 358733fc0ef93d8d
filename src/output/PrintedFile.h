// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QString>

#include <functional>
#include <memory>

class OutputFile;
class QPrinter;
class QTemporaryFile;

// A printout into a file (the printer's PDF output) is drawn into a scratch file and
// copied over the target only once complete, so that a failure leaves the earlier file
// whole, nothing half-written behind, and a reason to tell. The printer writes its file
// without looking at the result of a single write: the copy does. A printout for a
// real printer passes through untouched.
class PrintedFile
{
public:
    // The printer's output file name is borrowed for the drawing and given back.
    explicit PrintedFile(QPrinter &printer);
    ~PrintedFile();
    PrintedFile(const PrintedFile &) = delete;
    PrintedFile &operator=(const PrintedFile &) = delete;

    // Whether the printer writes a file; its path, empty otherwise.
    bool toFile() const { return !m_target.isEmpty(); }
    QString target() const { return m_target; }

    // Before drawing: false when the target cannot be written.
    bool begin();
    // After drawing: a complete report takes the target's place; an incomplete one
    // leaves the earlier file. False when the file was not written.
    bool finish(bool complete);
    // Why the file could not be written; empty while nothing failed.
    QString errorString() const { return m_error; }

    // Runs `draw` (which answers whether it drew the whole printout) onto the printer
    // between begin and finish. False, with `error` set when a file failed.
    static bool print(QPrinter &printer, const std::function<bool()> &draw, QString *error = nullptr);

private:
    void release();

    QPrinter &m_printer;
    QString m_target;
    std::unique_ptr<OutputFile> m_output;
    std::unique_ptr<QTemporaryFile> m_scratch;
    QString m_error;
};
