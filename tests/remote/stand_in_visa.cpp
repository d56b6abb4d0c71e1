// A VISA library for the tests: records every call with its arguments and fails any of them as
// it is told. Any thread may call it, as several instruments talk at once. Built twice, the second
// time without one name that the program never calls.
#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <cstring>
#include <map>
#include <mutex>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

using Status = std::int32_t;
using Session = std::uint32_t;

namespace {

constexpr Session firstSession = 42;
constexpr Status invalidObject = -1073807346; // a session that was closed, or never opened

struct Bench
{
    std::string log;
    std::string text; // as it was handed out last
    // function -> statuses of its next calls; then 0.
    std::map<std::string, std::vector<Status>> statuses;
    std::map<std::string, std::string> answers;          // by the text that was written
    std::set<std::pair<std::string, std::string>> holds; // resource, text whose answer waits
    std::map<Session, std::string> lastWritten;
    std::map<Session, std::string> resources; // of the sessions that are told apart
    bool tellsApart = false;
    Session nextSession = firstSession;
};

Bench& bench()
{
    static Bench instance;
    return instance;
}

std::mutex& mutex()
{
    static std::mutex instance;
    return instance;
}

std::condition_variable& released()
{
    static std::condition_variable instance;
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

bool isStale(Session session)
{
    return bench().tellsApart && bench().resources.count(session) == 0;
}

void awaitRelease(std::unique_lock<std::mutex>& lock, Session session)
{
    if (isStale(session) || !bench().tellsApart) {
        return;
    }
    const auto held = std::make_pair(bench().resources[session], bench().lastWritten[session]);
    released().wait(lock, [&held] { return bench().holds.count(held) == 0; });
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
    const std::lock_guard<std::mutex> lock(mutex());
    bench().text.swap(bench().log);
    bench().log.clear();
    return bench().text.c_str();
}
void standInReset()
{
    const std::lock_guard<std::mutex> lock(mutex());
    bench() = Bench();
}
void standInFail(const char* function, Status status)
{
    const std::lock_guard<std::mutex> lock(mutex());
    bench().statuses[function].push_back(status);
}
// From now on every viOpen gives a number of its own, and a closed session is refused.
void standInTellSessionsApart()
{
    const std::lock_guard<std::mutex> lock(mutex());
    bench().tellsApart = true;
}
// The answer to this text over this resource waits until all are released.
void standInHold(const char* resource, const char* written)
{
    const std::lock_guard<std::mutex> lock(mutex());
    bench().holds.insert({resource, written});
}
void standInRelease()
{
    const std::lock_guard<std::mutex> lock(mutex());
    bench().holds.clear();
    released().notify_all();
}
void standInAnswer(const char* written, const char* answer)
{
    const std::lock_guard<std::mutex> lock(mutex());
    bench().answers[written] = answer;
}

Status viOpenDefaultRM(Session* session)
{
    const std::lock_guard<std::mutex> lock(mutex());
    *session = 7;
    return record("viOpenDefaultRM", "");
}
Status viOpen(Session manager, const char* resource, std::uint32_t mode, std::uint32_t timeout,
              Session* session)
{
    const std::lock_guard<std::mutex> lock(mutex());
    *session = bench().nextSession;
    if (bench().tellsApart) {
        bench().resources[bench().nextSession++] = resource;
    }
    return record("viOpen", list(manager, resource, mode, timeout));
}
Status viClose(Session session)
{
    const std::lock_guard<std::mutex> lock(mutex());
    bench().resources.erase(session);
    return record("viClose", list(session));
}
Status viSetAttribute(Session session, std::uint32_t attribute, std::uintptr_t value)
{
    const std::lock_guard<std::mutex> lock(mutex());
    return record("viSetAttribute", list(session, attribute, value));
}
Status viGetAttribute(Session session, std::uint32_t attribute, void* place)
{
    const std::lock_guard<std::mutex> lock(mutex());
    const Session manager = 7;
    std::memcpy(place, &manager, sizeof(manager));
    return record("viGetAttribute", list(session, attribute));
}
Status viSetBuf(Session session, std::uint16_t mask, std::uint32_t size)
{
    const std::lock_guard<std::mutex> lock(mutex());
    return record("viSetBuf", list(session, mask, size));
}
Status viWrite(Session session, const unsigned char* bytes, std::uint32_t count,
               std::uint32_t* written)
{
    const std::lock_guard<std::mutex> lock(mutex());
    const std::string text(reinterpret_cast<const char*>(bytes), count);
    bench().lastWritten[session] = text;
    const Status status =
        record("viWrite", list(session, text, count, written == nullptr ? "null" : "counted"));
    return isStale(session) ? invalidObject : status;
}
Status viRead(Session session, unsigned char* buffer, std::uint32_t count, std::uint32_t* read)
{
    std::unique_lock<std::mutex> lock(mutex());
    awaitRelease(lock, session);
    const std::string& answer = bench().answers[bench().lastWritten[session]];
    std::copy_n(answer.begin(), std::min<std::size_t>(answer.size(), count), buffer);
    return record("viRead", list(session, count, read == nullptr ? "null" : "counted"));
}
Status viGpibControlREN(Session session, std::uint16_t mode)
{
    const std::lock_guard<std::mutex> lock(mutex());
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
