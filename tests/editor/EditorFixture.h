// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A host with a handful of commands made for the tests, whose text and notices are kept.

#include <gtest/gtest.h>
#include <functional>
#include <string>
#include <vector>

#include "drafthost/editor/Document.h"
#include "drafthost/editor/DocumentLisp.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/HostObserver.h"
#include "drafthost/editor/InputStream.h"
#include "drafthost/editor/ScriptReader.h"

namespace drafthost::test {

/// PAIR asks for two words and notes them, NOTE asks for free text, NUM for a number from 1 to 9 or an
/// option, POINT for a point, FILE for a file name, WAIT pauses, WATCH is transparent and notes a word, LOAD
/// opens a drawing (or fails), SCRIPT, RESUME and RSCRIPT drive the script, BREAK fails, SETVAR is itself.
void addTestCommands(CommandTable& table);
/// What the commands have noted.
std::vector<std::string>& notes();

class Recorder : public HostObserver {
  public:
    std::vector<std::string> events;
    void commandWillStart(std::string_view name) override { add("start ", name); }
    void commandEnded(std::string_view name) override { add("end ", name); }
    void commandCancelled(std::string_view name) override { add("cancel ", name); }
    void commandFailed(std::string_view name) override { add("fail ", name); }
    void lispWillStart(std::string_view line) override { add("lisp ", line); }
    void lispEnded() override { add("lisp end", ""); }
    void lispCancelled() override { add("lisp cancel", ""); }
    void documentOpened(Document& document) override { add("open ", document.title()); }
    void documentClosing(Document& document) override { add("close ", document.title()); }

  private:
    void add(std::string what, std::string_view name) { events.push_back(what + std::string(name)); }
};

class EditorTest : public testing::Test {
  protected:
    EditorTest();
    ~EditorTest() override;

    /// Writes a file into the test's folder and gives its path.
    std::string write(const std::string& name, const std::string& text);
    std::string read(const std::string& path);
    /// A small drawing in the test's folder.
    std::string drawing(const std::string& name);
    /// Starts a script of that text.
    void script(const std::string& text, const std::string& name = "run.scr");
    /// Runs the event loop until nothing is left to do, or the condition holds.
    void run(const std::function<bool()>& until = {});
    /// Types and runs.
    void type(const std::string& text);
    std::string names() { return host.current() ? host.current()->commandLine().names() : ""; }

    std::string folder;
    Host host{""};
    std::string output;
    Recorder recorder;
};

}  // namespace drafthost::test
