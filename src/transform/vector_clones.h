// VECTOR_CLONES in front of a function compiles it for plain SSE2, for AVX2 and for AVX-512; the
// loader picks the one that the processor has. All do the same operations on each element, so
// the choice changes no bit. The sanitizers can't stand such early picking.
#pragma once

#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) &&                             \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define VECTOR_CLONES __attribute__((target_clones("avx512f", "avx2", "default")))
#else
#define VECTOR_CLONES
#endif

// In front of a loop: its turns touch different elements, whatever the pointers may suggest.
#if defined(__GNUC__) && !defined(__clang__)
#define IN_ANY_ORDER _Pragma("GCC ivdep")
#else
#define IN_ANY_ORDER
#endif

// Eight neighbours at once, by operators; as many instructions as the processor needs. By reference
// between functions, for which there is no common convention.
using EightDoubles = double __attribute__((vector_size(8 * sizeof(double))));

inline void load(const double* from, EightDoubles& to)
{
    __builtin_memcpy(&to, from, sizeof(to));
}

inline void store(const EightDoubles& from, double* to)
{
    __builtin_memcpy(to, &from, sizeof(from));
}

// Brings what is read soon into the cache.
#if defined(__GNUC__)
#define PREFETCH(address) __builtin_prefetch(address)
#else
#define PREFETCH(address) static_cast<void>(address)
#endif
