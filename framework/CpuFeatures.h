// Which instructions this processor has, for code that is compiled in several forms.
#pragma once

#if defined(__x86_64__)

#if __has_include(<sys/platform/x86.h>) && !defined(__clang__) // which does not take that header as C++
#include <sys/platform/x86.h> // the C library looked at its own start: nothing of ours runs at load
#define KVT01_CPU_HAS(feature, name) (CPU_FEATURE_ACTIVE(feature) != 0)
#else
#define KVT01_CPU_HAS(feature, name) (__builtin_cpu_supports(name) != 0)
#endif

namespace CpuFeatures {

inline bool HasAvx2()
{
    return KVT01_CPU_HAS(AVX2, "avx2");
}

inline bool HasAvx512Bw()
{
    return KVT01_CPU_HAS(AVX512BW, "avx512bw");
}

} // namespace CpuFeatures

#undef KVT01_CPU_HAS

#endif
