// SIGINT and SIGTERM as a Qt signal, so that the process ends through its event loop.
#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <memory>

class StopSignals : public QObject
{
    Q_OBJECT

public:
    // At most one in a process at a time.
    explicit StopSignals(QObject* parent = nullptr);
    ~StopSignals() override;
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

signals:
    void requested();

private:
    void takeByte();

    int ends[2] = {-1, -1}; // the handler writes into the first, the notifier reads the second
    std::unique_ptr<QSocketNotifier> notifier;
};
