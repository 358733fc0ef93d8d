#include "JournalGenerator.h"

#include <QBuffer>
#include <QDateTime>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdlib>
#include <ctime>

using namespace nimbgen;

namespace
{
// A fixed clock keeps the output independent of when the test runs.
const qint64 kNow = QDateTime(QDate(2026, 3, 2), QTime(9, 30), Qt::UTC).toSecsSinceEpoch();

QByteArray generate(const GeneratorOptions &options, const Catalogue &catalogue = Catalogue::builtIn())
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    return JournalGenerator(catalogue, options).write(&buffer) ? buffer.data() : QByteArray();
}

GeneratorOptions withLines(qint64 lines, quint64 seed = 1)
{
    GeneratorOptions options;
    options.lines = lines;
    options.seed = seed;
    options.end = kNow;
    return options;
}

QList<QByteArray> linesOf(const QByteArray &journal)
{
    QList<QByteArray> lines = journal.split('\n');
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

// The legacy form has no year: it is the year of the local clock at kNow.
QDateTime legacyTime(const QString &text)
{
    static const QStringList months = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const QStringList parts = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (parts.size() != 3)
        return {};
    const QDate date(QDateTime::fromSecsSinceEpoch(kNow).date().year(), months.indexOf(parts[0]) + 1, parts[1].toInt());
    return QDateTime(date, QTime::fromString(parts[2], QStringLiteral("hh:mm:ss")));
}
}

class GeneratorTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // A zone east of UTC without daylight saving: offsets must show and legacy dates stay unambiguous.
        qputenv("TZ", "MSK-3");
        tzset();
        QVERIFY(!Catalogue::builtIn().isEmpty());
    }

    void outputIsReproducible()
    {
        const QByteArray first = generate(withLines(3000, 42));
        QCOMPARE(linesOf(first).size(), 3000);
        QCOMPARE(generate(withLines(3000, 42)), first);
        QVERIFY(generate(withLines(3000, 43)) != first);

        // The built-in catalogue is the demo tree itself, not a copy that could drift from it.
        const Catalogue demo = Catalogue::load(QStringLiteral(NIMB_DEMO_DIR "/sysroot"));
        QCOMPARE(generate(withLines(3000, 42), demo), first);
    }

    void linesAndSizeReachTheirTargets()
    {
        for (const auto &[text, bytes] : {std::make_pair("4096", qint64(4096)), std::make_pair("300K", qint64(300) << 10),
                                          std::make_pair("2m", qint64(2) << 20), std::make_pair("1G", qint64(1) << 30),
                                          std::make_pair("12x", qint64(-1)), std::make_pair("K", qint64(-1)),
                                          std::make_pair("-5M", qint64(-1))})
            QCOMPARE(parseByteSize(QString::fromLatin1(text)), bytes);

        const QByteArray thousand = generate(withLines(1000));
        QVERIFY(thousand.count('\n') == 1000 && thousand.endsWith('\n'));
        QVERIFY(generate(withLines(0)).isEmpty());

        GeneratorOptions sized = withLines(-1);
        sized.bytes = qint64(300) << 10;
        const QByteArray journal = generate(sized);
        QVERIFY2(journal.size() >= sized.bytes && journal.size() < sized.bytes + 4096, QByteArray::number(journal.size()));
        QVERIFY(journal.endsWith('\n'));
    }

    void journalLooksLikeTheLoggersOwn()
    {
        const QList<QByteArray> lines = linesOf(generate(withLines(20000, 7)));
        QCOMPARE(lines.size(), 20000);

        qint64 previous = kNow - 10 * 86400;
        int wellFormed = 0, unreadable = 0, notObjects = 0, badMessages = 0;
        QSet<QString> priorities, russianNames;
        bool quoted = false, backslashed = false, custom = false, unknownMember = false;
        for (const QByteArray &line : lines) {
            QJsonParseError error;
            const QJsonDocument document = QJsonDocument::fromJson(line, &error);
            const QJsonObject object = document.object();
            const QJsonObject msg = object.value(QLatin1String("MSG")).toObject();
            if (error.error != QJsonParseError::NoError || !document.isObject() || msg.size() != 1) {
                ++(error.error != QJsonParseError::NoError ? unreadable : !document.isObject() ? notObjects : badMessages);
                continue;
            }
            ++wellFormed;
            priorities.insert(object.value(QLatin1String("PRIORITY")).toString(QStringLiteral("<none>")));

            const QString iso = object.value(QLatin1String("ISODATE")).toString();
            const QString legacy = object.value(QLatin1String("DATE")).toString();
            QVERIFY2(!iso.isEmpty() || !legacy.isEmpty(), line);
            const QDateTime time = iso.isEmpty() ? legacyTime(legacy) : QDateTime::fromString(iso, Qt::ISODate);
            QVERIFY2(time.isValid(), line);
            if (!iso.isEmpty() && !legacy.isEmpty()) {
                QVERIFY2(iso.endsWith(QLatin1String("+03:00")), line);
                QCOMPARE(legacyTime(legacy), time);
            }
            const qint64 seconds = time.toSecsSinceEpoch();
            QVERIFY2(seconds >= previous && seconds <= kNow, line);
            previous = seconds;

            // Times inside the message must name the same moment, or the viewer would reorder events.
            const QJsonObject body = msg.begin().value().toObject();
            if (body.contains(QLatin1String("time")))
                QCOMPARE(QDateTime::fromString(body.value(QLatin1String("time")).toString(), Qt::ISODate).toSecsSinceEpoch(), seconds);
            for (const char *key : {"unixtime", "end_time"})
                if (body.contains(QLatin1String(key)))
                    QCOMPARE(qint64(body.value(QLatin1String(key)).toDouble()), seconds);

            russianNames.insert(body.value(QLatin1String("name_ru")).toString());
            for (auto member = body.begin(); member != body.end(); ++member) {
                quoted = quoted || member.value().toString().contains(QLatin1Char('"'));
                backslashed = backslashed || member.value().toString().contains(QLatin1Char('\\'));
            }
            custom = custom || body.contains(QLatin1String("ticket_id"));
            unknownMember = unknownMember || body.contains(QLatin1String("foo"));
        }

        const double malformed = 1.0 - wellFormed / 20000.0;
        QVERIFY2(malformed > 0.0025 && malformed < 0.0075, QByteArray::number(malformed));
        QVERIFY(unreadable > 0 && notObjects > 0 && badMessages > 0);

        for (const char *word : {"emergency", "emerg", "alert", "critical", "crit", "error", "err", "warning",
                                 "notice", "info", "informational", "debug", "Warning", "<none>"})
            QVERIFY2(priorities.contains(QLatin1String(word)), word);
        QVERIFY(russianNames.contains(QStringLiteral("Вход пользователя в систему")));
        QVERIFY(quoted && backslashed && custom && unknownMember);
    }

    void appendingContinuesTheJournal()
    {
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        QFile file(dir.filePath(QStringLiteral("events")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        GeneratorOptions options = withLines(500, 3);
        options.malformedPermille = 0;
        QVERIFY(JournalGenerator(Catalogue::builtIn(), options).write(&file));
        file.close();

        const qint64 last = lastJournalTime(file.fileName());
        QVERIFY(last > kNow - 86400 && last <= kNow);

        GeneratorOptions more = withLines(100, 4);
        more.malformedPermille = 0;
        more.live = true;
        more.end = last;
        qint64 previous = last;
        for (const QByteArray &line : linesOf(generate(more))) {
            const QJsonObject object = QJsonDocument::fromJson(line).object();
            const QString iso = object.value(QLatin1String("ISODATE")).toString();
            if (iso.isEmpty())
                continue;
            const qint64 seconds = QDateTime::fromString(iso, Qt::ISODate).toSecsSinceEpoch();
            QVERIFY2(seconds >= previous && seconds <= previous + 2, line);
            previous = seconds;
        }
        QVERIFY(previous > last);
    }
};

QTEST_GUILESS_MAIN(GeneratorTest)
#include "GeneratorTest.moc"
