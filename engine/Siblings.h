// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Two other modules of the same maker get in the way of a run and are unloaded for its length. They are told
// through a LISP symbol that this is no real end or start.

/// Unloads them, the second only when the first is there.
void UnloadSiblings();
/// Loads again what UnloadSiblings took away.
void LoadSiblings();
