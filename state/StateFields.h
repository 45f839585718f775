// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The fields of the options in the order of the file. The reader only goes forward, so the order is part of
// the format; reader and writer walk this one list and cannot differ.
#include "engine/record/TarnelData.h"

/// Calls the visitor with each element's name and the record's field, in the file's order.
template <class Visitor>
void VisitOptions(CTarnelData& data, Visitor& visitor) {
    visitor.Number(u"UseFilter", data.UseFilter);
    visitor.String(u"Filter", data.Filter);
    visitor.Number(u"Recurse", data.Recurse);
    visitor.Number(u"IncludeReadOnly", data.IncludeReadOnly);
    visitor.Boolean(u"ProcessReadOnly", data.ProcessReadOnly);
    visitor.String(u"ScriptDescription", data.ScriptDescription);
    visitor.Narrow(u"Script", data.Script);
    visitor.ScriptModified(u"ScriptModified", data);
    visitor.String(u"LastScriptFile", data.LastScriptFile);
    visitor.Number(u"MaxTime", data.MaxTime);
    visitor.Number(u"AlarmTime", data.AlarmTime);
    visitor.Number(u"SortIdx", data.SortIdx);
    visitor.Number(u"SortReverse", data.SortReverse);
    visitor.Boolean(u"FileTabButtonText", data.FileTabButtonText);
    visitor.Boolean(u"DoDirRefresh", data.DoDirRefresh);
    visitor.Number(u"ShowWhitespace", data.ShowWhitespace);
    visitor.Number(u"ShowEOL", data.ShowEOL);
    visitor.Boolean(u"WarnNoSave", data.WarnNoSave);
    visitor.Boolean(u"WarnDialogCommand", data.WarnDialogCommand);
    visitor.Boolean(u"WarnDialogCmdReplacement", data.WarnDialogCmdReplacement);
}

template <class Visitor>
void VisitRect(WindowRect& rect, Visitor& visitor) {
    visitor.Number(u"Left", rect.Left);
    visitor.Number(u"Right", rect.Right);
    visitor.Number(u"Top", rect.Top);
    visitor.Number(u"Bottom", rect.Bottom);
}

template <class Visitor>
void VisitWindowState(CTarnelData& data, Visitor& visitor) {
    visitor.Number(u"LastTab", data.LastTab);
    visitor.Number(u"WasMaximized", data.WasMaximized);
    VisitRect(data.MainWindow, visitor);
    visitor.Number(u"ColumnWidth0", data.ColumnWidths[0]);
    visitor.Number(u"ColumnWidth1", data.ColumnWidths[1]);
    visitor.Number(u"ColumnWidth2", data.ColumnWidths[2]);
    visitor.Number(u"ColumnWidth3", data.ColumnWidths[3]);
}
