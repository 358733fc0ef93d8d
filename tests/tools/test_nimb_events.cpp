// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include <KCompressionDevice>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace
{
struct Result {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

QString fixture(const QString &name)
{
    return QStringLiteral(NIMB_EVENTS_FIXTURE_DIR "/") + name;
}

const QString kJournal = fixture(QStringLiteral("journal.log"));

// Drives the installed-style binary, so that exit codes, standard error and the exact
// bytes on standard output are checked as a script would see them.
Result run(const QStringList &arguments, const QString &tmpDir = QDir::tempPath())
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("NIMB_EVENT_VIEWER_SYSROOT"), fixture(QStringLiteral("sysroot")));
    environment.insert(QStringLiteral("TMPDIR"), tmpDir);
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(NIMB_EVENTS_BINARY), arguments);
    Result result;
    if (process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit)
        result = {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    return result;
}

// The fixture's lines that are events: the third is cut short, the seventh has two sources.
QByteArray eventLines(int first = 0, int count = -1)
{
    QFile file(kJournal);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<QByteArray> lines = file.readAll().split('\n');
    lines.removeLast();
    lines.removeAt(6);
    lines.removeAt(2);
    return lines.mid(first, count).join('\n') + '\n';
}
}

class NimbEventsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void filterOptionsNarrowTheCount()
    {
        // Parameter conditions only test events that carry the parameter; time bounds are inclusive.
        const QVector<QPair<QStringList, int>> cases{
            {{}, 8}, {{"--priority", "1,err", "--workers", "1"}, 2}, {{"--priority", "info", "--priority", "notice"}, 3},
            {{"--priority", "info", "--id", "usb-device-attached"}, 1}, {{"--type-excludes", "AUTH"}, 5},
            {{"--type", "Removable devices", "--type", "Security audit"}, 4}, {{"--name-contains", "LOGIN"}, 2},
            {{"--from", "2024-03-02T12:30:00+03:00", "--to", "2024-03-05T10:00:00+03:00"}, 4}, {{"--search", "root"}, 4},
            {{"--search", "root", "--whole-word"}, 2}, {{"--search", "ROOT", "--case-sensitive"}, 0},
            {{"--search", "back\\slash."}, 0}, {{"--param", "uid=1000"}, 6}, {{"--param", "result=yes"}, 7},
            {{"--param", "signal=SIGTERM"}, 7}, {{"--param", "user=root", "--param", "uid=0"}, 5},
            {{"--custom", "ticket_id=T-1"}, 7}};
        for (const auto &[filter, expected] : cases) {
            const Result result = run(QStringList{"count", kJournal} + filter);
            QVERIFY2(result.exitCode == 0 && result.err.isEmpty() && result.out == QByteArray::number(expected) + '\n',
                     qPrintable(filter.join(' ') + QLatin1String(": ") + result.out + result.err));
        }
    }

    void summaryByPriorityAndSource()
    {
        QTemporaryDir dir;
        QFile file(dir.filePath("recent.log"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        // Inside the hour, the day and the week, too old, in the future, and from a source the dictionary lacks.
        const QVector<std::tuple<qint64, const char *, const char *>> lines{
            {1800, "warning", "velmo-auth"}, {3 * 3600, "warning", "velmo-auth"}, {3 * 86400, "warning", "velmo-auth"},
            {8 * 86400, "warning", "velmo-auth"}, {-3600, "warning", "velmo-auth"}, {60, "err", "elsewhere"}};
        for (const auto &[secondsAgo, priority, source] : lines)
            file.write(QStringLiteral("{\"ISODATE\":\"%1\",\"PRIORITY\":\"%2\",\"MSG\":{\"%3\":{\"message_id\":\"m\"}}}\n")
                           .arg(QDateTime::currentDateTimeUtc().addSecs(-secondsAgo).toString(Qt::ISODate), priority, source)
                           .toUtf8());
        file.close();

        const QJsonObject expected{
            {"warning", QJsonObject{{"velmo-auth", QJsonObject{{"hour", 1}, {"day", 2}, {"week", 3}}}}},
            {"error", QJsonObject{{"unrecognized", QJsonObject{{"hour", 1}, {"day", 1}, {"week", 1}}}}}};
        QCOMPARE(QJsonDocument::fromJson(run({"summary", file.fileName(), "--workers", "2"}).out).object(), expected);
    }

    void renderedPageNumbersRowsInOrder()
    {
        const Result result = run({"page", kJournal, "--page", "2", "--per-page", "2"});
        const QList<QByteArray> rendered = result.out.split('\n');
        const QList<QByteArray> raw = eventLines(2, 2).split('\n');
        QCOMPARE(rendered.size(), 3);
        for (int i = 0; i < 2; ++i) {
            const QJsonObject object = QJsonDocument::fromJson(rendered[i]).object();
            const QJsonObject msg = QJsonDocument::fromJson(raw[i]).object().value("MSG").toObject();
            const QJsonObject body = msg.begin().value().toObject();
            QCOMPARE(object.value("number").toInt(), 3 + i);
            const QJsonArray rows = object.value("parameters").toArray();
            QCOMPARE(rows.at(0).toArray(), (QJsonArray{"Event name", body.value("name_en")}));
            QCOMPARE(rows.at(1).toArray(), (QJsonArray{"Message ID", body.value("message_id")}));
        }
    }

    void compressedRotationPagesAsPlain()
    {
        QTemporaryDir scratch;
        QVERIFY(scratch.isValid());
        QFile plain(kJournal);
        QVERIFY(plain.open(QIODevice::ReadOnly));
        const QString rotation = scratch.filePath("events 1.gz");
        KCompressionDevice device(rotation, KCompressionDevice::GZip);
        QVERIFY(device.open(QIODevice::WriteOnly) && device.write(plain.readAll()) == plain.size());
        device.close();

        // The last page is short and the one after it empty; a filtered page counts only the events that pass.
        const QVector<std::tuple<const char *, const char *, QStringList, QByteArray>> cases{
            {"1", "100", {}, eventLines()}, {"3", "3", {}, eventLines(6, 2)}, {"4", "3", {}, {}},
            {"2", "1", {"--type", "Security audit", "--workers", "2"}, eventLines(5, 1)}};
        for (const QString &journal : {kJournal, rotation})
            for (const auto &[page, size, extra, lines] : cases) {
                const QStringList arguments = QStringList{"page", journal, "--raw", "--page", page, "--per-page", size} + extra;
                const Result result = run(arguments, scratch.path());
                QVERIFY2(result.exitCode == 0 && result.out == lines, qPrintable(arguments.join(' ')));
            }
        // Only the rotation is left: the unpacked copy goes away with the process.
        QCOMPARE(QDir(scratch.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"events 1.gz"});
    }

    void goToATimeAndTimelinesOfAClockThatStepsBack()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath("stepping.log");
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        const QVector<QPair<const char *, const char *>> lines{
            {"2024-03-01T10:15:00Z", "err"},      {"2024-03-01T09:50:00+01:00", "warning"},
            {"2024-03-01T12:00:00Z", "notice"},   {nullptr, nullptr},
            {"2024-03-02T00:30:00+03:00", "info"}, {"2024-03-02T01:00:00Z", "Loud"},
            {"2024-03-01T10:20:00Z", "err"}};
        for (const auto &[time, priority] : lines)
            file.write(time ? QStringLiteral("{\"ISODATE\":\"%1\",\"PRIORITY\":\"%2\",\"MSG\":{\"velmo-auth\":{}}}\n")
                                  .arg(time, priority)
                                  .toUtf8()
                            : QByteArray("{\"MSG\": cut\n"));
        file.close();

        // Rows are 1-based among the events (the filter's, when given); none: no output, status 1.
        const QVector<QPair<QStringList, QByteArray>> gotos{
            {{"--time", "2024-03-01T10:16:00Z"}, "3\n"},       {{"--time", "2024-03-01T08:50:00Z"}, "1\n"},
            {{"--time", "2024-03-01T11:00:00+01:00"}, "1\n"},  {{"--time", "2024-03-01T21:00:00Z"}, "4\n"},
            {{"--time", "2024-03-02T01:00:01Z"}, ""},           {{"--time", "2024-03-01T10:16:00Z", "--priority", "err"}, "2\n"},
            {{"--time", "2024-03-01T10:21:00Z", "--priority", "err"}, ""}};
        for (const auto &[arguments, expected] : gotos) {
            const Result result = run(QStringList{"goto", path} + arguments);
            QVERIFY2(result.exitCode == (expected.isEmpty() ? 1 : 0) && result.err.isEmpty() && result.out == expected,
                     qPrintable(arguments.join(' ') + QLatin1String(": ") + result.out + result.err));
        }

        const QVector<QPair<QStringList, QByteArray>> timelines{
            {{},
             "2024-03-01T08:00:00Z\t1\t0\t0\t0\t0\t1\t0\t0\t0\t0\n"
             "2024-03-01T10:00:00Z\t2\t0\t0\t0\t2\t0\t0\t0\t0\t0\n"
             "2024-03-01T12:00:00Z\t1\t0\t0\t0\t0\t0\t1\t0\t0\t0\n"
             "2024-03-01T21:00:00Z\t1\t0\t0\t0\t0\t0\t0\t1\t0\t0\n"
             "2024-03-02T01:00:00Z\t1\t0\t0\t0\t0\t0\t0\t0\t0\t1\n"},
            {{"--bucket", "day"},
             "2024-03-01T00:00:00Z\t5\t0\t0\t0\t2\t1\t1\t1\t0\t0\n"
             "2024-03-02T00:00:00Z\t1\t0\t0\t0\t0\t0\t0\t0\t0\t1\n"},
            {{"--bucket", "day", "--priority", "err,info", "--workers", "2"},
             "2024-03-01T00:00:00Z\t3\t0\t0\t0\t2\t0\t0\t1\t0\t0\n"},
            {{"--priority", "debug"}, ""}};
        for (const auto &[arguments, expected] : timelines) {
            const Result result = run(QStringList{"timeline", path} + arguments);
            QVERIFY2(result.exitCode == 0 && result.err.isEmpty() && result.out == expected,
                     qPrintable(arguments.join(' ') + QLatin1String(": ") + result.out + result.err));
        }
    }

    void historyReadsTheRotationsOldestFirst()
    {
        QTemporaryDir dir;
        const QString live = dir.filePath("events");
        auto line = [](const char *time, const char *priority, const char *id) {
            return QStringLiteral("{\"ISODATE\":\"%1\",\"PRIORITY\":\"%2\",\"MSG\":{\"velmo-auth\":{\"message_id\":\"%3\"}}}\n")
                .arg(time, priority, id)
                .toUtf8();
        };
        const QByteArray oldest = line("2024-03-01T10:00:00Z", "err", "a") + line("2024-03-01T11:00:00Z", "info", "b");
        const QByteArray older = line("2024-03-01T09:00:00Z", "warning", "c") + "{\"MSG\": cut\n";
        const QByteArray current = line("2024-03-02T00:00:00Z", "notice", "d");
        {
            KCompressionDevice packed(live + ".2.gz", KCompressionDevice::GZip);
            QVERIFY(packed.open(QIODevice::WriteOnly));
            packed.write(oldest);
        }
        for (const auto &[path, bytes] : {std::pair{live + ".1", older}, std::pair{live, current}}) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        }
        const QVector<QPair<QStringList, QByteArray>> cases{
            {{"count", live}, "1\n"},
            {{"count", live, "--history"}, "4\n"},
            {{"goto", live, "--history", "--time", "2024-03-01T10:30:00Z"}, "2\n"},
            {{"goto", live, "--history", "--time", "2024-03-01T08:00:00Z"}, "1\n"},
            {{"goto", live, "--history", "--time", "2024-03-01T11:30:00Z"}, "4\n"},
            {{"goto", live, "--history", "--time", "2024-03-01T08:00:00Z", "--priority", "warning"}, "1\n"},
            {{"timeline", live, "--history", "--bucket", "day"},
             "2024-03-01T00:00:00Z\t3\t0\t0\t0\t1\t1\t0\t1\t0\t0\n"
             "2024-03-02T00:00:00Z\t1\t0\t0\t0\t0\t0\t1\t0\t0\t0\n"},
            {{"page", live, "--history", "--page", "2", "--per-page", "2", "--raw"}, older.left(older.indexOf('\n') + 1) + current}};
        for (const auto &[arguments, expected] : cases) {
            const Result result = run(arguments);
            QVERIFY2(result.exitCode == 0 && result.err.isEmpty() && result.out == expected,
                     qPrintable(arguments.join(' ') + QLatin1String(": ") + result.out + result.err));
        }
        const Result missing = run({"count", dir.filePath("none"), "--history"});
        QVERIFY(missing.exitCode == 1 && missing.err.contains("cannot open"));
    }

    void errorsExitWithMessage()
    {
        const QString j = kJournal;
        // A FIFO would block an ordinary open until some writer came along.
        QTemporaryDir scratch;
        const QString fifo = scratch.filePath(QStringLiteral("events"));
        QCOMPARE(QProcess::execute(QStringLiteral("mkfifo"), {fifo}), 0);
        const QVector<std::tuple<QStringList, int, QString>> cases{
            {{"count", fifo}, 1, "cannot open " + fifo}, {{"summary", scratch.path()}, 1, "cannot open"},
            {{}, 2, "no command"}, {{"tally", j}, 2, "unknown command 'tally'"}, {{"count"}, 2, "no journal file"},
            {{"count", j, "--colour"}, 2, "colour"}, {{"page", j, "--page", "1"}, 2, "--per-page"},
            {{"summary", j, "--priority", "1"}, 2, "summary"}, {{"count", j, "--priority", "loud"}, 2, "'loud'"},
            {{"count", j, "--from", "last tuesday"}, 2, "--from"}, {{"count", j, "--whole-word"}, 2, "--search"},
            {{"count", j, "--from", "2024-03-05T00:00:00", "--to", "2024-03-01T00:00:00"}, 2, "--to"},
            {{"count", j, "--param", "colour=red"}, 2, "'colour'"}, {{"count", j, "--param", "uid=alice"}, 2, "'alice'"},
            {{"count", j, "--param", "time=2024"}, 2, "'time'"}, {{"count", j, "--custom", "desk=7"}, 2, "'desk'"},
            {{"count", j, "--workers", "0"}, 2, "--workers"}, {{"count", j, "--raw"}, 2, "--raw"},
            {{"goto", j}, 2, "--time"}, {{"goto", j, "--time", "noon"}, 2, "'noon'"},
            {{"timeline", j, "--bucket", "week"}, 2, "'week'"}, {{"count", j, "--bucket", "day"}, 2, "--bucket"},
            {{"timeline", j, "--time", "2024-03-01T00:00:00Z"}, 2, "--time"},
            {{"count", fixture("no-such.log")}, 1, "cannot open " + fixture("no-such.log")},
            {{"page", QStringLiteral(__FILE__), "--page", "1", "--per-page", "1"}, 1, "not an events journal"}};
        for (const auto &[arguments, exitCode, message] : cases) {
            const Result result = run(arguments);
            QVERIFY2(result.exitCode == exitCode && result.out.isEmpty() && result.err.startsWith("nimb-events: ")
                         && QString::fromUtf8(result.err).contains(message),
                     qPrintable(arguments.join(' ') + QLatin1String(": ") + result.err));
        }
    }
};

QTEST_GUILESS_MAIN(NimbEventsTest)
#include "test_nimb_events.moc"
