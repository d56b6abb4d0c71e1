// What becomes of the memory that a program frees.
#pragma once

#include "base/large_pages.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif

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
