// The schematic of the occupied band below the notch table. So far only its black ground.
#pragma once

#include <QWidget>

class GraphWidget : public QWidget
{
    Q_OBJECT

public:
    explicit GraphWidget(QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;
};
