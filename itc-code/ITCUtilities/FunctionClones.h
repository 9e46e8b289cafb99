// Versions of a function for newer x86 processors, chosen when the library is loaded. All versions
// compute the same bits: they differ in how many values they handle at a time. For functions of one
// file only: the function that chooses among the versions has no visibility of its own, so that of
// an external function would be exported.
#pragma once

// Other hosts and compilers have the portable version alone. So have sanitizers, whose own start-up
// comes after the choice, and builds for one processor, in which there is nothing left to choose.
#if defined(__x86_64__) && defined(__gnu_linux__) && defined(__GNUC__) && !defined(__clang__) && \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) && !defined(__AVX2__) &&     \
    !defined(CORVANTIS_PORTABLE)
#define CORVANTIS_HAS_CLONES
#define CORVANTIS_CLONES \
    __attribute__((target_clones("arch=x86-64-v4", "arch=x86-64-v3", "default")))
#else
#define CORVANTIS_CLONES
#endif

// For what these functions call: it has their version only as a part of them.
#define CORVANTIS_INLINE [[gnu::always_inline]] inline

namespace corvantis {

// Whether the versions in use have an instruction for a fused multiplication and addition.
inline bool HasFusedInstruction() {
#if defined(__FP_FAST_FMAF) || defined(__FMA__)
    return true;
#elif defined(CORVANTIS_HAS_CLONES)
    return __builtin_cpu_supports("x86-64-v3") != 0;
#else
    return false;
#endif
}

}  // namespace corvantis
