// The control side of the stand-in VISA library, which the program finds as "visa64".
#pragma once

#include <QLibrary>

class StandIn
{
public:
    StandIn()
    {
        library.load();
        call<void (*)()>("standInReset")();
    }
    QByteArray log() { return call<const char* (*)()>("standInTakeLog")(); }
    void fail(const char* function, int status)
    {
        call<void (*)(const char*, qint32)>("standInFail")(function, status);
    }
    void answer(const char* written, const char* text)
    {
        call<void (*)(const char*, const char*)>("standInAnswer")(written, text);
    }

    // From now on every session has a number of its own, from 42, and a closed one is refused.
    void tellSessionsApart() { call<void (*)()>("standInTellSessionsApart")(); }
    // The answer to the text over the resource waits for release().
    void hold(const char* resource, const char* written)
    {
        call<void (*)(const char*, const char*)>("standInHold")(resource, written);
    }
    void release() { call<void (*)()>("standInRelease")(); }

private:
    template <class Function> Function call(const char* name)
    {
        return reinterpret_cast<Function>(library.resolve(name));
    }
    QLibrary library{QStringLiteral("visa64")};
};
