// Where a limit kernel is compiled. Each kernel is written once, as a lambda marked
// KOR_LIMIT_INLINE, and a target inlines it into a function of its own: Plain with the library's
// flags, Avx2 for the AVX2 target that the library's dispatched kernels pick on a processor that
// has it (no FMA, so no contraction: the same bits). Loop times the kernel, Once runs it for the
// start-up bit check.
#pragma once

#include "hostkit/base/Kernels.h"

#include <benchmark/benchmark.h>

#include <cstdlib>

#define KOR_LIMIT_INLINE __attribute__((always_inline))

// As for the library's kernels: GCC or clang on x86-64, outside Windows.
#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__)) && !defined(_WIN32)
#define KOR_LIMIT_AVX2 1
#else
#define KOR_LIMIT_AVX2 0
#endif

namespace Korvane::Limit {

struct Plain {
    static bool Runs() { return true; }
    template <class F>
    static void Loop(benchmark::State& state, F f) {
        for (auto _ : state)
            f();
    }
    template <class F>
    static void Once(F f) {
        f();
    }
};

#if KOR_LIMIT_AVX2
struct Avx2 {
    static bool Runs() { return Kernels::Available(Kernels::Isa::Avx2); }
    template <class F>
    static void Loop(benchmark::State& state, F f) {
        if (!Runs()) {
            state.SkipWithError("no AVX2 on this processor");
            return;
        }
        Timed(state, f);
    }
    template <class F>
    __attribute__((target("avx2"))) static void Once(F f) {
        f();
    }

private:
    template <class F>
    __attribute__((target("avx2"))) static void Timed(benchmark::State& state, F f) {
        for (auto _ : state)
            f();
    }
};
#endif

// Runs check(Plain{}, "library flags") and, where the processor has AVX2, check(Avx2{}, "AVX2"):
// the start-up check of a benchmark file's limit kernels. Aborts when one returns false.
template <class Check>
bool CheckEveryTarget(Check check) {
    bool ok = check(Plain{}, "library flags");
#if KOR_LIMIT_AVX2
    if (Avx2::Runs())
        ok = check(Avx2{}, "AVX2") && ok;
#endif
    if (!ok)
        std::abort();
    return ok;
}

} // namespace Korvane::Limit

// Registers limit kernel `name<T>` under each target: the library's flags and, in a build that has
// the AVX2 target, AVX2 (skipped on a processor without it). Plain and Avx2 are named as they are
// written, with `using Limit::Plain;` (and Avx2) in the file, so that the benchmarks read
// "name<Plain>" and "name<Avx2>".
#if KOR_LIMIT_AVX2
#define KOR_LIMIT_BENCHMARK(name)                                                                  \
    BENCHMARK_TEMPLATE(name, Plain);                                                               \
    BENCHMARK_TEMPLATE(name, Avx2)
#else
#define KOR_LIMIT_BENCHMARK(name) BENCHMARK_TEMPLATE(name, Plain)
#endif
