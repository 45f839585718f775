// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A sibling module offers a toolbar that several modules share. When it is at hand, this module's command
// gets a button there; without it nothing is missing but the button.

/// Adds the button, loading the sibling when its file stands beside this module. The answer is always 1.
/// Also an export of the module, under this name.
extern "C" int OvrixSetupToolbar();
/// Takes the button away. The sibling stays loaded.
void OvrixRemoveToolbar();
