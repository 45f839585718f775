// SPDX-License-Identifier: GPL-3.0-or-later
// Parsing alone, from the bytes of a file in memory.
#include "bench/state/StateSample.h"
#include "text/MarkupDocument.h"
#include "text/MarkupFile.h"

#include <benchmark/benchmark.h>
#include <libxml/parser.h>
#include <pugixml.hpp>

namespace {

void count(benchmark::State& state, const QByteArray& bytes) {
    state.SetBytesProcessed(state.iterations() * bytes.size());
    state.SetComplexityN(state.range(0));
}

void ParseMarkupDocument(benchmark::State& state) {
    const QByteArray bytes = SampleState(state.range(0));
    for (auto _ : state) {
        QString report;
        std::uint32_t flags = 0;
        MarkupDocument document;
        if (!document.SetDocumentText(DecodeMarkup(bytes, report, flags))) {
            state.SkipWithError("not well-formed");
        }
    }
    count(state, bytes);
}

void ParsePugixml(benchmark::State& state) {
    const QByteArray bytes = SampleState(state.range(0));
    for (auto _ : state) {
        pugi::xml_document document;
        if (!document.load_buffer(bytes.constData(), std::size_t(bytes.size()))) {
            state.SkipWithError("not well-formed");
        }
    }
    count(state, bytes);
}

void ParseLibxml2(benchmark::State& state) {
    const QByteArray bytes = SampleState(state.range(0));
    for (auto _ : state) {
        xmlDocPtr document = xmlReadMemory(bytes.constData(), int(bytes.size()), nullptr, nullptr, 0);
        if (document == nullptr) {
            state.SkipWithError("not well-formed");
        }
        xmlFreeDoc(document);
    }
    count(state, bytes);
}

}  // namespace

BENCHMARK(ParseMarkupDocument)
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->Complexity()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(ParsePugixml)
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->Complexity()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(ParseLibxml2)
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->Complexity()
    ->Unit(benchmark::kMicrosecond);
