// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "drafthost/drawing/Drawing.h"

namespace drafthost {

/// A drawing in another version of the format, and what that version cannot hold: a line for each kind of
/// loss.
struct ConvertedDrawing {
    std::unique_ptr<Drawing> drawing;  ///< ASCII; nothing when it cannot be made
    std::vector<std::string> lost;
};

/// To R12 (1009) or 2000 (1015) and later, up to 2018 (1032). From 2000 on everything is kept that has its
/// place in both; to R12 newer entities become what R12 has, where there is such a thing; from R12 to R14
/// what the drawing shows is put into a new one.
ConvertedDrawing convertVersion(const Drawing& drawing, int version, std::string& error);

/// The part that writes R12.
std::string writeR12(const Drawing& drawing, std::vector<std::string>& lost);

}  // namespace drafthost
