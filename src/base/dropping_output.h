// Text on its way to a descriptor that may not take it: a pipe that nobody reads, a stopped
// terminal. Writing never waits; what can't be taken at once is dropped, whole where nothing of it
// was taken.
//
// The descriptor keeps its flags, which other processes may share. Any thread. For systems with
// POSIX descriptors; SIGPIPE is the caller's.
#pragma once

#include <QByteArray>
#include <QMutex>

class DroppingOutput
{
public:
    // Not owned; stays open while this lives.
    explicit DroppingOutput(int descriptor);
    ~DroppingOutput();
    DroppingOutput(const DroppingOutput&) = delete;
    DroppingOutput& operator=(const DroppingOutput&) = delete;

    // After a line of which only a part was taken the next one begins on a line of its own.
    void write(const QByteArray& line);

private:
    qint64 writeSome(const char* bytes, int size) const;

    const int descriptor;
    const int unblocked; // the same pipe or terminal, opened again for itself; -1 if it can't be
    QMutex mutex;
    bool cutOff = false;
};

// From now on the messages of this process (qDebug, qWarning ...) go to standard error this way,
// in the form that they would have had.
void dropMessagesThatWait();
