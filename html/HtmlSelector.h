// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Finds elements of a page by simple selectors: a tag, "#id", ".class", "[name]" and "[name=value]" with or
// without quotes, several of them in a row, blanks for "somewhere below", commas for "or". The page engine's
// own search mismatches quotes, lists and letter case, so the view does not use it.
#include <litehtml/litehtml.h>
#include <functional>
#include <QString>
#include <vector>

struct HtmlAttributeTest {
    QString Name;
    QString Value;
    bool HasValue = false;
};

/// Conditions on one element.
struct HtmlCompound {
    QString Tag;
    std::vector<HtmlAttributeTest> Tests;
    std::vector<QString> Classes;
};

/// Alternatives, each a chain from an outer element to the one that is looked for.
using HtmlSelector = std::vector<std::vector<HtmlCompound>>;

/// A selector that cannot be read gives an empty list, which matches nothing.
HtmlSelector ParseHtmlSelector(const QString& text);
/// Calls found for each match below root (root included), in document order, until it returns true.
void SelectHtml(const litehtml::element::ptr& root, const HtmlSelector& selector,
                const std::function<bool(const litehtml::element::ptr&)>& found);
