// Which instructions this processor has, for code that is compiled in several forms.
#pragma once

#if defined(__x86_64__)

#include <cpuid.h>

#if __has_include(<sys/platform/x86.h>) && !defined(__clang__) // which does not take that header as C++
#include <sys/platform/x86.h> // the C library looked at its own start: nothing of ours runs at load
#define KVT01_CPU_HAS(feature, name) (CPU_FEATURE_ACTIVE(feature) != 0)
#else
#define KVT01_CPU_HAS(feature, name) (__builtin_cpu_supports(name) != 0)
#endif

namespace CpuFeatures {

// A feature that not every compiler's builtin knows by name: bit 9 of ECX in leaf 7.
inline bool HasVaesBit()
{
    unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
    return __get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx) != 0 && (ecx & 1u << 9) != 0;
}

inline bool HasAes()
{
    return KVT01_CPU_HAS(AES, "aes");
}

// The AES instructions on four blocks at once.
inline bool HasVaes512()
{
    return HasAes() && KVT01_CPU_HAS(AVX512F, "avx512f") && HasVaesBit();
}

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
