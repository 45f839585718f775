// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Putting a layout on a page. A program of its own, drafthost-plot, draws it.

#include <string>
#include <vector>

#include "drafthost/drawing/PageSetup.h"
#include "drafthost/editor/Document.h"

namespace drafthost::commands {

/// Where a layout comes to lie on the paper; lengths on paper in millimetres.
struct PagePlan {
    double width = 0;  ///< of the paper as it is read
    double height = 0;
    Point low;  ///< the corners of what is plotted, in drawing units
    Point high;
    double scale = 1;  ///< millimetres for a drawing unit
    double x = 0;      ///< of the lower left corner, from that of the paper
    double y = 0;
    bool turned = false;  ///< upside down
};

/// False with one line of cause when there is nothing to plot.
bool planPage(const Drawing& drawing, const std::string& layout, const PageSetup& setup, PagePlan& plan,
              std::string& error);

/// Writes the page as a PDF file in place of an old one. What was not drawn as wanted is told in `notes`.
/// False, with one line of cause and the old file as it was, when it cannot be done.
bool writePage(Document& document, const std::string& layout, const PageSetup& setup, const PagePlan& plan,
               const std::string& file, std::vector<std::string>& notes, std::string& error);

}  // namespace drafthost::commands
