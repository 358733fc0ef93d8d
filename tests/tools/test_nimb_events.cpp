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

// Drives the installed-style binary, so that exit codes, standard error and the exact
// bytes on standard output are checked as a script would see them.
class NimbEventsTest : public QObject
{
    Q_OBJECT

private:
    struct Result {
        int exitCode = -1;
        QByteArray out;
        QByteArray err;
    };

    Result run(const QStringList &arguments, const QString &tmpDir = QString()) const
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

    static QString fixture(const QString &name)
    {
        return QStringLiteral(NIMB_EVENTS_FIXTURE_DIR "/") + name;
    }

    static QString journal() { return fixture(QStringLiteral("journal.log")); }

    // The fixture's lines that are events: the third is cut short, the seventh has two sources.
    static QList<QByteArray> eventLines()
    {
        QFile file(journal());
        if (!file.open(QIODevice::ReadOnly))
            return {};
        QList<QByteArray> lines = file.readAll().split('\n');
        if (!lines.isEmpty() && lines.last().isEmpty())
            lines.removeLast();
        lines.removeAt(6);
        lines.removeAt(2);
        return lines;
    }

    static QStringList messageIds(const QByteArray &pageOutput, QVector<int> *numbers = nullptr)
    {
        QStringList ids;
        const QList<QByteArray> lines = pageOutput.split('\n');
        for (const QByteArray &line : lines) {
            if (line.isEmpty())
                continue;
            QJsonParseError error{};
            const QJsonObject object = QJsonDocument::fromJson(line, &error).object();
            if (error.error != QJsonParseError::NoError)
                return {QStringLiteral("<invalid JSON: %1>").arg(QString::fromUtf8(line))};
            if (numbers)
                numbers->append(object.value(QStringLiteral("number")).toInt(-1));
            const QJsonArray parameters = object.value(QStringLiteral("parameters")).toArray();
            QString id;
            for (const QJsonValue &pair : parameters) {
                if (pair.toArray().at(0).toString() == QLatin1String("Message ID"))
                    id = pair.toArray().at(1).toString();
            }
            ids.append(id);
        }
        return ids;
    }

    static bool writeGzip(const QByteArray &content, const QString &path)
    {
        KCompressionDevice device(path, KCompressionDevice::GZip);
        if (!device.open(QIODevice::WriteOnly))
            return false;
        const bool written = device.write(content) == content.size();
        device.close();
        return written;
    }

private Q_SLOTS:
    void countsWithAndWithoutFilter_data()
    {
        QTest::addColumn<QStringList>("filter");
        QTest::addColumn<int>("expected");

        QTest::newRow("no filter") << QStringList() << 8;
        QTest::newRow("one worker, no narrowing") << QStringList{"--from", "2000-01-01T00:00:00Z", "--workers", "1"} << 8;
        QTest::newRow("priority word") << QStringList{"--priority", "warning"} << 1;
        QTest::newRow("priority number and journal word") << QStringList{"--priority", "1,err"} << 2;
        QTest::newRow("priority repeated") << QStringList{"--priority", "info", "--priority", "notice"} << 3;
        QTest::newRow("message id") << QStringList{"--id", "usb-device-attached"} << 1;
        QTest::newRow("event type") << QStringList{"--type", "Removable devices"} << 2;
        QTest::newRow("two event types") << QStringList{"--type", "Removable devices", "--type", "Security audit"} << 4;
        QTest::newRow("type excludes") << QStringList{"--type-excludes", "AUTH"} << 5;
        QTest::newRow("name contains") << QStringList{"--name-contains", "LOGIN"} << 2;
        QTest::newRow("name excludes") << QStringList{"--name-excludes", "user"} << 5;
        QTest::newRow("from, inclusive") << QStringList{"--from", "2024-03-06T23:59:59Z"} << 3;
        QTest::newRow("to, inclusive") << QStringList{"--to", "2024-03-03T12:15:00+00:00"} << 3;
        QTest::newRow("time window in another offset")
            << QStringList{"--from", "2024-03-02T12:30:00+03:00", "--to", "2024-03-05T10:00:00+03:00"} << 4;
        QTest::newRow("keyword") << QStringList{"--search", "root"} << 4;
        QTest::newRow("whole-word keyword") << QStringList{"--search", "root", "--whole-word"} << 2;
        QTest::newRow("case-sensitive keyword") << QStringList{"--search", "ROOT", "--case-sensitive"} << 0;
        QTest::newRow("keyword is literal") << QStringList{"--search", "back\\slash."} << 0;
        // Parameter conditions only test events that carry the parameter.
        QTest::newRow("integer parameter") << QStringList{"--param", "uid=1000"} << 6;
        QTest::newRow("boolean parameter") << QStringList{"--param", "result=failed"} << 6;
        QTest::newRow("boolean parameter, true") << QStringList{"--param", "result=yes"} << 7;
        QTest::newRow("signal by name") << QStringList{"--param", "signal=SIGTERM"} << 7;
        QTest::newRow("signal by number") << QStringList{"--param", "signal=9"} << 8;
        QTest::newRow("text parameter") << QStringList{"--param", "user=root"} << 6;
        QTest::newRow("two parameters") << QStringList{"--param", "user=root", "--param", "uid=0"} << 5;
        QTest::newRow("custom parameter") << QStringList{"--custom", "ticket_id=T-1"} << 7;
        QTest::newRow("criteria combine") << QStringList{"--priority", "info", "--type", "Authentication"} << 1;
    }

    void countsWithAndWithoutFilter()
    {
        QFETCH(QStringList, filter);
        QFETCH(int, expected);
        const Result result = run(QStringList{"count", journal()} + filter);
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.err, QByteArray());
        QCOMPARE(result.out, QByteArray::number(expected) + '\n');
    }

    void pagesAsJson()
    {
        QVector<int> numbers;
        Result result = run({"page", journal(), "--page", "1", "--per-page", "3"});
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(messageIds(result.out, &numbers),
                 QStringList({"auth-login", "auth-login-failed", "usb-device-attached"}));
        QCOMPARE(numbers, QVector<int>({1, 2, 3}));

        // The last page is short; the one after it is empty but not an error.
        numbers.clear();
        result = run({"page", journal(), "--page", "3", "--per-page", "3"});
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(messageIds(result.out, &numbers), QStringList({"auth-logout", "usb-device-detached"}));
        QCOMPARE(numbers, QVector<int>({7, 8}));
        result = run({"page", journal(), "--page", "4", "--per-page", "3"});
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, QByteArray());

        // Rows of a filtered page are numbered among the events that pass.
        numbers.clear();
        result = run({"page", journal(), "--page", "1", "--per-page", "10", "--priority", "info", "--workers", "2"});
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(messageIds(result.out, &numbers), QStringList({"usb-device-attached", "auth-logout"}));
        QCOMPARE(numbers, QVector<int>({1, 2}));

        // Every pair of one event, in the event's own order, with the texts intact.
        result = run({"page", journal(), "--page", "5", "--per-page", "1"});
        QCOMPARE(result.exitCode, 0);
        QVERIFY(result.out.endsWith('\n'));
        QCOMPARE(result.out.count('\n'), 1);
        const QJsonObject event = QJsonDocument::fromJson(result.out).object();
        QCOMPARE(event.value("number").toInt(), 5);
        const QJsonArray expected{
            QJsonArray{"Event name", "Note \"quoted\" with back\\slash and tab\there"},
            QJsonArray{"Message ID", "site-note"},
            QJsonArray{"Date and time", "2024-03-05T07:00:00Z"},
            QJsonArray{"Event type", "Site scripts"},
            QJsonArray{"Priority", "debug"},
            QJsonArray{"Host", "srv-01"},
            QJsonArray{"Source", "unrecognized"},
            QJsonArray{"ticket_id", "T-2"},
        };
        QCOMPARE(event.value("parameters").toArray(), expected);
    }

    void rawPagesReproduceLines()
    {
        const QList<QByteArray> lines = eventLines();
        QCOMPARE(lines.size(), 8);

        Result result = run({"page", journal(), "--page", "1", "--per-page", "100", "--raw"});
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, lines.join('\n') + '\n');

        result = run({"page", journal(), "--page", "2", "--per-page", "3", "--raw"});
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, lines.mid(3, 3).join('\n') + '\n');

        result = run({"page", journal(), "--page", "2", "--per-page", "1", "--raw", "--type", "Security audit"});
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, lines.at(5) + '\n');
    }

    void summaryByPriorityAndSource()
    {
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        const QDateTime now = QDateTime::currentDateTimeUtc();
        const auto line = [&now](qint64 secondsAgo, const char *priority, const char *source) {
            return QStringLiteral("{\"ISODATE\":\"%1\",\"PRIORITY\":\"%2\",\"MSG\":{\"%3\":{\"message_id\":\"m\"}}}\n")
                .arg(now.addSecs(-secondsAgo).toString(Qt::ISODate), QLatin1String(priority), QLatin1String(source))
                .toUtf8();
        };
        QFile file(dir.filePath("recent.log"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(line(30 * 60, "warning", "velmo-auth"));
        file.write(line(3 * 3600, "warning", "velmo-auth"));
        file.write(line(3 * 86400, "warning", "velmo-auth"));
        file.write(line(8 * 86400, "warning", "velmo-auth"));
        file.write(line(-3600, "warning", "velmo-auth"));
        file.write(line(60, "err", "somewhere-else"));
        file.write(line(60, "Warning", "velmo-auth"));
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
        QFile plain(journal());
        QVERIFY(plain.open(QIODevice::ReadOnly));
        const QString rotation = dir.filePath("events.1.gz");
        QVERIFY(writeGzip(plain.readAll(), rotation));

        Result result = run({"count", rotation}, scratch.path());
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, run({"count", journal()}).out);
        result = run({"count", rotation, "--priority", "info"}, scratch.path());
        QCOMPARE(result.out, QByteArray("2\n"));
        result = run({"page", rotation, "--page", "1", "--per-page", "100", "--raw"}, scratch.path());
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, eventLines().join('\n') + '\n');
        // The unpacked copy goes away with the process.
        QCOMPARE(QDir(scratch.path()).entryList(QDir::Files | QDir::Hidden), QStringList());

    }

    void errorsExitWithMessage_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("message");

        const QString j = journal();
        QTest::newRow("no command") << QStringList() << 2 << "no command";
        QTest::newRow("unknown command") << QStringList{"tally", j} << 2 << "unknown command 'tally'";
        QTest::newRow("no file") << QStringList{"count"} << 2 << "no journal file";
        QTest::newRow("unknown option") << QStringList{"count", j, "--colour"} << 2 << "colour";
        QTest::newRow("page without size") << QStringList{"page", j, "--page", "1"} << 2 << "--per-page";
        QTest::newRow("page zero") << QStringList{"page", j, "--page", "0", "--per-page", "5"} << 2 << "--page";
        QTest::newRow("negative page size") << QStringList{"page", j, "--page", "1", "--per-page", "-5"} << 2
                                            << "--per-page";
        QTest::newRow("page option on count") << QStringList{"count", j, "--raw"} << 2 << "--raw";
        QTest::newRow("filter on summary") << QStringList{"summary", j, "--priority", "1"} << 2 << "summary";
        QTest::newRow("bad priority") << QStringList{"count", j, "--priority", "loud"} << 2 << "'loud'";
        QTest::newRow("priority out of range") << QStringList{"count", j, "--priority", "9"} << 2 << "'9'";
        QTest::newRow("bad date") << QStringList{"count", j, "--from", "last tuesday"} << 2 << "--from";
        QTest::newRow("reversed window") << QStringList{"count", j, "--from", "2024-03-05T00:00:00",
                                                        "--to", "2024-03-01T00:00:00"} << 2 << "--to";
        QTest::newRow("unknown parameter") << QStringList{"count", j, "--param", "colour=red"} << 2 << "'colour'";
        QTest::newRow("parameter without value") << QStringList{"count", j, "--param", "uid"} << 2 << "KEY=VALUE";
        QTest::newRow("integer parameter as text") << QStringList{"count", j, "--param", "uid=alice"} << 2 << "'alice'";
        QTest::newRow("boolean parameter as text") << QStringList{"count", j, "--param", "result=maybe"} << 2
                                                   << "'maybe'";
        QTest::newRow("time parameter") << QStringList{"count", j, "--param", "time=2024"} << 2 << "'time'";
        QTest::newRow("unknown custom parameter") << QStringList{"count", j, "--custom", "desk=7"} << 2 << "'desk'";
        QTest::newRow("empty exclusion") << QStringList{"count", j, "--name-excludes", ""} << 2 << "--name-excludes";
        QTest::newRow("refinement without keyword") << QStringList{"count", j, "--whole-word"} << 2 << "--search";
        QTest::newRow("zero workers") << QStringList{"count", j, "--workers", "0"} << 2 << "--workers";
        QTest::newRow("missing file") << QStringList{"count", fixture("no-such.log")} << 1
                                      << "cannot open " + fixture("no-such.log");
        QTest::newRow("directory") << QStringList{"summary", fixture("sysroot")} << 1 << "cannot open";
        QTest::newRow("not a journal") << QStringList{"page", QStringLiteral(__FILE__),
                                                      "--page", "1", "--per-page", "1"}
                                       << 1 << "not an events journal";
    }

    void errorsExitWithMessage()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, exitCode);
        QFETCH(QString, message);
        const Result result = run(arguments);
        QCOMPARE(result.exitCode, exitCode);
        QCOMPARE(result.out, QByteArray());
        QVERIFY2(result.err.startsWith("nimb-events: "), result.err.constData());
        QVERIFY2(QString::fromUtf8(result.err).contains(message), result.err.constData());
    }

    void emptyJournalHasNoEvents()
    {
        QTemporaryDir dir;
        QFile empty(dir.filePath("events"));
        QVERIFY(empty.open(QIODevice::WriteOnly));
        empty.close();
        Result result = run({"count", empty.fileName(), "--priority", "1"});
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, QByteArray("0\n"));
        result = run({"page", empty.fileName(), "--page", "1", "--per-page", "10"});
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, QByteArray());
    }
};

QTEST_GUILESS_MAIN(NimbEventsTest)
#include "test_nimb_events.moc"
