#include "LogParser.h"

#include "LineAcceptor.h"
#include "LineReader.h"

#include <QIODevice>

void LogParser::scan(QIODevice &file)
{
    const qint64 size = file.size();
    auto tail = [this](LineReader &reader, qint64 end) { return scanTail(reader, end); };
    if (!continueScan(file, size, tail)) {
        beginFullScan(file, size);
        scanInParallel(
            file, size,
            [this](qint64 start, qint64 end, bool last) {
                LineAcceptor acceptor;
                return readRange(start, end, last, [&acceptor](qint64, const char *data, qint64 size) {
                    return acceptor.accepts(data, size) ? Outcome::Counted : Outcome::Unreadable;
                });
            },
            tail);
    }
    trimPositions();
}

qint64 LogParser::scanTail(LineReader &reader, qint64 size)
{
    LineAcceptor acceptor;
    return readTail(reader, size, [&acceptor](qint64, const char *data, qint64 lineSize) {
        return acceptor.accepts(data, lineSize) ? Outcome::Counted : Outcome::Unreadable;
    });
}
