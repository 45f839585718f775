// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace files {

/// A file that grows beyond the limit of this process (ulimit -f) is then a failed write like that on a full
/// disk, EFBIG, in place of a signal that ends the process without a word. Programs that it starts are not
/// concerned.
void FailBeyondFileLimit();

}  // namespace files
