// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later
#include "GoToTimeDialog.h"

#include "ui_GoToTimeDialog.h"

#include <QLocale>
#include <QRegularExpression>

GoToTimeDialog::GoToTimeDialog(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::GoToTimeDialog>())
{
    ui->setupUi(this);
    // The locale's own order of day, month and year, always with seconds: journal
    // times are to the second and a time between two events must be reachable.
    QString format = QLocale().dateTimeFormat(QLocale::ShortFormat);
    if (!format.contains(QLatin1Char('s')))
        format.replace(QLatin1String("mm"), QLatin1String("mm:ss"));
    format.replace(QRegularExpression(QStringLiteral("\\byy\\b")), QStringLiteral("yyyy"));
    ui->dateTimeEdit->setDisplayFormat(format);
    ui->dateTimeEdit->setTimeSpec(Qt::LocalTime);
    setDateTime(QDateTime::currentDateTime());
}

GoToTimeDialog::~GoToTimeDialog() = default;

QDateTime GoToTimeDialog::dateTime() const
{
    return ui->dateTimeEdit->dateTime();
}

void GoToTimeDialog::setDateTime(const QDateTime &time)
{
    ui->dateTimeEdit->setDateTime(time.toLocalTime());
    ui->dateTimeEdit->setFocus();
}
