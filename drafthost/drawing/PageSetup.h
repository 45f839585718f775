// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "drafthost/drawing/Drawing.h"

namespace drafthost {

/// The device that this host has.
inline constexpr const char* PdfDevice = "DWG To PDF.pc3";
/// Whether a device by that name writes PDF files.
bool isPdfDevice(const std::string& device);

/// What of a layout is plotted; the numbers are those of group 74.
enum class PlotArea { Display = 0, Extents = 1, Limits = 2, View = 3, Window = 4, Layout = 5 };

/// A sheet of paper in millimetres, as it lies in the plotter.
struct PaperSize {
    std::string name;
    double width = 0;
    double height = 0;
    /// Of the edges that are not printed on: left, bottom, right, top.
    std::array<double, 4> margins{};
};

/// How a layout, or a saved page setup, is put on paper (subclass AcDbPlotSettings of the DXF reference).
struct PageSetup {
    std::string name;
    std::string device;
    PaperSize paper;
    std::string view;
    std::string styles;  ///< plot style table; empty: none
    double originX = 0;  ///< millimetres
    double originY = 0;
    bool centered = false;
    Point low;  ///< of the window
    Point high;
    bool fit = false;
    double plotted = 1;  ///< so many paper units …
    double drawn = 1;    ///< … for so many drawing units
    bool inches = false;
    int rotation = 0;  ///< quarter turns against the clock
    PlotArea area = PlotArea::Layout;
    bool plotStyles = true;
    bool lineweights = true;
    bool scaleLineweights = false;
    bool paperSpaceFirst = false;
    bool hidden = false;
};

/// The setup of a LAYOUT or PLOTSETTINGS object.
PageSetup readPageSetup(const Drawing& drawing, RecordId object);
/// Writes it into the object; groups of its own that a setup has not stay.
void writePageSetup(Drawing& drawing, RecordId object, const PageSetup& setup);
/// The page setups that are saved in the drawing: name and object.
std::vector<std::pair<std::string, RecordId>> savedPageSetups(const Drawing& drawing);

/// Sizes that are known by name, upright.
const std::vector<PaperSize>& paperSizes();
/// A size by its whole name, or by the measures that a name ends in: "ISO A4 (210.00 x 297.00 MM)".
std::optional<PaperSize> paperByName(const std::string& name);

}  // namespace drafthost
