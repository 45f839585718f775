// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/state/StateSample.h"

QString SampleDirectory(std::int64_t i) {
    return QStringLiteral("/srv/projects/%1-hospital-extension/drawings/").arg(i / 40);
}

QString SampleName(std::int64_t i) {
    return QStringLiteral("A-%1 floor plan.dxf").arg(i, 6, 10, QLatin1Char('0'));
}

QByteArray SampleState(std::int64_t files) {
    QByteArray text =
        "<TarnelRunner Version=\"3.0.0\" Build=\"17\">\r\n<Options>\r\n<UseFilter>0</UseFilter>\r\n"
        "<Filter>*.dxf</Filter>\r\n<Recurse>1</Recurse>\r\n<IncludeReadOnly>0</IncludeReadOnly>\r\n"
        "<ProcessReadOnly>0</ProcessReadOnly>\r\n<ScriptDescription/>\r\n<Script>zoom e\nqsave\n</Script>\r\n"
        "<ScriptModified>0</ScriptModified>\r\n<LastScriptFile>/home/me/z.scr</LastScriptFile>\r\n"
        "<MaxTime>60</MaxTime>\r\n<AlarmTime>40</AlarmTime>\r\n<SortIdx>6</SortIdx>\r\n"
        "</Options>\r\n<Files>\r\n";
    for (std::int64_t i = 0; i < files; ++i) {
        text += "<File Status=\"" + QByteArray::number(i % 7) + "\">" +
                (SampleDirectory(i) + SampleName(i)).toUtf8() + "</File>\r\n";
    }
    return text + "</Files>\r\n</TarnelRunner>\r\n";
}
