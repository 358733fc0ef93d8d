// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "JsonLineScanner.h"
#include "LineAcceptor.h"
#include "LineCorpus.h"
#include "LineParser.h"
#include "ParsingFixture.h"
#include "TimeTextReader.h"

#include <QJsonArray>
#include <QJsonObject>

#include <ctime>
#include <functional>

namespace
{
using Verdict = JsonLineScanner::Verdict;
using Kind = JsonLineScanner::Kind;

// Lines that sit on the edges of Qt's grammar, beside the generated ones.
const QVector<QByteArray> kEdges{
    "", "{}", "[]", " {} ", "\xEF\xBB\xBF{}", "\xEF\xBB\xBF", "\xEF\xBB\xBF[", "{}\r", "{}\n\n", "{} x", "{\"a\":1,}",
    "{\"a\" : 1 , \"b\" :[ ] }", "{,}", "{\"a\"}", "{\"a\":}", "{\"a\"::1}", "[:]", "[1,]", "[,1]", "[1 2]",
    "{\"a\":tru}", "{\"a\":true", "{\"a\":nulls}", "{\"a\":-}", "{\"a\":+1}", "{\"a\":.5}", "{\"a\":1.}",
    "{\"a\":1e}", "{\"a\":01}", "{\"a\":-01}", "{\"a\":1e-400}", "{\"a\":0e-400}", "{\"a\":1e400}", "{\"a\":-0}",
    "{\"a\":1", "{\"a\":\"\\", "{\"a\":\"\\u12\"}", "{\"a\":\"\\uD800\"}", "{\"a\":\"\\q\"}", "{\"a\":\"\\\xC3\xA9\"}",
    "{\"a\":\"\xC3\"}", "{\"a\":\"\xED\xA0\x80\"}", "{\"a\":\"\xF4\x90\x80\x80\"}", "{\"a\":\"\xEF\xBF\xBF\"}",
    QByteArray("{\"a\":\"\0\"}", 8), "{\"a\":\"\x01\t\"}", "{\x0b\"a\":1}", "{\"a\":\x0c" "1}", "{\"\\u004dSG\":{}}",
    "{\"MSG\":{\"k\":1,\"k\":{}},\"ISODATE\":\"2024-03-01T10:00:00Z\"}", "{\"MSG\":{\"k\":{},\"j\":{}}}",
    "{\"MSG\":1,\"MSG\":{\"k\":{}},\"ISODATE\":\"2024-03-01T10:00:00Z\"}",
    "{\"MSG\":{\"k\":{\"time\":\"2024-03-01T10:00:00Z\",\"time\":null}}}",
    "{\"MSG\":{\"k\":{\"unixtime\":\"-5\"}}}", "{\"MSG\":{\"k\":{\"unixtime\":\"+5\"}}}",
    "{\"MSG\":{\"k\":{\"end_time\":[1]}}}", "{\"MSG\":{\"k\":{\"end_time\":4294967295}}}",
    "{\"MSG\":{\"k\":{\"end_time\":-4294967297}}}", "{\"MSG\":{\"k\":{}},\"DATE\":\"Feb 29 12:00:00\"}",
    "{\"MSG\":{\"k\":{}},\"ISODATE\":\"2024-03-01T24:00:00Z\"}", "{\"MSG\":{\"k\":{}},\"ISODATE\":\"2024-03-01T10:00:00\"}",
    "{\"MSG\":{\"k\":{}},\"ISODATE\":\"2024-03-01T10:00:00\\u002B03:00\"}"};

Verdict qtVerdict(const QByteArray &line)
{
    const QJsonDocument document = QJsonDocument::fromJson(line);
    return document.isNull() ? Verdict::Invalid : document.isObject() ? Verdict::Object : Verdict::OtherDocument;
}

QString show(const QByteArray &line)
{
    return QString::fromLatin1(line.left(300).toPercentEncoding(" {}\":,[]-_.+"));
}

// The scanned value is what Qt's reader made of the same member, down to the variant's type.
bool sameValue(const JsonLineScanner::Value &scanned, const QJsonValue &qt)
{
    switch (scanned.kind) {
    case Kind::Missing: return qt.isUndefined();
    case Kind::Array: return qt.isArray();
    case Kind::Object: return qt.isObject();
    default: break;
    }
    QJsonValue value;
    if (!JsonLineScanner::jsonValue(scanned, &value))
        return false;
    const QVariant ours = value.toVariant();
    const QVariant theirs = qt.toVariant();
    return value.type() == qt.type() && ours.userType() == theirs.userType() && ours == theirs;
}

// The members the scanner kept are the ones Qt kept, wherever names do not repeat.
QString fieldsDiffer(const JsonLineScanner &scanner, const QJsonObject &root)
{
    static const char *const rootNames[] = {"FACILITY", "PRIORITY", "HOST", "MSG", "ISODATE", "DATE"};
    if (scanner.rootIsEmpty() != root.isEmpty())
        return QStringLiteral("root emptiness");
    for (int key = 0; key < JsonLineScanner::RootKeyCount; ++key) {
        if (!sameValue(scanner.root(JsonLineScanner::RootKey(key)), root.value(QLatin1String(rootNames[key]))))
            return QLatin1String(rootNames[key]);
    }
    const QJsonObject msg = root.value(QLatin1String("MSG")).toObject();
    if (scanner.messageNamesDiffer())
        return msg.size() >= 2 ? QString() : QStringLiteral("MSG members differ");
    if (scanner.messageMembers() == 0 || !root.value(QLatin1String("MSG")).isObject())
        return msg.isEmpty() ? QString() : QStringLiteral("MSG empty");
    if (msg.size() != 1 || msg.constBegin().key() != JsonLineScanner::text(scanner.message().name))
        return QStringLiteral("source");
    if (scanner.messageMembers() > 1)
        return QString();
    if (!sameValue(scanner.message().value, msg.constBegin().value()))
        return QStringLiteral("body kind");
    const QJsonObject body = msg.constBegin().value().toObject();
    QSet<QString> names;
    for (const JsonLineScanner::Member &member : scanner.body())
        names.insert(JsonLineScanner::text(member.name));
    if (names.size() != int(scanner.body().size()))
        return QString(); // repeated names: which one Qt kept is not the scanner's to say
    if (body.size() != names.size())
        return QStringLiteral("body size");
    for (const JsonLineScanner::Member &member : scanner.body()) {
        if (!sameValue(member.value, body.value(JsonLineScanner::text(member.name))))
            return QStringLiteral("body member ") + JsonLineScanner::text(member.name);
    }
    return QString();
}

// Generated journals, broken by the mutator, in slices so that a million lines never
// sit in memory at once; then the hand-made corpus and the edge cases.
void forEachLine(int lines, const std::function<void(const QByteArray &)> &take)
{
    corpus::Mutator mutator(20240301);
    for (int done = 0, slice = 0; done < lines; ++slice) {
        const QVector<QByteArray> journal = corpus::generated(quint64(1000 + slice), std::min(20000, lines - done));
        for (const QByteArray &line : journal)
            take(mutator.mutate(line));
        done += journal.size();
    }
    corpus::Corpus handMade(7);
    for (int i = 0; i < std::max(lines / 10, 2000); ++i)
        take(handMade.line());
    for (const QByteArray &line : kEdges)
        take(line);
}

struct Tally {
    int lines = 0;
    int unsure = 0;
    int accepted = 0;
    QStringList faults;

    void fault(const QString &what, const QByteArray &line)
    {
        if (faults.size() < 10)
            faults.append(what + QStringLiteral(": ") + show(line));
    }
};
}

class TestLineScanner : public QObject
{
    Q_OBJECT

private slots:
    void scannerAgreesWithQtsReader()
    {
        JsonLineScanner scanner;
        Tally tally;
        forEachLine(corpus::lineBudget(40000, 1000000), [&](const QByteArray &line) {
            ++tally.lines;
            const Verdict verdict = scanner.scan(line.constData(), line.size());
            if (verdict == Verdict::Unsure) {
                ++tally.unsure;
                return;
            }
            if (verdict != qtVerdict(line))
                return tally.fault(QStringLiteral("verdict"), line);
            if (verdict == Verdict::Object) {
                ++tally.accepted;
                const QString differs = fieldsDiffer(scanner, QJsonDocument::fromJson(line).object());
                if (!differs.isEmpty())
                    tally.fault(differs, line);
            }
        });
        QVERIFY2(tally.faults.isEmpty(), qPrintable(tally.faults.join(QLatin1Char('\n'))));
        // Both answers must be common for the comparison to mean something. The faults
        // aim at what the scanner leaves to Qt, yet most lines must be its own.
        QVERIFY2(tally.accepted > tally.lines / 3 && tally.accepted < tally.lines * 9 / 10,
                 qPrintable(QString::number(tally.accepted)));
        QVERIFY2(tally.unsure < tally.lines / 4, qPrintable(QString::number(tally.unsure)));
    }

    void journalsAsWrittenNeedNoHelp()
    {
        // The speed comes from not asking Qt: journals as the logger writes them, broken
        // lines included, are judged by the scan alone.
        JsonLineScanner scanner;
        LineAcceptor acceptor;
        const QVector<QByteArray> journal = corpus::generated(99, 20000);
        int unsure = 0;
        int accepted = 0;
        for (const QByteArray &line : journal) {
            unsure += scanner.scan(line.constData(), line.size()) == Verdict::Unsure;
            const LineAcceptor::Answer answer = acceptor.judge(line.constData(), line.size());
            unsure += answer == LineAcceptor::Answer::Unsure;
            accepted += answer == LineAcceptor::Answer::Accepted;
        }
        QCOMPARE(unsure, 0);
        QVERIFY2(accepted > journal.size() * 8 / 10, qPrintable(QString::number(accepted)));
    }

    void acceptanceAgreesWithTheParser()
    {
        LineAcceptor acceptor;
        Tally tally;
        forEachLine(corpus::lineBudget(40000, 1000000), [&](const QByteArray &line) {
            ++tally.lines;
            const LineAcceptor::Answer answer = acceptor.judge(line.constData(), line.size());
            const std::unique_ptr<Event> event = LineParser::parseLine(line);
            if (acceptor.accepts(line) != bool(event))
                return tally.fault(QStringLiteral("accepts()"), line);
            if (answer == LineAcceptor::Answer::Unsure) {
                ++tally.unsure;
                return;
            }
            if ((answer == LineAcceptor::Answer::Accepted) != bool(event))
                return tally.fault(QStringLiteral("judge()"), line);
            if (!event)
                return;
            ++tally.accepted;
            // What the acceptor learnt of the time is the event's time.
            const TimeTextReader::Result &text = acceptor.timeText();
            switch (acceptor.timeRule()) {
            case LineAcceptor::TimeRule::BodyTime:
            case LineAcceptor::TimeRule::IsoDate:
                if (text.hasInstant != (event->time.timeSpec() != Qt::LocalTime)
                    || (text.hasInstant && text.msecs != event->time.toMSecsSinceEpoch()))
                    tally.fault(QStringLiteral("time text"), line);
                break;
            case LineAcceptor::TimeRule::UnixTime:
            case LineAcceptor::TimeRule::EndTime:
                if (acceptor.hasEpochSeconds() && event->time.toSecsSinceEpoch() != acceptor.epochSeconds())
                    tally.fault(QStringLiteral("seconds"), line);
                break;
            case LineAcceptor::TimeRule::Date:
                if (event->time.timeSpec() != Qt::LocalTime)
                    tally.fault(QStringLiteral("legacy date"), line);
                break;
            }
        });
        QVERIFY2(tally.faults.isEmpty(), qPrintable(tally.faults.join(QLatin1Char('\n'))));
        QVERIFY2(tally.accepted > tally.lines / 3 && tally.accepted < tally.lines * 9 / 10,
                 qPrintable(QString::number(tally.accepted)));
        QVERIFY2(tally.unsure < tally.lines / 4, qPrintable(QString::number(tally.unsure)));
    }

    void timeTextsReadAsQtReadsThem()
    {
        TimeTextReader reader;
        QStringList faults;
        std::mt19937 random(17);
        auto pick = [&random](std::initializer_list<const char *> items) {
            return QByteArray(items.begin()[random() % items.size()]);
        };
        for (int i = 0; i < corpus::lineBudget(40000, 400000); ++i) {
            const QByteArray iso = pick({"2024", "0000", "0001", "1970", "9999", "2026", "1969", "20x4"}) + '-'
                + pick({"01", "02", "03", "10", "12", "00", "13", "1-"}) + pick({"-", "-", "-", "/"})
                + pick({"01", "28", "29", "30", "31", "00", "32", "25"}) + pick({"T", "T", "T", "t", " ", "x"})
                + pick({"00", "02", "09", "23", "24", "25", "0x"}) + ':' + pick({"00", "30", "59", "60"})
                + pick({":", ":", ":", "."}) + pick({"00", "59", "60", "61", "0"})
                + pick({"Z", "Z", "+00:00", "+03:00", "-11:30", "+14:59", "+23:59", "+24:00", "+03:60", "-00:00",
                        "z", "+0300", "+03", "", ".5Z", ".123+01:00", " Z"});
            const QDateTime qt = QDateTime::fromString(QString::fromLatin1(iso), Qt::ISODate);
            const TimeTextReader::Result ours = reader.readIso(iso.constData(), iso.size());
            const bool instant = qt.isValid() && qt.timeSpec() != Qt::LocalTime;
            if (ours.valid != qt.isValid() || ours.hasInstant != instant
                || (instant && ours.msecs != qt.toMSecsSinceEpoch()))
                faults.append(QString::fromLatin1(iso));

            // Every day of the months with clock changes, at hours that fall into the gaps.
            const QByteArray legacy = pick({"Mar", "Oct", "Mar", "Oct", "Feb", "Dec", "mar", "Foo", "March", "M4r"})
                + pick({" ", "  ", " ", "\t"}) + QByteArray::number(int(random() % 34))
                + pick({" ", " ", "  ", " x"}) + pick({"02", "03", "2", "10", "24", "00", ""}) + ':'
                + pick({"30", "00", "60", "5", ""}) + pick({":", ":", "::"}) + pick({"00", "59", "60", "61", "a"});
            if (reader.legacyIsValid(legacy.constData(), legacy.size())
                != LineParser::parseLegacyDate(QString::fromLatin1(legacy)).isValid())
                faults.append(QString::fromLatin1(legacy));
        }
        faults.removeDuplicates();
        QVERIFY2(faults.isEmpty(), qPrintable(faults.mid(0, 10).join(QLatin1Char('\n'))));
    }
};

// Local times must have gaps for the readers to fall into: a zone with clock changes,
// pinned before any date-time exists.
const bool kZonePinned = [] {
    qputenv("TZ", "Europe/Berlin");
    tzset();
    return true;
}();

NIMB_PARSING_TEST_MAIN(TestLineScanner)

#include "test_linescanner.moc"
