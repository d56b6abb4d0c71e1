// Whether the tests run under a sanitizer, which makes everything several times slower, and whether
// the compiler optimised them.
#pragma once

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool isInstrumented = true;
#else
constexpr bool isInstrumented = false;
#endif

#ifdef __OPTIMIZE__
constexpr bool isOptimised = true;
#else
constexpr bool isOptimised = false;
#endif
