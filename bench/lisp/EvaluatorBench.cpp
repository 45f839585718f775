// SPDX-License-Identifier: GPL-3.0-or-later
// What programs that people run over drawings spend their time with: loops, calls, lists and strings.
#include <benchmark/benchmark.h>

#include "tests/lisp/FakeHost.h"

namespace {

void evaluate(benchmark::State& state, const char* text) {
    drafthost::lisp::FakeHost host;
    drafthost::lisp::World world(host);
    for (auto _ : state) {
        const auto result = world.evaluate(text);
        if (!result.ok()) {
            state.SkipWithError(result.text.c_str());
            break;
        }
    }
}

BENCHMARK_CAPTURE(evaluate, MillionIncrements, "(setq i 0) (repeat 1000000 (setq i (1+ i)))")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(evaluate, RecursiveCalls,
                  "(defun fib (n) (if (< n 2) n (+ (fib (1- n)) (fib (- n 2))))) (fib 20)")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(evaluate, SortOfTenThousand,
                  "(setq i 0 l nil) (repeat 10000 (setq i (1+ i) l (cons (rem (* i 7919) 10007) l)))"
                  "(vl-sort l '(lambda (a b) (< a b)))")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(evaluate, Strings,
                  "(setq s \"\") (repeat 1000 (setq s (strcat s (itoa (strlen s)) \",\")))")
    ->Unit(benchmark::kMillisecond);

void makeWorld(benchmark::State& state) {
    drafthost::lisp::FakeHost host;
    for (auto _ : state) {
        const drafthost::lisp::World world(host);
        benchmark::DoNotOptimize(&world);
    }
}
BENCHMARK(makeWorld)->Unit(benchmark::kMicrosecond);

}  // namespace
