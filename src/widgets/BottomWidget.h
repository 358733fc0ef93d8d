// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QWidget>

#include <memory>

class Event;
class FilterPack;
class HighlightDelegate;

namespace Ui
{
class BottomWidget;
}

// The panel under a tab's table: the selected event's parameters and the criteria
// of the tab's filter.
class BottomWidget : public QWidget
{
    Q_OBJECT
public:
    explicit BottomWidget(QWidget *parent = nullptr);
    ~BottomWidget() override;

    // Null clears the parameter table.
    void showEventDetails(const Event *event);
    // One row per active criterion; an unfiltered tab passes a default pack. The
    // filter's keyword is marked in the parameter values.
    void showFilter(const FilterPack &filter);

private:
    std::unique_ptr<Ui::BottomWidget> ui;
    HighlightDelegate *m_highlight;
};
