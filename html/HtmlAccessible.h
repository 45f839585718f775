// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What screen readers are told of a page: its text, and each link as a thing of its own that can be pressed.
// Form fields need nothing here, since they are real widgets.

/// Makes the system of accessibility know the HTML view. May be called again.
void InstallHtmlAccessible();
