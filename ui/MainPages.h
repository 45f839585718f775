// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the main dialog knows of its pages: a table, so that nothing else counts or lists them.
#include "widgets/MainPage.h"

#include <span>

struct MainPageEntry {
    /// How the program speaks of the page; links of the start page are this name and "tab".
    QString Name;
    /// What the trace calls it.
    const char* TraceName;
    /// With the letter that shows the page behind "&".
    const char* Title;
    /// Name of a picture in res/data.
    QString Icon;
    MainPage* (*Make)(QWidget* parent);
};

/// All pages in the order of their tabs. The state file keeps the last page by its place (LastTab), so a new
/// one goes to the end.
std::span<const MainPageEntry> MainPages();

/// The place of the page of that name, or -1.
int MainPageIndex(QStringView name);
