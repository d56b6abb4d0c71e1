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

private:
    template <class Function> Function call(const char* name)
    {
        return reinterpret_cast<Function>(library.resolve(name));
    }
    QLibrary library{QStringLiteral("visa64")};
};
