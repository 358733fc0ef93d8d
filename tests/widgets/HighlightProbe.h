// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QAbstractItemView>
#include <QImage>
#include <QPalette>

// Reads highlight marks off a view as drawn: under a white, blue-highlighted palette
// a marked cell holds pixels of clearly blue hue, an unmarked one only greys.
namespace highlight
{
inline void usePlainPalette(QAbstractItemView *view)
{
    QPalette palette = view->palette();
    for (QPalette::ColorRole role : {QPalette::Base, QPalette::AlternateBase})
        palette.setColor(role, Qt::white);
    palette.setColor(QPalette::Text, Qt::black);
    palette.setColor(QPalette::Highlight, QColor(0, 0, 255));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    view->setPalette(palette);
    view->clearSelection();
    view->setCurrentIndex(QModelIndex());
}

inline int markedPixels(const QImage &image, const QRect &rect)
{
    int marked = 0;
    const QRect inside = rect.intersected(image.rect());
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        for (int x = inside.left(); x <= inside.right(); ++x) {
            const QColor c = image.pixelColor(x, y);
            marked += c.blue() - c.red() > 60 && c.blue() - c.green() > 60;
        }
    }
    return marked;
}

// The cells of `column` whose drawing holds a mark.
inline QVector<int> markedRows(QAbstractItemView *view, int column)
{
    const QImage image = view->viewport()->grab().toImage();
    const qreal ratio = image.devicePixelRatio();
    QVector<int> rows;
    for (int row = 0; row < view->model()->rowCount(); ++row) {
        const QRect cell = view->visualRect(view->model()->index(row, column));
        const QRect scaled(cell.topLeft() * ratio, cell.size() * ratio);
        if (!cell.isEmpty() && markedPixels(image, scaled) > 0)
            rows.append(row);
    }
    return rows;
}
}
