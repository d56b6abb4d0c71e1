// Large pages for memory that was reserved and not yet touched. Filling and transforming tens of
// megabytes in small pages spends more time on the pages than on the values.
#pragma once

#include <QtGlobal>

#ifdef Q_OS_LINUX
#include <sys/mman.h>
#endif

constexpr int largeBlock = 1 << 22; // bytes

// A wish: where the system has no such pages, or the memory is no large block, nothing changes.
inline void preferLargePages(void* memory, quint64 bytes)
{
#ifdef Q_OS_LINUX
    if (bytes < largeBlock) {
        return;
    }
    constexpr quint64 page = quint64{1} << 21;
    const auto address = reinterpret_cast<quint64>(memory);
    const quint64 begin = (address + page - 1) / page * page;
    const quint64 end = (address + bytes) / page * page;
    madvise(static_cast<char*>(memory) + (begin - address), end - begin, MADV_HUGEPAGE);
#else
    Q_UNUSED(memory)
    Q_UNUSED(bytes)
#endif
}
