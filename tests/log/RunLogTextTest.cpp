// SPDX-License-Identifier: GPL-3.0-or-later
// Lines of a run log, as they are written and read back.
#include "log/RunLogText.h"

#include <gtest/gtest.h>

namespace {

QByteArray lineOf(const QString& id, const QString& name) {
    return EncodeRunLog(RunLogLineText(QStringLiteral("T"), ProcessingHtml(id, name)));
}

}  // namespace

TEST(RunLogText, NamesStandAsTheyAreButForWhatAPageWouldTakeForMarkup) {
    struct Case {
        const char* Name;
        const char* Written;
    };
    for (const Case& one :
         {Case{"/a/b & c.dxf", "/a/b & c.dxf"}, Case{"R&D;'x'.dxf", "R&D;'x'.dxf"},
          Case{"\u043f\u043b\u0430\u043d.dxf", "\u043f\u043b\u0430\u043d.dxf"},
          Case{"<script>a\"b", "&lt;script&gt;a&quot;b"}, Case{"a\nb\tc\x7f", "a&#10;b&#9;c&#127;"},
          Case{"a&amp;b&#65;c", "a&amp;amp;b&amp;#65;c"}, Case{"x&copyright", "x&amp;copyright"},
          Case{"&hearts;&hearts", "&amp;hearts;&hearts"}, Case{"&", "&"}}) {
        const QString name = QString::fromUtf8(one.Name);
        EXPECT_EQ(EscapeLogName(name).toUtf8().toStdString(), one.Written);
        const RunLogContent log = ReadRunLog("<html><body>" + lineOf(name, name));
        ASSERT_EQ(log.Entries.size(), 1u) << one.Name;
        EXPECT_EQ(log.Entries[0].Id.toStdString(), name.toStdString());
        EXPECT_EQ(log.Entries[0].Name.toStdString(), name.toStdString());
    }
}

TEST(RunLogText, ReadsWhatStandsThereAndTellsWhetherItIsAll) {
    const QString time = RunLogTime();
    const QByteArray start = EncodeRunLog(RunLogHead + RunLogLineText(time, BatchStartedHtml()));
    const QByteArray end = EncodeRunLog(RunLogLineText(time, BatchCompletedHtml()) + RunLogTail);
    const RunLogContent whole = ReadRunLog(start + lineOf("i", "a") + lineOf("", "b") + end);
    EXPECT_TRUE(whole.IsWhole);
    ASSERT_EQ(whole.Entries.size(), 4u);
    EXPECT_EQ(whole.Entries[0].Kind, RunLogEntry::Started);
    EXPECT_EQ(whole.Entries[0].Time, time);
    EXPECT_EQ(whole.Entries[1].Kind, RunLogEntry::File);
    EXPECT_EQ(whole.Entries[2].Id, QString());
    EXPECT_EQ(whole.Entries[3].Kind, RunLogEntry::Completed);

    const RunLogContent cut = ReadRunLog(start + lineOf("i", "a") + lineOf("j", "b").chopped(9));
    EXPECT_FALSE(cut.IsWhole);
    EXPECT_EQ(cut.Entries.size(), 2u);
}
