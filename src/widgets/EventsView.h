// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QTableView>

class FilterPack;
class HighlightDelegate;

// The events table. Tells its owner where it is, so that the loading overlay can
// cover it, and asks for details on Return/Enter.
class EventsView : public QTableView
{
    Q_OBJECT
public:
    explicit EventsView(QWidget *parent = nullptr);

    // Marks the filter's keyword in the cells; a pack without a keyword marks nothing.
    void setHighlight(const FilterPack &filter);

Q_SIGNALS:
    void geometryChanged(int x, int y, int width, int height);
    void showDetailsRequest();

protected:
    void moveEvent(QMoveEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    HighlightDelegate *m_highlight;
};
