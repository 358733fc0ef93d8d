// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <vector>

class AsyncLoader;

// Lines of a journal file addressed by the start positions its parser recorded, read
// through a file handle of their own. A job reads the rows a tab counted this way on
// its own thread while the tab's parser goes on serving the tab.
class JournalRows
{
public:
    // Lines read back to back, each followed by a line feed.
    struct Batch {
        QByteArray text;
        // Where each line starts in the text, then one past the end of the text.
        std::vector<int> starts;
        // Index of each line among the rows.
        std::vector<std::size_t> rows;

        std::size_t lineCount() const { return starts.empty() ? 0 : starts.size() - 1; }
        // The line without its line feed; borrows the batch's text.
        QByteArray line(std::size_t i) const;
    };

    JournalRows() = default;
    JournalRows(const QString &path, std::vector<qint64> positions);

    // Every row the loader's parser counted, hidden ones included. The positions are
    // copied on the loader's thread between two of its requests, so they never come
    // from a scan half done. Blocks until then: call it from another thread than the
    // loader's, while the loader's thread runs.
    static JournalRows counted(AsyncLoader *loader);
    // The shown rows with these 1-based row numbers, in the order given; numbers
    // beyond the count are left out.
    static JournalRows shown(AsyncLoader *loader, const std::vector<quint32> &numbers);

    const QString &path() const { return m_path; }
    std::size_t size() const { return m_positions.size(); }
    bool isEmpty() const { return m_positions.empty(); }

    // Hands the rows in order, in batches of about batchBytes of text, to take, which
    // answers whether to go on. A row that can no longer be read is left out. False
    // when the file cannot be opened.
    bool read(qint64 batchBytes, const std::function<bool(Batch &&)> &take) const;

private:
    QString m_path;
    std::vector<qint64> m_positions;
};
