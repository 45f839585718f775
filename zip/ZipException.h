// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What a damaged archive, a refused entry or a failed write raises. An archive is the one place of the
// module where a failure can come up at any byte, deep under the caller; a status at each step would be
// forgotten at one of them.
#include <stdexcept>
#include <string>

class CZipException : public std::runtime_error {
  public:
    enum CauseKind {
        Damaged,      ///< The file is no archive, or contradicts itself.
        Unsupported,  ///< A sound archive that needs what is not read here: ZIP64, parts, encryption, a
                      ///< method.
        TooLarge,     ///< An entry or the archive would not fit the format's 32-bit sizes or 16-bit counts.
        ReadError,    ///< The system refused to read; the cause is in the text.
        WriteError,   ///< The system refused to write, a full disk for example; the cause is in the text.
        Misuse        ///< Calls in the wrong order.
    };

    /// The message reads "FILE: text".
    CZipException(CauseKind cause, const std::string& file, const std::string& text);

    CauseKind Cause;
    /// Path of the archive.
    std::string File;
};
