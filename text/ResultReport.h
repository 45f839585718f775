// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What was wrong with a text, or happened to a file, told as a string of XML elements one after another.
// Nothing in the system acts on it; it is there to be shown when a file behaves strangely. So it stops
// growing at a thousand characters: the first faults are the ones that explain the rest.
#include <initializer_list>
#include <QString>
#include <QStringView>
#include <utility>

using ReportAttribute = std::pair<QStringView, QString>;

/// Appends one word with its attributes, unless the report holds 1,000 characters or more.
void AddReport(QString& report, QStringView word, std::initializer_list<ReportAttribute> attributes = {});
