#include "drafthost/lisp/Builtins.h"
namespace drafthost::lisp {
std::span<const Subr> tableFunctions() {
    return {};
}
std::span<const Subr> dictionaryFunctions() {
    return {};
}
std::span<const Subr> entityFunctions() {
    return {};
}
std::span<const Subr> selectionFunctions() {
    return {};
}
}  // namespace drafthost::lisp
