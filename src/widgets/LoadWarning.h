#pragma once

#include <QWidget>

#include <memory>

namespace Ui
{
class LoadWarning;
}

// The busy overlay laid over the events table while a count or a page load runs.
class LoadWarning : public QWidget
{
    Q_OBJECT
public:
    explicit LoadWarning(QWidget *parent = nullptr);
    ~LoadWarning() override;

    void setPercent(int percent);

public Q_SLOTS:
    void placeOver(int x, int y, int width, int height);

private:
    std::unique_ptr<Ui::LoadWarning> ui;
};
