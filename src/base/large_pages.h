// Large pages for memory that was reserved and not yet touched. Filling and transforming tens of
// megabytes in small pages spends more time on the pages than on the values.
#pragma once

#include <QtGlobal>

#ifdef Q_OS_LINUX
#include <sys/mman.h>
#endif
#ifdef __GLIBC__
#include <malloc.h>
#endif

constexpr int largeBlock = 1 << 22; // bytes

// From here on large blocks of memory lie apart from small ones and go back to the system when they
// are freed, and threads share two heaps. By itself the library would after a while mix blocks of
// up to 32 MiB with small ones, in a heap a thread, and the small ones that live long would keep
// the pages of all between them. To be called first in a program.
inline void returnFreedMemory()
{
#ifdef __GLIBC__
    mallopt(M_MMAP_THRESHOLD, largeBlock);
    mallopt(M_TRIM_THRESHOLD, 4 * largeBlock); // what a heap may keep for blocks to come
    mallopt(M_ARENA_MAX, 2);
#endif
}

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
