// Large pages for memory that was reserved and not yet touched. Filling and transforming tens of
// megabytes in small pages spends more time on the pages than on the values.
#pragma once

#include <QtGlobal>

#ifdef Q_OS_LINUX
#include <sys/mman.h>
#endif

// A wish: where the system has no such pages, or the memory is shorter than some of them,
// nothing changes.
inline void preferLargePages(void* memory, quint64 bytes)
{
#ifdef Q_OS_LINUX
    constexpr quint64 page = quint64{1} << 21;
    const auto begin = (reinterpret_cast<quint64>(memory) + page - 1) / page * page;
    const auto end = (reinterpret_cast<quint64>(memory) + bytes) / page * page;
    if (begin + page < end) {
        madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
    }
#else
    Q_UNUSED(memory)
    Q_UNUSED(bytes)
#endif
}
