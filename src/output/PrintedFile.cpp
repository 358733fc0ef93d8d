// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later

#include "PrintedFile.h"

#include "OutputFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QPrinter>
#include <QTemporaryFile>

#include <algorithm>

namespace
{
constexpr qint64 kCopyChunk = 1024 * 1024;

// A PDF ends with its end-of-file marker; a scratch file without one was cut short
// (its disk full) while the printer wrote it.
bool endsLikePdf(QFile &file)
{
    const qint64 tail = std::min<qint64>(file.size(), 64);
    return file.seek(file.size() - tail) && file.read(tail).contains("%%EOF");
}
}

PrintedFile::PrintedFile(QPrinter &printer)
    : m_printer(printer)
{
    if (printer.outputFormat() == QPrinter::PdfFormat)
        m_target = printer.outputFileName();
}

PrintedFile::~PrintedFile()
{
    release();
}

bool PrintedFile::begin()
{
    if (!toFile())
        return true;
    // The target is tried first, so that a file that cannot be written is told
    // before a long printout is drawn.
    m_output = std::make_unique<OutputFile>(m_target);
    if (!m_output->open()) {
        m_error = m_output->errorString();
        m_output.reset();
        return false;
    }
    m_scratch = std::make_unique<QTemporaryFile>(QDir::tempPath() + QStringLiteral("/nimb-print-XXXXXX.pdf"));
    if (!m_scratch->open()) {
        m_error = m_scratch->errorString();
        release();
        return false;
    }
    m_scratch->close();
    m_printer.setOutputFileName(m_scratch->fileName());
    return true;
}

bool PrintedFile::finish(bool complete)
{
    if (!toFile())
        return true;
    if (!m_output || !m_scratch) {
        release();
        return false;
    }
    m_printer.setOutputFileName(m_target);
    if (!complete) {
        release();
        return false;
    }
    QFile drawn(m_scratch->fileName());
    if (!drawn.open(QIODevice::ReadOnly)) {
        m_error = drawn.errorString();
    } else if (!endsLikePdf(drawn)) {
        m_error = QCoreApplication::translate("PrintedFile", "The printout was cut short while it was being drawn.");
    } else {
        bool copied = drawn.seek(0);
        while (copied && !drawn.atEnd()) {
            const QByteArray chunk = drawn.read(kCopyChunk);
            copied = !chunk.isEmpty() && m_output->write(chunk);
        }
        if (m_output->failed())
            m_error = m_output->errorString();
        else if (!copied)
            m_error = drawn.errorString();
        else if (!m_output->commit())
            m_error = m_output->errorString();
    }
    release();
    return m_error.isEmpty();
}

void PrintedFile::release()
{
    if (m_scratch && m_printer.outputFileName() == m_scratch->fileName())
        m_printer.setOutputFileName(m_target);
    m_output.reset();
    m_scratch.reset();
}

bool PrintedFile::print(QPrinter &printer, const std::function<bool()> &draw, QString *error)
{
    PrintedFile file(printer);
    const bool printed = file.begin() && file.finish(draw());
    if (error)
        *error = file.errorString();
    return printed;
}
