// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "LogInfoWindow.h"

#include "ui_LogInfoWindow.h"

#include "SystemPaths.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QScreen>

#include <algorithm>
#include <limits>

namespace
{
constexpr int kWidestPathChars = 90;

// The one fixed form the dialog has always shown, in English whatever the language: Qt's
// own text form would mix the locale's day and month names into the English order.
// Not every file system records a birth time.
QString timeText(const QDateTime &time)
{
    return time.isValid() ? QLocale::c().toString(time, QStringLiteral("ddd MMM d HH:mm:ss yyyy"))
                          : LogInfoWindow::tr("unknown");
}

QString unitsTextOf(int n, qint32 kind)
{
    switch (kind) {
    case LogInfoWindow::SizeKilobytes:
        return LogInfoWindow::tr("%n kilobytes", "", n);
    case LogInfoWindow::SizeMegabytes:
        return LogInfoWindow::tr("%n megabytes", "", n);
    case LogInfoWindow::SizeGigabytes:
        return LogInfoWindow::tr("%n gigabytes", "", n);
    default:
        return LogInfoWindow::tr("%n bytes", "", n);
    }
}

// A whole number of units counts, and so picks the plural form of its unit.
QString unitsText(quint64 count, qint32 kind)
{
    if (count <= quint64(std::numeric_limits<int>::max()))
        return unitsTextOf(int(count), kind);
    // Plural forms take an int. A stand-in with the same last six digits takes the
    // same form in every language the rules know, and is then swapped for the count.
    const int standIn = int(count % 1000000 + 1000000);
    return unitsTextOf(standIn, kind).replace(QString::number(standIn), QString::number(count));
}

// A fraction of a unit keeps the plural the dialog has always used in English; the
// decimal separator is the user's.
QString fractionText(double units)
{
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    return locale.toString(units, 'g', 6);
}

// The rotation file names logs by their system paths; a test or demo tree prefixes
// ours with its root.
QString systemPathOf(const QString &path)
{
    const QString root = SystemPaths::sysroot();
    if (root.isEmpty() || root == QLatin1String("/") || !path.startsWith(root + QLatin1Char('/')))
        return path;
    return path.mid(root.size());
}

// "size N", "size NK", "size NM" or "size NG"; false when the line is no such rule.
bool parseSizeRule(const QString &line, LogInfoWindow::Rotation *rotation)
{
    QStringList parts = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    parts.removeAll(QStringLiteral(" "));
    parts.removeAll(QStringLiteral("\t"));
    parts.removeAll(QStringLiteral("\n"));
    if (parts.size() != 2)
        return false;
    QString number = parts.at(1).simplified();
    qint32 kind = LogInfoWindow::SizeBytes;
    if (number.endsWith(QLatin1Char('K'), Qt::CaseInsensitive))
        kind = LogInfoWindow::SizeKilobytes;
    else if (number.endsWith(QLatin1Char('M'), Qt::CaseInsensitive))
        kind = LogInfoWindow::SizeMegabytes;
    else if (number.endsWith(QLatin1Char('G'), Qt::CaseInsensitive))
        kind = LogInfoWindow::SizeGigabytes;
    if (kind != LogInfoWindow::SizeBytes)
        number.chop(1);
    bool ok = false;
    const uint size = number.toUInt(&ok, 10);
    if (!ok) {
        rotation->kind = LogInfoWindow::NoRotation;
        return true;
    }
    rotation->kind = kind;
    rotation->size = size;
    return true;
}
}

LogInfoWindow::LogInfoWindow(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::LogInfoWindow>())
{
    ui->setupUi(this);
    fill(LogFileInfo());
}

LogInfoWindow::~LogInfoWindow() = default;

LogInfoWindow::LogFileInfo LogInfoWindow::infoFor(const QString &path, bool mainLog)
{
    const QFileInfo file(path);
    LogFileInfo info;
    info.path = file.absoluteFilePath();
    info.size = quint64(file.size());
    info.birthTime = file.birthTime();
    info.lastModified = file.lastModified();
    if (mainLog)
        info.rotation = readRotation(SystemPaths::logrotateFile(), systemPathOf(info.path));
    return info;
}

LogInfoWindow::Rotation LogInfoWindow::readRotation(const QString &logrotateFile, const QString &logPath)
{
    Rotation rotation;
    QFile file(logrotateFile);
    if (!file.open(QIODevice::ReadOnly))
        return rotation;
    static const QStringList periods{QStringLiteral("daily"), QStringLiteral("weekly"), QStringLiteral("monthly"),
                                     QStringLiteral("yearly")};
    bool matching = false;
    while (!file.atEnd()) {
        const QString line = QString::fromLatin1(file.readLine()).simplified();
        if (!matching) {
            matching = line == logPath;
            continue;
        }
        const int period = periods.indexOf(line);
        if (period >= 0) {
            rotation.kind = Daily + period;
            break;
        }
        if (line.startsWith(QLatin1String("size")))
            parseSizeRule(line, &rotation);
    }
    return rotation;
}

QString LogInfoWindow::sizeText(quint64 bytes)
{
    // Uneven on purpose: a unit is used only once the size is more than one whole of it.
    const double gigabytes = double(bytes) / 1073741824.0;
    if (gigabytes > 1.0)
        return tr("%1 gigabytes", "a size, possibly fractional").arg(fractionText(gigabytes));
    const double megabytes = double(bytes) / 1048576.0;
    if (megabytes > 1.0)
        return tr("%1 megabytes", "a size, possibly fractional").arg(fractionText(megabytes));
    if (bytes < 2048)
        return unitsText(bytes, SizeBytes);
    return unitsText(bytes >> 10, SizeKilobytes);
}

QString LogInfoWindow::rotationText(const Rotation &rotation)
{
    switch (rotation.kind) {
    case SizeBytes:
    case SizeKilobytes:
    case SizeMegabytes:
    case SizeGigabytes:
        return unitsText(quint64(rotation.size), rotation.kind);
    case Daily:
        return tr("daily");
    case Weekly:
        return tr("weekly");
    case Monthly:
        return tr("monthly");
    case Yearly:
        return tr("yearly");
    default:
        return QString();
    }
}

void LogInfoWindow::fill(const LogFileInfo &info)
{
    // A path longer than a reasonable dialog is shortened in the middle, where it
    // least hurts; the whole of it stays in the tool tip.
    int widest = ui->path->fontMetrics().averageCharWidth() * kWidestPathChars;
    if (const QScreen *screen = this->screen()) {
        // A dialog is kept to two thirds of the screen; the captions and margins take their share.
        int captions = 0;
        for (const QLabel *caption : {ui->labelPath, ui->labelSize, ui->labelBirthTime, ui->labelLastModified,
                                      ui->labelRotation, ui->labelMalformed})
            captions = std::max(captions, caption->sizeHint().width());
        const QMargins margins = layout()->contentsMargins();
        const int room = screen->availableGeometry().width() * 2 / 3 - captions
                         - ui->formLayout->spacing() - margins.left() - margins.right() - 8;
        widest = std::max(std::min(widest, room), ui->path->minimumWidth());
    }
    ui->path->setText(ui->path->fontMetrics().elidedText(info.path, Qt::ElideMiddle, widest));
    ui->path->setToolTip(info.path);
    ui->size->setText(sizeText(info.size));
    ui->birth->setText(timeText(info.birthTime));
    ui->modified->setText(timeText(info.lastModified));
    const QString rotation = rotationText(info.rotation);
    ui->rotation->setText(rotation);
    ui->labelRotation->setVisible(!rotation.isEmpty());
    ui->rotation->setVisible(!rotation.isEmpty());
    const bool malformedKnown = info.malformedLines >= 0;
    ui->malformed->setText(malformedKnown ? tr("%n skipped", "malformed lines", info.malformedLines) : QString());
    ui->labelMalformed->setVisible(malformedKnown);
    ui->malformed->setVisible(malformedKnown);
    // The layouts keep their old size hints until the next event loop pass; the
    // dialog is to fit the new texts now.
    ui->formLayout->invalidate();
    layout()->invalidate();
    adjustSize();
}

void LogInfoWindow::fill(const QString &path, bool mainLog, int malformedLines)
{
    LogFileInfo info = infoFor(path, mainLog);
    info.malformedLines = malformedLines;
    fill(info);
}
