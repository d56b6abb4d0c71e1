// A serial line without a wire: the system gives it a name, under which a program opens its other
// end. Bytes only, at any speed. Runs in the event loop of its thread.
#pragma once

#include <QIODevice>
#include <QSocketNotifier>

#include <memory>

class PseudoTerminal : public QIODevice
{
    Q_OBJECT

public:
    PseudoTerminal() = default;
    ~PseudoTerminal() override;
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    // False when the system has none left; errorString() tells.
    bool start();

    // Of the other end, such as "/dev/pts/3"; empty before start().
    QString name() const { return otherEnd; }

    // Forgets what nobody has read at the other end.
    void discardUnsent();

    bool isSequential() const override { return true; }
    qint64 bytesAvailable() const override;
    qint64 bytesToWrite() const override { return unsent.size(); }

protected:
    qint64 readData(char* data, qint64 most) override;
    qint64 writeData(const char* data, qint64 size) override;

private:
    void receive();
    void send();

    int ours = -1;
    int theirs = -1; // kept open, or reading fails while no program has the other end
    QString otherEnd;
    QByteArray received;
    QByteArray unsent;
    std::unique_ptr<QSocketNotifier> readable;
    std::unique_ptr<QSocketNotifier> writable;
};
