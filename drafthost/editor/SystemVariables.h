// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The system variables: one table with type, range, default and place of each. The table's rows come from
// the folder of the commands; here is what is the same for all of them. Values in the drawing's header are
// read from it at each look, so that nothing can be out of step with the drawing.

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

#include "drafthost/base/Point.h"

namespace drafthost {

class Document;
class Host;

using Point2 = std::array<double, 2>;
/// The alternative is the type: 16-bit integer, real, string, 2D point, 3D point.
using VariableValue = std::variant<int, double, std::string, Point2, Point>;

enum class VariableStorage {
    Computed,  ///< get (and set) do all
    Session,   ///< one value for the host, gone when it ends
    Document,  ///< one value per document, not saved
    Header,    ///< the drawing's header, under header
    Profile,   ///< the registry file, in the current profile; without a window set for the session only
};

enum class VariableStatus { Ok, Unknown, ReadOnly, WrongType, OutOfRange, Rejected };

/// One row. Name in capitals. The default's alternative gives the type.
struct VariableEntry {
    std::string name;
    VariableStorage storage = VariableStorage::Session;
    bool readOnly = false;
    VariableValue defaultValue = 0;
    /// Bounds for numbers, both included.
    std::optional<double> minimum{};
    std::optional<double> maximum{};
    /// For Header: "$LTSCALE".
    std::string header{};
    /// Overrides the storage. The document is null when none is open.
    std::function<VariableValue(Host&, Document*)> get{};
    /// Checks and does what setting takes; false and a reason in one line when it does not go. With a
    /// storage other than Computed the value is stored after it has answered true.
    std::function<bool(Host&, Document*, const VariableValue&, std::string& reason)> set{};
    /// Setting it counts as a change of the drawing. Header variables always do.
    bool modifiesDrawing = false;
};

class SystemVariables {
  public:
    explicit SystemVariables(Host& host) : host_(host) {}

    void add(VariableEntry entry);
    /// The name in any case; null for none.
    const VariableEntry* find(std::string_view name) const;
    /// Names in order of the alphabet.
    std::vector<std::string> names() const;

    /// Value in the current document, or in the one given.
    std::optional<VariableValue> get(std::string_view name, Document* document = nullptr) const;
    /// Sets it with all checks. An integer is taken for a real, a 2D point for a 3D one. The reason is
    /// one line for the user. Observers hear of it.
    VariableStatus set(std::string_view name, const VariableValue& value, std::string& reason,
                       Document* document = nullptr);
    /// Reads the value from typed text by the variable's type, then sets it.
    VariableStatus setFromText(std::string_view name, std::string_view text, std::string& reason,
                               Document* document = nullptr);

    /// For the host's own use: an integer, or the fallback when there is no such variable.
    int integer(std::string_view name, int fallback) const;
    std::string string(std::string_view name, std::string_view fallback) const;

  private:
    VariableStatus store(const VariableEntry& entry, const VariableValue& value, Document* document);

    Host& host_;
    std::unordered_map<std::string, VariableEntry> entries_;
    std::unordered_map<std::string, VariableValue> session_;
};

/// A value as SETVAR shows it: text in quotes, points with commas.
std::string toText(const VariableValue& value);

/// Fills the table; lives in the folder of the commands, not here.
void registerSystemVariables(SystemVariables& variables);

}  // namespace drafthost
