// SPDX-License-Identifier: GPL-3.0-or-later
// The LISP functions that set a run up.
#include "state/StateFile.h"
#include "tests/engine/RunFixture.h"

#include <QFile>

namespace {

class LispTest : public RunTest {
  protected:
    QString call(const char* name, const std::vector<LispValue>& arguments = {}) {
        return host.CallLisp(QString::fromLatin1(name), arguments);
    }
    bool saved(const char* text) const { return Content(DataPath("TarnelRunner.xml")).contains(text); }
};

}  // namespace

TEST_F(LispTest, SwitchesAreReadSetAndSaved) {
    EXPECT_EQ(call("Tarnel_DoReadOnly"), "nil");
    EXPECT_EQ(call("Tarnel_DoReadOnly", {LispValue::T()}), "T");
    EXPECT_TRUE(saved("<ProcessReadOnly>1<"));
    EXPECT_EQ(call("Tarnel_DoReadOnly"), "T");
    EXPECT_EQ(call("Tarnel_DoReadOnly", {LispValue::Integer(1)}), "nil");
    EXPECT_EQ(host.Printed, "Invalid parameter: expected bool\n");
    EXPECT_TRUE(saved("<ProcessReadOnly>1<"));
    EXPECT_EQ(call("Tarnel_DoReadOnly", {LispValue::Nil()}), "nil");
    EXPECT_TRUE(saved("<ProcessReadOnly>0<"));

    MarkTrace();
    EXPECT_EQ(call("Tarnel_SetRecoverMode", {LispValue::T()}), "T");
    EXPECT_EQ(TraceLines(), (QStringList{"DoSetRecoverMode", "LoadState", "GetArgs", "SetRecoverMode: true",
                                         "SaveState", "Return"}));
    EXPECT_TRUE(TarnelData().RecoverMode);
}

TEST_F(LispTest, SettersActOnWhatTheFileSays) {
    SetQueue({MakeFile("a.dxf")});
    TarnelData().MaxTime = 7;
    call("Tarnel_DoReadOnly", {LispValue::T()});
    EXPECT_EQ(TarnelData().MaxTime, 60u);
    EXPECT_EQ(SavedStatuses(), "0");
}

TEST_F(LispTest, ChainSwitchTakesIntegersAndIgnoresTheRest) {
    QFile::remove(DataPath("TarnelRunner.xml"));
    EXPECT_EQ(call("TarnelDisableScriptChain"), "nil");
    EXPECT_EQ(call("TarnelDisableScriptChain", {LispValue::Integer(2)}), "T");
    EXPECT_EQ(call("TarnelDisableScriptChain"), "T");
    EXPECT_EQ(call("TarnelDisableScriptChain", {LispValue::String("x")}), "none");
    EXPECT_TRUE(TarnelData().DisableScriptChain);
    EXPECT_EQ(call("TarnelDisableScriptChain", {LispValue::Long(0)}), "nil");
    EXPECT_EQ(call("TarnelDisableScriptChain", {LispValue::T()}), "T");
    EXPECT_EQ(call("TarnelDisableScriptChain", {LispValue::Nil()}), "nil");
    EXPECT_TRUE(host.Printed.isEmpty());
    EXPECT_FALSE(QFile::exists(DataPath("TarnelRunner.xml")));
}

TEST_F(LispTest, MaskIsAllDrawingsUntilOneIsSet) {
    TarnelData().Filter = "*.txt";
    SaveState(nullptr, 1);
    EXPECT_EQ(call("Tarnel_SetMask"), "str *.dwg");
    EXPECT_EQ(call("Tarnel_SetMask", {LispValue::String("*.dxf")}), "T");
    EXPECT_EQ(call("Tarnel_SetMask"), "str *.dxf");
    EXPECT_TRUE(saved("<Filter>*.dxf<"));
    EXPECT_EQ(call("Tarnel_SetMask", {LispValue::T()}), "nil");
    EXPECT_EQ(host.Printed, "Invalid parameter: expected string\n");
}

TEST_F(LispTest, ScriptIsTakenFromAFile) {
    const auto write = [&](const char* text) {
        QFile file(MakeFile("s.scr"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(text);
        return file.fileName();
    };
    const QString path = write(";DESCRIPTION:What it does\nzoom e\n");
    EXPECT_EQ(call("Tarnel_SetScript", {LispValue::String(path)}), "T");
    EXPECT_EQ(TarnelData().ScriptDescription, "What it does");
    EXPECT_EQ(TarnelData().LastScriptFile, path);
    EXPECT_EQ(call("Tarnel_SetScript"), "str zoom e\n");
    write(" ;DESCRIPTION:no\n");
    EXPECT_EQ(call("Tarnel_SetScript", {LispValue::String(path)}), "T");
    EXPECT_EQ(TarnelData().ScriptDescription, "");
    EXPECT_EQ(call("Tarnel_SetScript"), "str  ;DESCRIPTION:no\n");
    EXPECT_EQ(call("Tarnel_SetScript", {LispValue::String("/no/such.scr")}), "T");
    EXPECT_TRUE(saved("<Script/>"));
    EXPECT_EQ(call("Tarnel_SetScript", {LispValue::Integer(3)}), "nil");
}

TEST_F(LispTest, ListOfPathsReplacesTheQueueAndStartsARun) {
    SetQueue({MakeFile("old.dxf")});
    TarnelData().SortIdx = 0;
    TarnelData().SortReverse = 1;
    SaveState(nullptr, 1);
    const QString b = MakeFile("b.dxf");
    const QString a = MakeFile("a.dxf");
    EXPECT_EQ(call("C:Tarnel", {LispValue::Mark(5016), LispValue::String(b), LispValue::String(a),
                                LispValue::Mark(5017)}),
              "T");
    host.RunInput();
    EXPECT_EQ(SavedStatuses(), "1 1");
    EXPECT_EQ(host.CallsOf("command ._open"), (QStringList{"command ._open|" + b, "command ._open|" + a}));
    // Only the dialog at the end was shown.
    EXPECT_EQ(host.CallsOf("ui dialog").size(), 1);

    EXPECT_EQ(call("C:Tarnel", {LispValue::Mark(5016), LispValue::Mark(5017)}), "T");
    host.RunInput();
    EXPECT_EQ(SavedStatuses(), "");
    EXPECT_EQ(call("C:Tarnel"), "T");
    EXPECT_EQ(host.CallsOf("ui dialog").size(), 3);
}
