// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/ResultReport.h"

#include "text/MarkupDocument.h"

void AddReport(QString& report, QStringView word, std::initializer_list<ReportAttribute> attributes) {
    constexpr qsizetype FullLength = 1000;
    if (report.size() >= FullLength) {
        return;
    }
    MarkupDocument element;
    element.AddElement(word, {}, true);
    for (const auto& [name, value] : attributes) {
        element.SetAttribute(name, value);
    }
    report += element.GetDocumentText();
}
