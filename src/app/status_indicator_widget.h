// A status light: a green dot, a red dot or a spinning wheel of ten spokes, drawn without
// an image. The states are numbered as those of the signal and of the TCP connection: 0
// good, 1 bad, 2 busy. Any other number draws nothing. Main thread only.
#pragma once

#include <QWidget>

class QTimer;

class StatusIndicatorWidget : public QWidget
{
    Q_OBJECT

public:
    explicit StatusIndicatorWidget(QWidget* parent = nullptr);

    // Shows the state. 2 starts the wheel where it last stood, 0 and 1 stop it, any other
    // number leaves a running timer running.
    void setState(int value);

public slots:
    // Moves the bright spoke on by one; ten of them are a full turn.
    void rotate();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int state = 0;
    int step = 0; // the brightest spoke, 0 to 9
    QTimer* timer;
};
