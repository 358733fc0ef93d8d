// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QDateTime>
#include <QDialog>
#include <QString>

#include <memory>

namespace Ui
{
class LogInfoWindow;
}

// Describes the file behind a tab: path, size, times, the lines its reading passed
// over and, for the main log, the rotation scheme the logging service applies to it.
class LogInfoWindow : public QDialog
{
    Q_OBJECT
public:
    enum RotationKind : qint32 {
        NoRotation = 0,
        SizeBytes = 1,
        SizeKilobytes = 2,
        SizeMegabytes = 3,
        SizeGigabytes = 4,
        Daily = 5,
        Weekly = 6,
        Monthly = 7,
        Yearly = 8,
    };

    struct Rotation {
        qint32 kind = NoRotation;
        quint32 size = 0;
    };

    struct LogFileInfo {
        QString path;
        quint64 size = 0;
        QDateTime birthTime;
        QDateTime lastModified;
        Rotation rotation;
        // Lines passed over because they are no event; -1 while not known.
        int malformedLines = -1;
    };

    explicit LogInfoWindow(QWidget *parent = nullptr);
    ~LogInfoWindow() override;

    // The record of a log file; the rotation is looked up only for the main log.
    static LogFileInfo infoFor(const QString &path, bool mainLog);
    // The rule for `logPath` in a log-rotation file; NoRotation when there is none.
    static Rotation readRotation(const QString &logrotateFile, const QString &logPath);
    // The size as the dialog words it, e.g. "2 kilobytes".
    static QString sizeText(quint64 bytes);
    // The rotation as the dialog words it; empty for NoRotation.
    static QString rotationText(const Rotation &rotation);

    void fill(const LogFileInfo &info);
    // Shortcut for fill(infoFor(path, mainLog)) with the given number of malformed lines.
    void fill(const QString &path, bool mainLog, int malformedLines = -1);

private:
    std::unique_ptr<Ui::LogInfoWindow> ui;
};
