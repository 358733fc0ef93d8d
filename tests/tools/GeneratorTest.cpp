// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "JournalGenerator.h"

#include <QBuffer>
#include <QDateTime>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QtTest>

#include <ctime>

using namespace nimbgen;

namespace
{
// A fixed clock keeps the output independent of when the test runs.
const qint64 kNow = QDateTime(QDate(2026, 3, 2), QTime(9, 30), Qt::UTC).toSecsSinceEpoch();

QByteArray generate(qint64 lines, quint64 seed)
{
    GeneratorOptions options;
    options.lines = lines;
    options.seed = seed;
    options.end = kNow;
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    return JournalGenerator(Catalogue::builtIn(), options).write(&buffer) ? buffer.data() : QByteArray();
}
}

class GeneratorTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // A zone east of UTC without daylight saving, so that a stamp written in UTC shows.
        qputenv("TZ", "MSK-3");
        tzset();
    }

    void sameSeedGivesTheSameLines()
    {
        const QByteArray first = generate(3000, 42);
        QVERIFY(first.count('\n') == 3000 && first.endsWith('\n'));
        QCOMPARE(generate(3000, 42), first);
        QVERIFY(generate(3000, 43) != first);
    }

    void journalLooksLikeTheLoggersOwn()
    {
        QList<QByteArray> lines = generate(20000, 7).split('\n');
        QVERIFY(lines.takeLast().isEmpty());
        qint64 previous = kNow - 10 * 86400;
        int malformed = 0;
        QSet<QString> priorities;
        for (const QByteArray &line : lines) {
            // Unreadable JSON, a non-object and a message without exactly one source all count.
            const QJsonObject object = QJsonDocument::fromJson(line).object();
            if (object.value(QLatin1String("MSG")).toObject().size() != 1) {
                ++malformed;
                continue;
            }
            priorities.insert(object.value(QLatin1String("PRIORITY")).toString(QStringLiteral("<none>")));
            // Lines with only the legacy stamp carry no year, so only the full stamps are ordered here.
            const QString iso = object.value(QLatin1String("ISODATE")).toString();
            if (iso.isEmpty())
                continue;
            const qint64 seconds = QDateTime::fromString(iso, Qt::ISODate).toSecsSinceEpoch();
            QVERIFY2(iso.endsWith(QLatin1String("+03:00")) && seconds >= previous && seconds <= kNow, line);
            previous = seconds;
        }

        // About five lines in a thousand, as the default asks.
        QVERIFY2(malformed > 50 && malformed < 150, QByteArray::number(malformed));
        for (const char *word : {"emergency", "emerg", "alert", "critical", "crit", "error", "err", "warning",
                                 "notice", "info", "informational", "debug", "Warning", "<none>"})
            QVERIFY2(priorities.contains(QLatin1String(word)), word);
    }
};

QTEST_GUILESS_MAIN(GeneratorTest)
#include "GeneratorTest.moc"
