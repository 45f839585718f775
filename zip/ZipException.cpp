// SPDX-License-Identifier: GPL-3.0-or-later
#include "zip/ZipException.h"

CZipException::CZipException(CauseKind cause, const std::string& file, const std::string& text)
    : std::runtime_error(file + ": " + text), Cause(cause), File(file) {}
