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
Result run(const QStringList &arguments, const QString &tmpDir = QString())
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("NIMB_EVENT_VIEWER_SYSROOT"), fixture(QStringLiteral("sysroot")));
    if (!tmpDir.isEmpty())
        environment.insert(QStringLiteral("TMPDIR"), tmpDir);
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(NIMB_EVENTS_BINARY), arguments);
    Result result;
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return result;
    result.exitCode = process.exitCode();
    result.out = process.readAllStandardOutput();
    result.err = process.readAllStandardError();
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

// The message IDs and row numbers of a page of events, in order.
QPair<QStringList, QVector<int>> idsOf(const QByteArray &pageOutput)
{
    QPair<QStringList, QVector<int>> result;
    for (const QByteArray &line : pageOutput.split('\n')) {
        if (line.isEmpty())
            continue;
        QJsonParseError error{};
        const QJsonObject object = QJsonDocument::fromJson(line, &error).object();
        if (error.error != QJsonParseError::NoError)
            return {{QStringLiteral("<invalid JSON: %1>").arg(QString::fromUtf8(line))}, {}};
        result.second.append(object.value(QStringLiteral("number")).toInt(-1));
        QString id;
        for (const QJsonValue &pair : object.value(QStringLiteral("parameters")).toArray())
            if (pair.toArray().at(0).toString() == QLatin1String("Message ID"))
                id = pair.toArray().at(1).toString();
        result.first.append(id);
    }
    return result;
}
}

class NimbEventsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void countsWithAndWithoutFilter()
    {
        // Parameter conditions only test events that carry the parameter.
        const QVector<QPair<QStringList, int>> cases{
            {{}, 8},
            {{"--from", "2000-01-01T00:00:00Z", "--workers", "1"}, 8},
            {{"--priority", "warning"}, 1},
            {{"--priority", "1,err"}, 2}, // a number and the journal's word
            {{"--priority", "info", "--priority", "notice"}, 3},
            {{"--id", "usb-device-attached"}, 1},
            {{"--type", "Removable devices"}, 2},
            {{"--type", "Removable devices", "--type", "Security audit"}, 4},
            {{"--type-excludes", "AUTH"}, 5}, {{"--name-contains", "LOGIN"}, 2}, {{"--name-excludes", "user"}, 5},
            // Time bounds are inclusive.
            {{"--from", "2024-03-06T23:59:59Z"}, 3}, {{"--to", "2024-03-03T12:15:00+00:00"}, 3},
            {{"--from", "2024-03-02T12:30:00+03:00", "--to", "2024-03-05T10:00:00+03:00"}, 4},
            {{"--search", "root"}, 4}, {{"--search", "root", "--whole-word"}, 2},
            {{"--search", "ROOT", "--case-sensitive"}, 0}, {{"--search", "back\\slash."}, 0},
            {{"--param", "uid=1000"}, 6}, {{"--param", "result=failed"}, 6}, {{"--param", "result=yes"}, 7},
            {{"--param", "signal=SIGTERM"}, 7}, {{"--param", "signal=9"}, 8}, {{"--param", "user=root"}, 6},
            {{"--param", "user=root", "--param", "uid=0"}, 5}, {{"--custom", "ticket_id=T-1"}, 7},
            {{"--priority", "info", "--type", "Authentication"}, 1}};
        for (const auto &[filter, expected] : cases) {
            const Result result = run(QStringList{"count", kJournal} + filter);
            QVERIFY2(result.exitCode == 0 && result.err.isEmpty() && result.out == QByteArray::number(expected) + '\n',
                     qPrintable(filter.join(' ') + QLatin1String(": ") + result.out + result.err));
        }
    }

    void pages()
    {
        // page, size, extra arguments; the IDs and row numbers shown, or with --raw the lines.
        // The last page is short; the one after it is empty but not an error. Rows of a
        // filtered page are numbered among the events that pass.
        const QVector<std::tuple<const char *, const char *, QStringList, QStringList, QVector<int>>> cases{
            {"1", "3", {}, {"auth-login", "auth-login-failed", "usb-device-attached"}, {1, 2, 3}},
            {"3", "3", {}, {"auth-logout", "usb-device-detached"}, {7, 8}},
            {"4", "3", {}, {}, {}},
            {"1", "10", {"--priority", "info", "--workers", "2"}, {"usb-device-attached", "auth-logout"}, {1, 2}}};
        for (const auto &[page, size, extra, ids, numbers] : cases) {
            const Result result = run(QStringList{"page", kJournal, "--page", page, "--per-page", size} + extra);
            QCOMPARE(result.exitCode, 0);
            QCOMPARE(idsOf(result.out), qMakePair(ids, numbers));
            QVERIFY(!ids.isEmpty() || result.out.isEmpty());
        }
        const QVector<std::tuple<const char *, const char *, QStringList, QByteArray>> raw{
            {"1", "100", {}, eventLines()},
            {"2", "3", {}, eventLines(3, 3)},
            {"2", "1", {"--type", "Security audit"}, eventLines(5, 1)}};
        for (const auto &[page, size, extra, lines] : raw) {
            const Result result = run(QStringList{"page", kJournal, "--page", page, "--per-page", size, "--raw"} + extra);
            QCOMPARE(result.exitCode, 0);
            QCOMPARE(result.out, lines);
        }

        // Every pair of one event, in the event's own order, with the texts intact.
        const Result result = run({"page", kJournal, "--page", "5", "--per-page", "1"});
        QCOMPARE(result.exitCode, 0);
        QVERIFY(result.out.endsWith('\n') && result.out.count('\n') == 1);
        const QJsonObject event = QJsonDocument::fromJson(result.out).object();
        QCOMPARE(event.value("number").toInt(), 5);
        const QJsonArray expected{
            QJsonArray{"Event name", "Note \"quoted\" with back\\slash and tab\there"},
            QJsonArray{"Message ID", "site-note"},
            QJsonArray{"Date and time", "2024-03-05T07:00:00Z"}, QJsonArray{"Event type", "Site scripts"},
            QJsonArray{"Priority", "debug"}, QJsonArray{"Host", "srv-01"}, QJsonArray{"Source", "unrecognized"},
            QJsonArray{"ticket_id", "T-2"}};
        QCOMPARE(event.value("parameters").toArray(), expected);
    }

    void summaryByPriorityAndSource()
    {
        QTemporaryDir dir;
        QFile file(dir.filePath("recent.log"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        const QDateTime now = QDateTime::currentDateTimeUtc();
        const QVector<std::tuple<qint64, const char *, const char *>> lines{
            {30 * 60, "warning", "velmo-auth"}, {3 * 3600, "warning", "velmo-auth"}, {3 * 86400, "warning", "velmo-auth"},
            {8 * 86400, "warning", "velmo-auth"}, {-3600, "warning", "velmo-auth"}, {60, "err", "somewhere-else"},
            {60, "Warning", "velmo-auth"}};
        for (const auto &[secondsAgo, priority, source] : lines) {
            const QString time = now.addSecs(-secondsAgo).toString(Qt::ISODate);
            file.write(QStringLiteral("{\"ISODATE\":\"%1\",\"PRIORITY\":\"%2\",\"MSG\":{\"%3\":{\"message_id\":\"m\"}}}\n")
                           .arg(time, QLatin1String(priority), QLatin1String(source))
                           .toUtf8());
        }
        file.close();

        const Result result = run({"summary", file.fileName(), "--workers", "2"});
        QCOMPARE(result.exitCode, 0);
        QJsonParseError error{};
        const QJsonObject root = QJsonDocument::fromJson(result.out, &error).object();
        QCOMPARE(error.error, QJsonParseError::NoError);
        const QJsonObject expected{
            {"warning", QJsonObject{{"velmo-auth", QJsonObject{{"hour", 1}, {"day", 2}, {"week", 3}}}}},
            {"error", QJsonObject{{"unrecognized", QJsonObject{{"hour", 1}, {"day", 1}, {"week", 1}}}}},
        };
        QCOMPARE(root, expected);
        // Sorted keys, so that scripts can compare two summaries textually.
        QVERIFY(result.out.indexOf("\"error\"") < result.out.indexOf("\"warning\""));
    }

    void compressedRotationReadsAsPlain()
    {
        QTemporaryDir dir;
        QTemporaryDir scratch;
        QVERIFY(dir.isValid() && scratch.isValid());
        QFile plain(kJournal);
        QVERIFY(plain.open(QIODevice::ReadOnly));
        const QString rotation = dir.filePath("events.1.gz");
        KCompressionDevice device(rotation, KCompressionDevice::GZip);
        QVERIFY(device.open(QIODevice::WriteOnly) && device.write(plain.readAll()) == plain.size());
        device.close();

        Result result = run({"count", rotation}, scratch.path());
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, run({"count", kJournal}).out);
        result = run({"count", rotation, "--priority", "info"}, scratch.path());
        QCOMPARE(result.out, QByteArray("2\n"));
        result = run({"page", rotation, "--page", "1", "--per-page", "100", "--raw"}, scratch.path());
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, eventLines());
        // The unpacked copy goes away with the process.
        QCOMPARE(QDir(scratch.path()).entryList(QDir::Files | QDir::Hidden), QStringList());
    }

    void errorsExitWithMessage()
    {
        const QString j = kJournal;
        const QVector<std::tuple<QStringList, int, QString>> cases{
            {{}, 2, "no command"}, {{"tally", j}, 2, "unknown command 'tally'"}, {{"count"}, 2, "no journal file"},
            {{"count", j, "--colour"}, 2, "colour"}, {{"page", j, "--page", "1"}, 2, "--per-page"},
            {{"page", j, "--page", "0", "--per-page", "5"}, 2, "--page"},
            {{"page", j, "--page", "1", "--per-page", "-5"}, 2, "--per-page"},
            {{"count", j, "--raw"}, 2, "--raw"}, {{"summary", j, "--priority", "1"}, 2, "summary"},
            {{"count", j, "--priority", "loud"}, 2, "'loud'"}, {{"count", j, "--priority", "9"}, 2, "'9'"},
            {{"count", j, "--from", "last tuesday"}, 2, "--from"},
            {{"count", j, "--from", "2024-03-05T00:00:00", "--to", "2024-03-01T00:00:00"}, 2, "--to"},
            {{"count", j, "--param", "colour=red"}, 2, "'colour'"}, {{"count", j, "--param", "uid"}, 2, "KEY=VALUE"},
            {{"count", j, "--param", "uid=alice"}, 2, "'alice'"}, {{"count", j, "--param", "result=maybe"}, 2, "'maybe'"},
            {{"count", j, "--param", "time=2024"}, 2, "'time'"}, {{"count", j, "--custom", "desk=7"}, 2, "'desk'"},
            {{"count", j, "--name-excludes", ""}, 2, "--name-excludes"}, {{"count", j, "--whole-word"}, 2, "--search"},
            {{"count", j, "--workers", "0"}, 2, "--workers"},
            {{"count", fixture("no-such.log")}, 1, "cannot open " + fixture("no-such.log")},
            {{"summary", fixture("sysroot")}, 1, "cannot open"},
            {{"page", QStringLiteral(__FILE__), "--page", "1", "--per-page", "1"}, 1, "not an events journal"}};
        for (const auto &[arguments, exitCode, message] : cases) {
            const Result result = run(arguments);
            QVERIFY2(result.exitCode == exitCode && result.out.isEmpty() && result.err.startsWith("nimb-events: ")
                         && QString::fromUtf8(result.err).contains(message),
                     qPrintable(arguments.join(' ') + QLatin1String(": ") + result.err));
        }
    }

    void emptyJournalHasNoEvents()
    {
        QTemporaryDir dir;
        QFile empty(dir.filePath("events"));
        QVERIFY(empty.open(QIODevice::WriteOnly));
        empty.close();
        Result result = run({"count", empty.fileName(), "--priority", "1"});
        QVERIFY(result.exitCode == 0 && result.out == "0\n");
        result = run({"page", empty.fileName(), "--page", "1", "--per-page", "10"});
        QVERIFY(result.exitCode == 0 && result.out.isEmpty());
    }
};

QTEST_GUILESS_MAIN(NimbEventsTest)
#include "test_nimb_events.moc"
