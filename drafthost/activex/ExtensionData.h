// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What programs hang on a record: extended data, and the dictionary of its own.

#include "drafthost/activex/Model.h"
#include "drafthost/drawing/Objects.h"

namespace drafthost::activex {

/// GetXData: application, and the symbols for types and values.
void readExtendedData(Call& call);
/// SetXData: types and values; only the applications that they name are changed.
void writeExtendedData(Call& call);

/// A tag's value as the model shows it, and how wide it is in tags.
Value tagForModel(const Drawing& drawing, const Record& record, std::size_t i, std::size_t& width);
/// Appends a tag with a value of the model.
void appendFromModel(Drawing& drawing, RecordId id, int code, const Value& value);

}  // namespace drafthost::activex
