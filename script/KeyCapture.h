// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Watches what is typed in the host's frame, wherever the keyboard is in it: each character once, in the
// order typed, as the keyboard or an input method means it. Told by the record's signals KeyCaptured and
// PauseToggled.

/// From now on, with the record's flag CaptureActive set. Nothing when it goes on already.
void StartKeyCapture();
/// To the end, with the flag taken back.
void EndKeyCapture();
