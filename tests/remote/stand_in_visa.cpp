// A VISA library for the tests: records every call with its arguments and fails any of them as
// it is told. Built twice, the second time without one name that the program never calls.
#include <cstdint>
#include <cstring>
#include <map>
#include <sstream>
#include <string>
#include <vector>

using Status = std::int32_t;
using Session = std::uint32_t;

namespace {

struct Bench
{
    std::string log;
    std::string text; // as it was handed out last
    // function -> statuses of its next calls; then 0.
    std::map<std::string, std::vector<Status>> statuses;
    std::map<std::string, std::string> answers; // by the text that was written
    std::string lastWritten;
};

Bench& bench()
{
    static Bench instance;
    return instance;
}

Status record(const char* function, const std::string& arguments)
{
    bench().log += std::string(function) + "(" + arguments + ")\n";
    auto& waiting = bench().statuses[function];
    if (waiting.empty()) {
        return 0;
    }
    const Status status = waiting.front();
    waiting.erase(waiting.begin());
    return status;
}

template <class... Values> std::string list(const Values&... values)
{
    std::ostringstream out;
    const char* separator = "";
    ((out << separator << values, separator = ", "), ...);
    return out.str();
}

} // namespace

extern "C" {

// What the test program uses.
const char* standInTakeLog()
{
    bench().text.swap(bench().log);
    bench().log.clear();
    return bench().text.c_str();
}
void standInReset()
{
    bench() = Bench();
}
void standInFail(const char* function, Status status)
{
    bench().statuses[function].push_back(status);
}
void standInAnswer(const char* written, const char* answer)
{
    bench().answers[written] = answer;
}

Status viOpenDefaultRM(Session* session)
{
    *session = 7;
    return record("viOpenDefaultRM", "");
}
Status viOpen(Session manager, const char* resource, std::uint32_t mode, std::uint32_t timeout,
              Session* session)
{
    *session = 42;
    return record("viOpen", list(manager, resource, mode, timeout));
}
Status viClose(Session session)
{
    return record("viClose", list(session));
}
Status viSetAttribute(Session session, std::uint32_t attribute, std::uintptr_t value)
{
    return record("viSetAttribute", list(session, attribute, value));
}
Status viGetAttribute(Session session, std::uint32_t attribute, void* place)
{
    const Session manager = 7;
    std::memcpy(place, &manager, sizeof(manager));
    return record("viGetAttribute", list(session, attribute));
}
Status viSetBuf(Session session, std::uint16_t mask, std::uint32_t size)
{
    return record("viSetBuf", list(session, mask, size));
}
Status viWrite(Session session, const unsigned char* bytes, std::uint32_t count,
               std::uint32_t* written)
{
    bench().lastWritten.assign(reinterpret_cast<const char*>(bytes), count);
    return record("viWrite", list(session, bench().lastWritten, count,
                                  written == nullptr ? "null" : "counted"));
}
Status viRead(Session session, unsigned char* buffer, std::uint32_t count, std::uint32_t* read)
{
    const std::string& answer = bench().answers[bench().lastWritten];
    std::memcpy(buffer, answer.data(), answer.size() < count ? answer.size() : count);
    return record("viRead", list(session, count, read == nullptr ? "null" : "counted"));
}
Status viGpibControlREN(Session session, std::uint16_t mode)
{
    return record("viGpibControlREN", list(session, mode));
}
Status viFindRsrc()
{
    return record("viFindRsrc", "");
}
Status viFindNext()
{
    return record("viFindNext", "");
}
Status viStatusDesc()
{
    return record("viStatusDesc", "");
}
Status viQueryf()
{
    return record("viQueryf", "");
}
Status viPrintf()
{
    return record("viPrintf", "");
}
Status viScanf()
{
    return record("viScanf", "");
}
Status viReadToFile()
{
    return record("viReadToFile", "");
}
Status viClear()
{
    return record("viClear", "");
}
#ifndef STAND_IN_WITHOUT_READ_STB
Status viReadSTB()
{
    return record("viReadSTB", "");
}
#endif
}
