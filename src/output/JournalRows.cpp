// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "JournalRows.h"

#include "AbstractLogParser.h"
#include "AsyncLoader.h"
#include "LineReader.h"
#include "RegularFile.h"

#include <QFile>
#include <QThread>

#include <mutex>

namespace
{
// Runs call on the loader's thread, after the request it is serving.
template<typename Call>
void onLoaderThread(AsyncLoader *loader, Call call)
{
    QThread *home = loader->thread();
    if (home == QThread::currentThread() || !home || !home->isRunning()) {
        call();
        return;
    }
    // The mutex makes the hand-over visible to race detectors, which cannot see the
    // synchronisation inside the blocking queued call.
    std::mutex handOver;
    QMetaObject::invokeMethod(
        loader,
        [&call, &handOver] {
            std::lock_guard<std::mutex> lock(handOver);
            call();
        },
        Qt::BlockingQueuedConnection);
    std::lock_guard<std::mutex> lock(handOver);
}
}

QByteArray JournalRows::Batch::line(std::size_t i) const
{
    const int start = starts[i];
    // Without the line feed.
    const int size = starts[i + 1] - start - 1;
    return QByteArray::fromRawData(text.constData() + start, size);
}

JournalRows::JournalRows(const QString &path, std::vector<qint64> positions)
    : m_path(path)
    , m_positions(std::move(positions))
{
}

JournalRows JournalRows::counted(AsyncLoader *loader)
{
    JournalRows rows;
    if (!loader)
        return rows;
    AbstractLogParser *parser = loader->parser();
    onLoaderThread(loader, [&rows, parser] { rows = JournalRows(parser->filePath(), parser->positions()); });
    return rows;
}

JournalRows JournalRows::shown(AsyncLoader *loader, const std::vector<quint32> &numbers)
{
    JournalRows rows;
    if (!loader)
        return rows;
    AbstractLogParser *parser = loader->parser();
    onLoaderThread(loader, [&rows, &numbers, parser] {
        const std::vector<qint64> all = parser->positions();
        const std::size_t base = static_cast<std::size_t>(parser->indexBase());
        std::vector<qint64> picked;
        picked.reserve(numbers.size());
        for (quint32 number : numbers) {
            const std::size_t row = base + number - 1;
            if (number > 0 && row < all.size())
                picked.push_back(all[row]);
        }
        rows = JournalRows(parser->filePath(), std::move(picked));
    });
    return rows;
}

bool JournalRows::read(qint64 batchBytes, const std::function<bool(Batch &&)> &take) const
{
    QFile file;
    if (!RegularFile::open(file, m_path, QIODevice::ReadOnly | QIODevice::Unbuffered))
        return false;
    LineReader reader(file);
    Batch batch;
    auto startBatch = [&batch, batchBytes] {
        batch.text.clear();
        batch.text.reserve(static_cast<int>(batchBytes + batchBytes / 8));
        batch.starts.assign(1, 0);
        batch.rows.clear();
    };
    startBatch();
    const char *data = nullptr;
    qint64 size = 0;
    for (std::size_t row = 0; row < m_positions.size(); ++row) {
        if (!reader.seek(m_positions[row]) || !reader.readLine(&data, &size))
            continue;
        batch.text.append(data, static_cast<int>(size));
        batch.text.append('\n');
        batch.starts.push_back(batch.text.size());
        batch.rows.push_back(row);
        if (batch.text.size() >= batchBytes) {
            if (!take(std::move(batch)))
                return true;
            startBatch();
        }
    }
    if (batch.lineCount() > 0)
        take(std::move(batch));
    return true;
}
