// What clients ask, line by line in the debug output. An ordinary client's requests stand there
// whole. Beyond 64 KiB within a second, one line at the second's end tells how many more there
// were.
//
// Main thread; tells the rest through the event loop.
#pragma once

#include <QString>
#include <QTimer>

class RequestLog
{
public:
    RequestLog();
    // What was not yet told is told.
    ~RequestLog();
    RequestLog(const RequestLog&) = delete;
    RequestLog& operator=(const RequestLog&) = delete;

    void note(const QString& request);

private:
    void tellRest();

    QTimer second; // runs from a first request on
    int left = 0;  // bytes, until the second is over
    quint64 more = 0;
};
