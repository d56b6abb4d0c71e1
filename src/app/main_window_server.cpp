// The status server as the window shows it. The server hears its sockets itself; the slots named
// after their reports do by hand what it then does.
#include "app/main_window.h"
#include "status/status_server.h"
#include "ui_main_window.h"

void MainWindow::on_port_input_valueChanged(int value)
{
    setup.tcpPort = static_cast<quint16>(value);
    statusServer->close();
    statusServer->listen(setup.tcpPort);
    notifyPropertyChanged(ui->port_input);
}

void MainWindow::new_connection()
{
    statusServer->takeClient();
}

void MainWindow::read_connection()
{
    statusServer->answerRequest();
}

void MainWindow::disconnected()
{
    statusServer->dropClient();
}

void MainWindow::showClient(bool connected)
{
    setup.tcpState = connected ? 0 : 1;
    notifyPropertyChanged();
}
