// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The plain data behind the system variables: one row a variable, with its type, where its value lives and
// what it may be. It is a table and not code because scripts rely on all of it at once (type, default, range,
// read-only), and because a table can be listed, checked and printed in the manual.

#include <span>
#include <string_view>

namespace drafthost::commands {

/// What a variable holds; points are two or three reals.
enum class RowKind : char { Integer, Real, String, Point2, Point3 };

/// Where a value is kept. Header: in the drawing, as `$NAME`. Profile: in the user's profile, for all
/// drawings and sessions. Session: in memory, for all drawings. Document: in memory, for one drawing.
/// Computed: found out at each question, or set by an action.
enum class RowHome : char { Header, Profile, Session, Document, Computed };

/// One system variable.
struct VariableRow {
    std::string_view name;
    RowKind kind;
    RowHome home;
    bool readOnly;
    /// The value where none is stored; points as "x,y,z".
    std::string_view initial;
    /// Closed range of integers and reals; low > high means any value.
    double low = 1;
    double high = 0;
    /// Oldest drawing version (1009, 1015, ...) whose header can hold the value; 0 = any.
    int since = 0;
    /// Group code of the header value; 0 = by kind (70, 40, 1, 10).
    short code = 0;
    /// Name of the header value while paper space is current; empty = the same in both spaces.
    std::string_view paperName = {};
};

/// Variables that are only kept; sorted by name.
std::span<const VariableRow> keptVariableRows();

/// All variables, sorted by name.
std::span<const VariableRow> variableRows();

/// The row of `name` (any case), or null.
const VariableRow* findVariableRow(std::string_view name);

}  // namespace drafthost::commands
