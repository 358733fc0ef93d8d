// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

// The least work any count of a journal must do with Qt's JSON reader: every line
// parsed once on one thread, nothing else. Prints the number of lines that look like
// events (an object whose "MSG" is an object with exactly one member), so that its
// result can be checked against the real count.

#include <QByteArray>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>
#include <cstring>

namespace
{
constexpr qint64 kBlock = 4 * 1024 * 1024;

bool looksLikeEvent(const char *data, int size)
{
    const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromRawData(data, size));
    if (!document.isObject())
        return false;
    const QJsonValue message = document.object().value(QLatin1String("MSG"));
    return message.isObject() && message.toObject().size() == 1;
}
}

int main(int argc, char *argv[])
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: nimb-json-floor JOURNAL\n");
        return 2;
    }
    QFile file(QString::fromLocal8Bit(argv[1]));
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "nimb-json-floor: cannot open %s\n", argv[1]);
        return 1;
    }
    QByteArray buffer(int(kBlock), Qt::Uninitialized);
    qint64 filled = 0;
    qint64 events = 0;
    for (;;) {
        const qint64 got = file.read(buffer.data() + filled, buffer.size() - filled);
        if (got < 0)
            return 1;
        filled += got;
        const char *begin = buffer.constData();
        const char *end = begin + filled;
        const char *line = begin;
        while (const char *feed = static_cast<const char *>(std::memchr(line, '\n', size_t(end - line)))) {
            events += looksLikeEvent(line, int(feed - line));
            line = feed + 1;
        }
        const qint64 rest = end - line;
        if (got == 0) {
            if (rest > 0)
                events += looksLikeEvent(line, int(rest));
            break;
        }
        std::memmove(buffer.data(), line, size_t(rest));
        filled = rest;
        // A line longer than the buffer: give it room.
        if (filled == buffer.size())
            buffer.resize(buffer.size() * 2);
    }
    std::printf("%lld\n", events);
    return 0;
}
