// The schematic of the occupied band below the notch table. So far only its black ground.
#pragma once

#include <QWidget>

struct MeasurementSetup;

class GraphWidget : public QWidget
{
    Q_OBJECT

public:
    explicit GraphWidget(QWidget* parent);

    void setSetup(MeasurementSetup*) {}

signals:
    void graphChanged();

protected:
    void paintEvent(QPaintEvent* event) override;
};
