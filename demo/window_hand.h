// A hand on the real window: finds its parts by their names and uses mouse and keyboard on them.
#pragma once

#include "app/main_window.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QLabel>
#include <QTcpServer>
#include <QtTest>

template <typename Widget> Widget* part(MainWindow& window, const char* name)
{
    return window.findChild<Widget*>(QLatin1String(name));
}

inline void type(MainWindow& window, const char* name, const QString& value)
{
    auto* box = part<QAbstractSpinBox>(window, name);
    box->setFocus();
    box->selectAll();
    QTest::keyClicks(box, value);
    QTest::keyClick(box, Qt::Key_Return);
}

inline void click(MainWindow& window, const char* name)
{
    QTest::mouseClick(part<QAbstractButton>(window, name), Qt::LeftButton);
}

// False when the calculation did not end in valid data within a minute.
inline bool calculate(MainWindow& window)
{
    click(window, "calc_fft_button");
    return QTest::qWaitFor(
        [&window] {
            return part<QLabel>(window, "fft_status_label")->text() == QLatin1String("Data valid");
        },
        60000);
}

// The port that the window listens on: 1000 where the system lets it, otherwise a free one.
inline quint16 reachablePort(MainWindow& window)
{
    // The newest server is the present one; a former one goes a little later.
    const QTcpServer* server = window.findChildren<QTcpServer*>().constLast();
    if (server->isListening()) {
        return server->serverPort();
    }
    QTcpServer free;
    free.listen(QHostAddress::LocalHost);
    const quint16 port = free.serverPort();
    free.close();
    type(window, "port_input", QString::number(port));
    return port;
}
