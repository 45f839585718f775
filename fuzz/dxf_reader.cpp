// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes are either refused with one line or opened; what opens is written back as it was, survives edits,
// zooming and conversion, and can be read again.
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/drawing/View.h"

#include <cstdint>
#include <cstdlib>

namespace {

void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    std::string error;
    const auto drawing = drafthost::Drawing::parse(bytes, "fuzz", error);
    if (drawing == nullptr) {
        require(!error.empty() && error.find('\n') == std::string::npos);
        return 0;
    }
    require(drawing->serialise() == bytes);
    std::string converted;
    if (drawing->convert({!drawing->isBinary(), 16}, converted, error)) {
        require(drafthost::Drawing::parse(converted, "fuzz", error) != nullptr);
    }
    for (auto id = drafthost::firstEntity(*drawing); id != drafthost::NoRecord;
         id = drafthost::nextEntity(*drawing, id, true)) {
        const drafthost::Record record = drawing->record(id);
        for (std::size_t i = 0; i < record.size(); ++i) {
            record.value(i);
        }
        drafthost::layoutOf(*drawing, id);
    }
    drafthost::zoomExtents(*drawing);
    const auto layer = drafthost::addEntry(*drawing, drafthost::Table::Layer, "fuzz");
    if (layer != drafthost::NoRecord) {
        drafthost::renameEntry(*drawing, drafthost::Table::Layer, layer, "again");
    }
    const auto entity = drafthost::addEntity(*drawing, "POINT", "again", false);
    if (entity != drafthost::NoRecord) {
        drafthost::deleteEntity(*drawing, entity);
    }
    require(drafthost::Drawing::parse(drawing->serialise(), "fuzz", error) != nullptr);
    return 0;
}
