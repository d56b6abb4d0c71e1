#include "transform/parallel.h"

#include <algorithm>
#include <future>
#include <system_error>
#include <thread>
#include <vector>

int usefulThreads()
{
    constexpr unsigned most = 8;
    return static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1U, most));
}

void inParallel(quint64 pieces, int threads, const std::function<void(Pieces&)>& worker)
{
    Pieces left(pieces);
    std::vector<std::future<void>> others; // joined at the end of the scope, come what may
    try {
        while (others.size() + 1 < std::min(static_cast<quint64>(threads), pieces)) {
            others.push_back(std::async(std::launch::async, [&] { worker(left); }));
        }
    } catch (const std::system_error&) { // no more threads; those that run do it all
    }
    worker(left);
    for (std::future<void>& other : others) {
        other.get();
    }
}
