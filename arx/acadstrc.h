// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Status values shared by the host's classes.

namespace Acad {
enum ErrorStatus {
    eOk = 0,
    eNotImplementedYet = 1,
    eInvalidInput = 3,
    eKeyNotFound = 33,
    eDuplicateKey = 34,
    eInvalidContext = 360,
    eFileNotFound = 368,
    eFileAccessErr = 369,
    eNoDocument = 402,
    eProfileDoesNotExist = 470,
};
}  // namespace Acad
