#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <QtTest>

namespace
{
const QString kCatalogue = QStringLiteral(NIMB_SOURCE_DIR "/translations/nimb-event-viewer_ru.ts");

struct Message
{
    QString context;
    QString source;
    bool numerus = false;
    bool unfinished = false;
    QStringList translations; // one text, or one per plural form
};

QString label(const Message &message)
{
    return message.context + QStringLiteral(": \"") + message.source + QLatin1Char('"');
}

QVector<Message> readCatalogue(const QString &path, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = file.errorString();
        return {};
    }
    QVector<Message> messages;
    QString context;
    QXmlStreamReader xml(&file);
    while (!xml.atEnd()) {
        xml.readNext();
        if (!xml.isStartElement())
            continue;
        if (xml.name() == QLatin1String("name")) {
            context = xml.readElementText();
            continue;
        }
        if (xml.name() != QLatin1String("message"))
            continue;
        Message message;
        message.context = context;
        message.numerus = xml.attributes().value(QLatin1String("numerus")) == QLatin1String("yes");
        while (xml.readNextStartElement()) {
            if (xml.name() == QLatin1String("source")) {
                message.source = xml.readElementText();
            } else if (xml.name() == QLatin1String("translation")) {
                message.unfinished = !xml.attributes().value(QLatin1String("type")).isEmpty();
                if (message.numerus) {
                    while (xml.readNextStartElement())
                        message.translations << xml.readElementText();
                } else {
                    message.translations << xml.readElementText();
                }
            } else {
                xml.skipCurrentElement();
            }
        }
        messages << message;
    }
    if (xml.hasError())
        *error = xml.errorString();
    return messages;
}

QSet<QString> placeholders(const QString &text)
{
    static const QRegularExpression marker(QStringLiteral("%(\\d+|n)"));
    QSet<QString> found;
    for (auto it = marker.globalMatch(text); it.hasNext();)
        found << it.next().captured();
    return found;
}

bool hasAccelerator(const QString &text)
{
    return QString(text).remove(QStringLiteral("&&")).contains(QLatin1Char('&'));
}

QString edgeSpace(const QString &text)
{
    static const QRegularExpression edges(QStringLiteral("^(\\s*).*?(\\s*)$"),
                                          QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = edges.match(text);
    return match.captured(1) + QLatin1Char('|') + match.captured(2);
}
}

class TestCatalogue : public QObject
{
    Q_OBJECT

private slots:
    // The catalogue is brought up to date exactly as a translator would do it; afterwards it must
    // hold every text of the sources, and only those, each with a finished translation.
    void everySourceTextIsTranslated()
    {
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        const QString copy = dir.filePath(QStringLiteral("catalogue_ru.ts"));
        QVERIFY(QFile::copy(kCatalogue, copy));

        QProcess lupdate;
        lupdate.setProcessChannelMode(QProcess::MergedChannels);
        lupdate.start(QStringLiteral(NIMB_LUPDATE),
                      {QStringLiteral("-extensions"), QStringLiteral("cpp,h,ui,def"), QStringLiteral("-locations"),
                       QStringLiteral("none"), QStringLiteral("-no-obsolete"), QStringLiteral(NIMB_SOURCE_DIR "/src"),
                       QStringLiteral("-ts"), copy});
        QVERIFY2(lupdate.waitForFinished(60000), qPrintable(lupdate.errorString()));
        QVERIFY2(lupdate.exitStatus() == QProcess::NormalExit && lupdate.exitCode() == 0,
                 lupdate.readAll().constData());

        QString error;
        const QVector<Message> before = readCatalogue(kCatalogue, &error);
        QVERIFY2(error.isEmpty(), qPrintable(error));
        const QVector<Message> after = readCatalogue(copy, &error);
        QVERIFY2(error.isEmpty(), qPrintable(error));

        QSet<QString> known, current;
        for (const Message &message : before)
            known << label(message);
        QStringList problems;
        for (const Message &message : after) {
            current << label(message);
            if (!known.contains(label(message)))
                problems << QStringLiteral("not in the catalogue: ") + label(message);
            else if (message.unfinished || message.translations.isEmpty()
                     || message.translations.contains(QString()))
                problems << QStringLiteral("untranslated: ") + label(message);
        }
        for (const QString &stale : known - current)
            problems << QStringLiteral("no longer in the sources: ") + stale;
        QVERIFY2(problems.isEmpty(), qPrintable(problems.join(QLatin1Char('\n'))));

        // Scanning must have reached the forms and the parameter table, or nothing above was checked.
        for (const QString &expected : {QStringLiteral("QObject: \"Account type\""), QStringLiteral("PageWidget: \"of 1\""),
                                        QStringLiteral("MainWindow: \"System events journal\"")})
            QVERIFY2(current.contains(expected), qPrintable(expected));
    }

    // A translation that drops a placeholder breaks arg(); one that drops the ampersand leaves a
    // menu without its key; spaces at the edges are where the program joins texts together.
    void translationsKeepWhatTheProgramRelies()
    {
        QString error;
        const QVector<Message> messages = readCatalogue(kCatalogue, &error);
        QVERIFY2(error.isEmpty(), qPrintable(error));
        QVERIFY(!messages.isEmpty());
        QStringList problems;
        for (const Message &message : messages) {
            if (message.numerus && message.translations.size() != 3)
                problems << QStringLiteral("not three plural forms: ") + label(message);
            for (const QString &translation : message.translations) {
                if (translation.isEmpty())
                    continue; // reported by the other check
                if (placeholders(translation) != placeholders(message.source))
                    problems << QStringLiteral("placeholders differ: ") + label(message);
                if (hasAccelerator(translation) != hasAccelerator(message.source))
                    problems << QStringLiteral("accelerator differs: ") + label(message);
                if (edgeSpace(translation) != edgeSpace(message.source))
                    problems << QStringLiteral("leading or trailing space differs: ") + label(message);
            }
        }
        QVERIFY2(problems.isEmpty(), qPrintable(problems.join(QLatin1Char('\n'))));
    }
};

QTEST_GUILESS_MAIN(TestCatalogue)
#include "test_catalogue.moc"
