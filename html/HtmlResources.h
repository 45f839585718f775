// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Pages and pictures that the module carries with it, found by name. Names do not depend on the case of
// letters. Pages (.html) and data (.svg, .png) are separate lists, as a page and a picture may share a name.
#include <QByteArray>
#include <QString>

enum class HtmlResourceKind { Page, Data };

/// Makes the module's resources known. Call once before the first look-up.
void InitHtmlResources();
/// Bytes of a resource, empty when there is none of that name.
QByteArray FindHtmlResource(const QString& name, HtmlResourceKind kind);
