// SPDX-License-Identifier: GPL-3.0-or-later
// Menus, dialogs and the graphics screen. A run has nobody at a screen: what would show or ask something
// there says so in one line or does nothing.

#include "drafthost/automation/Diesel.h"
#include "drafthost/automation/Functions.h"
#include "drafthost/automation/Lisp.h"
#include "drafthost/automation/Session.h"

namespace drafthost::automation {
namespace {

/// "M=…" is the string language; other calls would show or change a menu.
Value menuCommand(Evaluator& e, Args args) {
    const std::string& text = stringArg(args[0]);
    const std::size_t equals = text.find('=');
    const std::string head = lisp::upperCase(text.substr(0, equals));
    return equals != std::string::npos && head == "M"
               ? Value::string(evaluateDiesel(sessionOf(e).host, text.substr(equals + 1)))
               : Value();
}

Value menuGroup(Evaluator&, Args args) {
    stringArg(args[0]);
    return {};
}

Value nothing(Evaluator&, Args) {
    return {};
}

void sayNoDialog(Evaluator& e, const std::string& name) {
    sessionOf(e).host.print("\nA run without a person has no dialog: " + name + " is not shown.\n");
}

/// A number below 0: the file could not be loaded.
Value loadDialog(Evaluator& e, Args args) {
    sayNoDialog(e, stringArg(args[0]));
    return Value::integer(-1);
}

Value newDialog(Evaluator& e, Args args) {
    sayNoDialog(e, stringArg(args[0]));
    return {};
}

/// Cancelled.
Value startDialog(Evaluator&, Args) {
    return Value::integer(0);
}

Value noColor(Evaluator& e, Args) {
    sayNoDialog(e, "the choice of a color");
    return {};
}

Value readDevice(Evaluator&, Args) {
    fail("a run without a person has no pointer to read: grread");
}

constexpr Subr Functions[] = {
    {"MENUCMD", 1, 1, menuCommand},      {"MENUGROUP", 1, 1, menuGroup},
    {"LOAD_DIALOG", 1, 1, loadDialog},   {"NEW_DIALOG", 2, 4, newDialog},
    {"START_DIALOG", 0, 0, startDialog}, {"DONE_DIALOG", 0, 1, nothing},
    {"TERM_DIALOG", 0, 0, nothing},      {"UNLOAD_DIALOG", 1, 1, nothing},
    {"ACTION_TILE", 2, 2, nothing},      {"SET_TILE", 2, 2, nothing},
    {"GET_TILE", 1, 1, nothing},         {"GET_ATTR", 2, 2, nothing},
    {"MODE_TILE", 2, 2, nothing},        {"CLIENT_DATA_TILE", 2, 2, nothing},
    {"START_LIST", 1, 3, nothing},       {"ADD_LIST", 1, 1, nothing},
    {"END_LIST", 0, 0, nothing},         {"DIMX_TILE", 1, 1, startDialog},
    {"DIMY_TILE", 1, 1, startDialog},    {"START_IMAGE", 1, 1, nothing},
    {"END_IMAGE", 0, 0, nothing},        {"FILL_IMAGE", 5, 5, nothing},
    {"SLIDE_IMAGE", 5, 5, nothing},      {"VECTOR_IMAGE", 5, 5, nothing},
    {"ACAD_COLORDLG", 1, 2, noColor},    {"ACAD_TRUECOLORDLG", 1, 3, noColor},
    {"GRREAD", 0, 3, readDevice},        {"GRDRAW", 3, 4, nothing},
    {"GRVECS", 1, 2, nothing},           {"GRTEXT", 0, 3, nothing},
    {"GRCLEAR", 0, 0, nothing},          {"SETVIEW", 1, 2, nothing},
    {"SETFUNHELP", 1, 4, nothing},       {"HELP", 0, 3, nothing},
};

}  // namespace

std::span<const Subr> menuFunctions() {
    return Functions;
}

}  // namespace drafthost::automation
