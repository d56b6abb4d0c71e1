// The time of day of a process, which jumps when it is told to. Loaded before the system's library;
// what counts from the start of the system stays as it is.
#include <atomic>
#include <dlfcn.h>
#include <pthread.h>
#include <sys/time.h>

#include <cerrno>
#include <ctime>

namespace {

std::atomic<long> jumped{0}; // seconds
constexpr long nanosecondsInASecond = 1000000000;
constexpr long firstTimeOfDay = 1000000000; // seconds; other clocks are far below it

template <class Function> Function* systemsOwn(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

bool hasCome(const timespec& moment)
{
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    return now.tv_sec > moment.tv_sec ||
           (now.tv_sec == moment.tv_sec && now.tv_nsec >= moment.tv_nsec);
}

} // namespace

extern "C" {

void moveTimeOfDay(long seconds)
{
    jumped += seconds;
}

int clock_gettime(clockid_t clock, timespec* time) noexcept
{
    static auto* const own = systemsOwn<int(clockid_t, timespec*)>("clock_gettime");
    const int result = own(clock, time);
    if (clock == CLOCK_REALTIME) {
        time->tv_sec += jumped;
    }
    return result;
}

int gettimeofday(timeval* time, void* /*zone*/) noexcept
{
    timespec now = {};
    const int result = clock_gettime(CLOCK_REALTIME, &now);
    *time = {now.tv_sec, now.tv_nsec / 1000};
    return result;
}

time_t time(time_t* also) noexcept
{
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    if (also != nullptr) {
        *also = now.tv_sec;
    }
    return now.tv_sec;
}

// Waits for a moment of the time of day last until that has come, as the system's do.
int pthread_cond_timedwait(pthread_cond_t* condition, pthread_mutex_t* mutex,
                           const timespec* moment)
{
    static auto* const own = systemsOwn<int(pthread_cond_t*, pthread_mutex_t*, const timespec*)>(
        "pthread_cond_timedwait");
    if (moment->tv_sec < firstTimeOfDay) {
        return own(condition, mutex, moment);
    }
    while (!hasCome(*moment)) {
        timespec slice = {};
        clock_gettime(CLOCK_REALTIME, &slice);
        slice.tv_sec -= jumped;
        slice.tv_nsec += nanosecondsInASecond / 100;
        slice.tv_sec += slice.tv_nsec / nanosecondsInASecond;
        slice.tv_nsec %= nanosecondsInASecond;
        const int result = own(condition, mutex, &slice);
        if (result != ETIMEDOUT) {
            return result;
        }
    }
    return ETIMEDOUT;
}
}
