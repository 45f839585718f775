// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>
#include <QTimer>

#include "drafthost/api/ApiHost.h"
#include "drafthost/editor/ModuleTable.h"
#include "drafthost/editor/RegistryFile.h"
#include "drafthost/lisp/World.h"
#include "tests/editor/EditorFixture.h"

namespace drafthost::test {
namespace {

using automation::ModuleStatus;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class ModuleTest : public EditorTest {
  protected:
    ModuleTest() { host.addSupportPath(MODULE_FOLDER); }
    ~ModuleTest() override {
        // A module stays in memory, and what it has noted with it.
        events();
    }

    void load() { ASSERT_EQ(host.modules().load("api_module", false), ModuleStatus::Done) << output; }
    /// What the module has noted since the last look.
    std::string events() {
        auto* get =
            reinterpret_cast<const char* (*)()>(host.modules().symbol("api_module.arx", "moduleEvents"));
        const std::string all = get ? get() : "";
        const std::string fresh = all.substr(std::min(seen_, all.size()));
        seen_ = all.size();
        return fresh;
    }

    ApiHost api{host};

  private:
    static inline std::size_t seen_ = 0;
};

TEST_F(ModuleTest, WhatCannotBeLoadedIsToldInOneLine) {
    write("text.arx", "no library\n");
    host.addSupportPath(folder);
    const struct {
        std::string name;
        const char* says;
    } cases[] = {{"nowhere", "nowhere.arx cannot be found"},
                 {"text", "text.arx"},
                 {"api_old", "version 18"},
                 {"api_bare", "does not export acrxGetApiVersion"},
                 {"api_refuses", "refused to start"}};
    for (const auto& one : cases) {
        output.clear();
        const ModuleStatus status = host.modules().load(one.name, true);
        EXPECT_TRUE(status == ModuleStatus::Failed || status == ModuleStatus::NotFound) << one.name;
        EXPECT_THAT(output, HasSubstr(one.says));
        EXPECT_EQ(std::count(output.begin(), output.end(), '\n'), 1) << output;
        EXPECT_THAT(host.modules().names(), testing::IsEmpty());
    }
}

TEST_F(ModuleTest, HearsOfItsLifeInOrder) {
    host.openDocument(drawing("second.dxf"), OpenMode::ReadWrite);
    load();
    EXPECT_EQ(events(), "msg1 msg3 msg3 ");
    EXPECT_EQ(host.current()->title(), "second.dxf");
    EXPECT_EQ(host.modules().load("API_MODULE.ARX", true), ModuleStatus::AlreadyLoaded);
    host.openDocument(drawing("third.dxf"), OpenMode::ReadWrite);
    EXPECT_EQ(events(), "constructed msg3 ");
    host.closeDocument(*host.current());
    EXPECT_EQ(events(), "msg4 destroyed ");
    type("closeothers\n");
    EXPECT_EQ(host.documents().size(), 1u);
    EXPECT_EQ(events(), "start:CLOSEOTHERS msg4 destroyed end:CLOSEOTHERS ");
    EXPECT_EQ(host.modules().unload("api_module", false), ModuleStatus::Done);
    output.clear();
    type("(swap \"x\")\nask\n");
    EXPECT_THAT(output, HasSubstr("no function definition: SWAP"));
    EXPECT_THAT(output, HasSubstr("Unknown command \"ASK\"."));
    load();
    EXPECT_EQ(events().substr(0, 5), "msg2 ");
    auto* get = reinterpret_cast<const char* (*)()>(host.modules().symbol("api_module.arx", "moduleEvents"));
    host.shutDown();
    EXPECT_THAT(std::string(get()), testing::EndsWith("beginQuit msg13 msg8 msg4 destroyed msg2 "));
}

TEST_F(ModuleTest, LockedModulesStay) {
    load();
    type("(arxunload \"api_module.arx\")\n(arx)\n");
    EXPECT_THAT(host.modules().names(), testing::IsEmpty());
    type("(arxload \"api_module\")\n");
    EXPECT_THAT(host.modules().names(), ElementsAre("api_module.arx"));
}

TEST_F(ModuleTest, ValuesGoThroughAsTheyAre) {
    load();
    type(
        "(echo-back 1 70000 2.5 \"t\xC3\xA4xt\" T nil '(1.0 2.0) '(1.0 2.0 3.0) '(\"a\" (1 . 2) nil) '())\n");
    EXPECT_THAT(output, HasSubstr("(1 70000 2.5 \"t\xC3\xA4xt\" T nil (1.0 2.0) (1.0 2.0 3.0) "
                                  "(\"a\" (1 . 2) nil) nil)"));
    output.clear();
    type("(progn (repeat 200000 (setq deep (list deep 1))) nil)\n(equal (echo-back deep) deep)\n");
    EXPECT_THAT(output, HasSubstr("deep)\nT\n"));
    output.clear();
    type("(echo-back)\n(survey)\n!fromModule\n");
    EXPECT_THAT(output, HasSubstr("\nnil\n"));
    EXPECT_THAT(output, HasSubstr("[\xC3\xA4|002.2|7  |z|%|ff]"));
    EXPECT_THAT(output, HasSubstr("\n\"\"\n"));
    EXPECT_THAT(output, HasSubstr("\n5\n"));
}

TEST_F(ModuleTest, ErrorsInsideDoNotTakeTheHostAlong) {
    load();
    script("(throw-it)\npair not read\n");
    EXPECT_THAT(output, HasSubstr("An error in api_module.arx: out of range"));
    EXPECT_EQ(host.script().state(), ScriptReader::State::Suspended);
    type("pair a b\n(if (vl-catch-all-error-p (vl-catch-all-apply 'fail-it)) (princ \"caught\"))\n");
    EXPECT_THAT(output, HasSubstr("caught"));
    EXPECT_THAT(notes(), ElementsAre("a+b"));
}

TEST_F(ModuleTest, CommandsAskWhoeverCalledThem) {
    load();
    script("ask\nno\n12\nMr  Smith\npair a b\n");
    EXPECT_THAT(output, HasSubstr("asked: 5100 5100 5100 No 12 Mr  Smith"));
    EXPECT_THAT(notes(), ElementsAre("a+b"));
    output.clear();
    type("(vl-cmdf \"ASK\" \"y\" \"3\" \"from lisp\")\n");
    EXPECT_THAT(output, HasSubstr("asked: 5100 5100 5100 Yes 3 from lisp"));
    // A wrong answer in the script suspends it, and a cancel ends the wait.
    output.clear();
    QTimer::singleShot(10, [this] { host.input().queue("\x03\x03\x03", false); });
    script("ask\nmaybe\nno\n");
    EXPECT_THAT(output, HasSubstr("\"maybe\" is not one of the options"));
    EXPECT_THAT(output, HasSubstr("asked: -5002"));
    EXPECT_EQ(host.script().state(), ScriptReader::State::Suspended);
}

TEST_F(ModuleTest, ItsCommandsCallOthersAndCanLeaveTheDrawing) {
    load();
    const std::string second = drawing("second.dxf");
    type("nest\npair a b\n");
    EXPECT_THAT(output, HasSubstr("nested: 5100 -5001 5100 5100\n"));
    EXPECT_THAT(notes(), ElementsAre("from+module", "half+done", "a+b")) << "what it left open is cancelled";
    for (const char* sdi : {"0", "1"}) {
        notes().clear();
        host.openDocument(drawing("first.dxf"), OpenMode::ReadWrite);
        type("(setvar \"SDI\" " + std::string(sdi) + ")\nleave " + second +
             "\npair c d\n(command \"NEST\")\n");
        EXPECT_EQ(host.current()->title(), "second.dxf");
        EXPECT_THAT(notes(), ElementsAre("in+second", "c+d", "from+module", "half+done"));
        EXPECT_EQ(names(), "");
    }
}

TEST_F(ModuleTest, ADrawingIsReplacedUnderRunningLisp) {
    load();
    host.variables().set("SDI", 1, output);
    events();
    script("(progn (swap \"" + drawing("one.dxf") +
           "\") (princ (strcat \"must not\" \" show\")) (say \"pair x y\\n\"))\n" + "(swap \"" +
           drawing("two.dxf") + "\")\n(swap \"" + folder + "/missing.dxf\")\npair end script\n");
    EXPECT_THAT(output, HasSubstr("swapped: 5100 documents: 1"));
    EXPECT_THAT(output, Not(HasSubstr("must not show")));
    EXPECT_THAT(output, Not(HasSubstr("; error")));
    EXPECT_THAT(output, HasSubstr("missing.dxf: No such file"));
    EXPECT_THAT(output, HasSubstr("swapped: -5001 documents: 1"));
    EXPECT_THAT(notes(), ElementsAre("after+swap", "after+swap", "after+swap", "end+script"));
    EXPECT_EQ(host.current()->title(), "two.dxf");
    EXPECT_THAT(events(), HasSubstr("start:LOAD msg4 destroyed constructed msg3 end:LOAD start:PAIR end:PAIR "
                                    "start:LOAD msg4 destroyed constructed msg3 end:LOAD"));
}

TEST_F(ModuleTest, StringsThatItSendsWaitForTheEndOfItsCall) {
    load();
    type("(progn (say \"pair sent 1\\n\") (command \"PAIR\" \"in\" \"lisp\"))\n");
    EXPECT_THAT(notes(), ElementsAre("in+lisp", "sent+1"));
    notes().clear();
    // Cancels in the string count at once: they break the call that sends them.
    type("(progn (say \"\\003\\003pair sent 2\\n\") (while t))\n");
    EXPECT_THAT(notes(), ElementsAre("sent+2"));
    EXPECT_THAT(output, HasSubstr("Function cancelled"));
    EXPECT_THAT(events(), HasSubstr("lispCancelled"));
}

}  // namespace
}  // namespace drafthost::test
