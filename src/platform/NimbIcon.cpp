// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "NimbIcon.h"

#include <KIconEngine>
#include <KIconLoader>

#include <QPainter>
#include <QPixmap>

namespace {
// The sizes toolbars, menus and line edits ask for; others are scaled from these.
const int kSizes[] = {16, 22, 24, 32, 48, 64};

QRect emblemRect(int size, Qt::Corner corner)
{
    const int emblem = size / 2;
    const int far = size - emblem;
    switch (corner) {
    case Qt::TopLeftCorner:
        return QRect(0, 0, emblem, emblem);
    case Qt::TopRightCorner:
        return QRect(far, 0, emblem, emblem);
    case Qt::BottomLeftCorner:
        return QRect(0, far, emblem, emblem);
    case Qt::BottomRightCorner:
        break;
    }
    return QRect(far, far, emblem, emblem);
}
}

QIcon NimbIcon::themeIcon(const QString &name)
{
    if (name.isEmpty())
        return QIcon();
    QIcon icon = QIcon::fromTheme(name);
    if (!icon.isNull())
        return icon;
    KIconLoader *loader = KIconLoader::global();
    if (loader->iconPath(name, KIconLoader::Small, true).isEmpty())
        return QIcon();
    return QIcon(new KIconEngine(name, loader));
}

QIcon NimbIcon::withEmblems(const QString &themeIconName, const QVector<Emblem> &emblems)
{
    const QIcon base = themeIcon(themeIconName);
    if (base.isNull())
        return QIcon();

    QVector<QPair<QIcon, Qt::Corner>> found;
    for (const Emblem &emblem : emblems) {
        const QIcon icon = themeIcon(emblem.name);
        if (!icon.isNull())
            found.append({icon, emblem.corner});
    }
    if (found.isEmpty())
        return base;

    QIcon result;
    for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Disabled}) {
        for (const int size : kSizes) {
            QPixmap canvas(size, size);
            canvas.fill(Qt::transparent);
            QPainter painter(&canvas);
            painter.setRenderHint(QPainter::SmoothPixmapTransform);
            // Drawing into a rectangle rather than at a point keeps the layout
            // right whatever size or pixel ratio the theme hands back.
            painter.drawPixmap(QRect(0, 0, size, size), base.pixmap(size, mode));
            for (const auto &emblem : qAsConst(found)) {
                const QRect rect = emblemRect(size, emblem.second);
                painter.drawPixmap(rect, emblem.first.pixmap(rect.size(), mode));
            }
            painter.end();
            result.addPixmap(canvas, mode);
        }
    }
    return result;
}

QIcon NimbIcon::withEmblems(const QString &themeIconName, const QString &emblemName, Qt::Corner corner)
{
    return withEmblems(themeIconName, QVector<Emblem>{{emblemName, corner}});
}
