// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The life of the module in the host. All that it owns hangs on one object that goes at unload, because the
// host never really unmaps a module: a second load finds the statics of the first.

/// The start sequence, at the host's first message.
void StartModule();
/// The stop sequence. What the module owned is gone afterwards.
void StopModule();
