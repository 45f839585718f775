// SPDX-License-Identifier: GPL-3.0-or-later
// The host's variables of a run, also over a crash.
#include "engine/HostVariables.h"
#include "rxregsvc.h"
#include "tests/engine/RunFixture.h"

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* appId);

TEST_F(RunTest, MaskLeavesOutVariablesBothWays) {
    SaveSystemVars(CmddiaVar | FilediaVar, 0, 0, 0, 1);
    EXPECT_EQ(host.CallsOf("setvar"), (QStringList{"setvar CMDDIA 0", "setvar FILEDIA 0"}));
    EXPECT_TRUE(TarnelData().SysVarsSaved);
    host.Calls.clear();
    ResetSystemVars();
    EXPECT_EQ(host.CallsOf("setvar"), (QStringList{"setvar CMDDIA 1", "setvar FILEDIA 1"}));
    host.Calls.clear();
    ResetSystemVars();
    EXPECT_TRUE(host.CallsOf("setvar").isEmpty());
}

TEST_F(RunTest, VariableThatCannotBeSetIsPassedOver) {
    host.ReadOnlyVariables << "SDI";
    SetQueue({MakeFile("a.dxf")});
    StartRun();
    EXPECT_EQ(SavedStatuses(), "1");
    EXPECT_EQ(host.Variables["CMDECHO"], 1);
}

TEST_F(RunTest, VariablesComeBackAfterACrash) {
    SetQueue({MakeFile("a.dxf")});
    ui.DialogAnswers = {RunUi::Ok};
    Command("TARNEL");
    host.RunInput(2);
    EXPECT_TRUE(Content(DataPath("TarnelRunner.xml")).contains("<SDI>0</SDI>\r\n<CMDDIA>1</CMDDIA>"));
    // The host dies and comes up again with the run's values in its variables.
    TearDown();
    const QHash<QString, QVariant> left = host.Variables;
    SetUp();
    host.Variables = left;
    EXPECT_EQ(host.Variables["SDI"], 1);
    Command("TARNEL");
    EXPECT_EQ(host.Variables["SDI"], 0);
    EXPECT_EQ(host.Variables["FILEDIA"], 1);
    EXPECT_FALSE(Content(DataPath("TarnelRunner.xml")).contains("<SysVars>"));
    EXPECT_EQ(SavedStatuses(), "5");
}

TEST_F(RunTest, VariablesComeBackAfterACrashThatALispStartFollows) {
    const QString file = MakeFile("a.dxf");
    SetQueue({file});
    host.CallLisp("TNL_Start_Batch");
    TearDown();
    const QHash<QString, QVariant> left = host.Variables;
    SetUp();
    host.Variables = left;
    host.CallLisp("C:Tarnel", {LispValue::Mark(RTLB), LispValue::String(file), LispValue::Mark(RTLE)});
    host.RunInput();
    EXPECT_EQ(SavedStatuses(), "1");
    EXPECT_EQ(host.Variables["SDI"], 0);
    EXPECT_EQ(host.Variables["CMDECHO"], 1);
}

TEST_F(RunTest, VariablesComeBackAtTheStartThatFollowsACrash) {
    SetQueue({MakeFile("a.dxf")});
    host.CallLisp("TNL_Start_Batch");
    EXPECT_EQ(host.Variables["SDI"], 1);
    const QByteArray state = Content(DataPath("TarnelRunner.xml"));
    TearDown();
    const QHash<QString, QVariant> left = host.Variables;
    host.Reset();
    host.Variables = left;
    acrxEntryPoint(AcRx::kInitAppMsg, this);
    EXPECT_EQ(host.Variables["SDI"], 0);
    EXPECT_EQ(host.Variables["FILEDIA"], 1);
    EXPECT_EQ(Content(DataPath("TarnelRunner.xml")), state) << "only looked at";
}
