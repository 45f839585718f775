// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/editor/EditorFixture.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <sstream>

#include "drafthost/drawing/Drawing.h"
#include "drafthost/lisp/Printer.h"

namespace drafthost::test {
namespace {

CommandTask pairCommand(CommandContext& context) {
    Answer first = co_await context.word("First");
    Answer second = co_await context.word("Second", {.defaultText = "two"});
    notes().push_back(first.text + "+" + second.text);
}

CommandTask noteCommand(CommandContext& context) {
    Answer answer = co_await context.text("Text");
    notes().push_back(answer.text);
}

Task<double> askNumber(CommandContext& context) {
    Answer answer = co_await context.real(
        "Number", {.keywords = "All eXit 3P", .noEmpty = true, .minimum = 1.0, .maximum = 9.0});
    co_return answer.isKeyword() ? -double(answer.keyword.size()) : answer.real;
}

CommandTask numberCommand(CommandContext& context) {
    double number = co_await askNumber(context);
    notes().push_back(lisp::formatReal(number));
}

CommandTask pointCommand(CommandContext& context) {
    Answer answer = co_await context.point("Point");
    for (const double coordinate : {answer.point.x, answer.point.y, answer.point.z}) {
        notes().push_back(lisp::formatReal(coordinate));
    }
}

CommandTask fileCommand(CommandContext& context) {
    Answer answer = co_await context.fileName("File", "default.dxf");
    notes().push_back(answer.text);
}

CommandTask waitCommand(CommandContext& context) {
    Answer answer = co_await context.integer("Milliseconds");
    co_await context.delay(answer.integer);
    notes().push_back("waited");
}

CommandTask watchCommand(CommandContext& context) {
    Answer answer = co_await context.word("Watch");
    notes().push_back("watch " + answer.text);
}

CommandTask openCommand(CommandContext& context) {
    Answer answer = co_await context.fileName("Drawing");
    OpenResult result = context.host().openDocument(answer.text, OpenMode::ReadWrite);
    if (!result.document) {
        context.fail(result.error);
    }
}

CommandTask scriptCommand(CommandContext& context) {
    Answer answer = co_await context.fileName("Script");
    std::string error;
    if (!context.host().script().start(answer.text, error)) {
        context.fail(error);
    }
}

CommandTask resumeCommand(CommandContext& context) {
    if (!context.host().script().resume()) {
        context.fail("No script is suspended.");
    }
    co_return;
}

CommandTask breakCommand(CommandContext& context) {
    context.fail("It broke.");
    co_return;
}

CommandTask setvarCommand(CommandContext& context) {
    Answer name = co_await context.word("Variable");
    Answer value = co_await context.text("Value");
    std::string reason;
    if (context.host().variables().setFromText(name.text, value.text, reason) != VariableStatus::Ok) {
        context.complain(reason);
    }
}

}  // namespace

std::vector<std::string>& notes() {
    static std::vector<std::string> all;
    return all;
}

void addTestCommands(CommandTable& table) {
    table.add("PAIR", pairCommand);
    table.add("NOTE", noteCommand);
    table.add("NUM", numberCommand);
    table.add("POINT", pointCommand);
    table.add("FILE", fileCommand);
    table.add("WAIT", waitCommand);
    table.add("WATCH", watchCommand, CommandTransparent);
    table.add("LOAD", openCommand);
    table.add("SCRIPT", scriptCommand, CommandNoRepeat);
    table.add("RESUME", resumeCommand, CommandTransparent | CommandNoRepeat);
    table.add("BREAK", breakCommand);
    table.add("SETVAR", setvarCommand, CommandTransparent);
    table.addAlias("P", "PAIR");
}

EditorTest::EditorTest() {
    notes().clear();
    folder = std::filesystem::temp_directory_path().string() + "/editor-XXXXXX";
    if (!mkdtemp(folder.data())) {
        std::abort();
    }
    addTestCommands(host.commands());
    host.variables().add({.name = "SDI", .defaultValue = 0, .minimum = 0, .maximum = 1});
    host.variables().add({.name = "CMDECHO", .defaultValue = 1});
    host.variables().add({.name = "LOGFILEPATH", .defaultValue = folder});
    host.setOutput([this](std::string_view text) { output += text; });
    host.addObserver(&recorder);
    host.newDocument();
    recorder.events.clear();
}

EditorTest::~EditorTest() {
    host.shutDown();
    host.removeObserver(&recorder);
    std::filesystem::remove_all(folder);
}

std::string EditorTest::write(const std::string& name, const std::string& text) {
    const std::string path = folder + "/" + name;
    std::ofstream(path, std::ios::binary) << text;
    return path;
}

std::string EditorTest::read(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

std::string EditorTest::drawing(const std::string& name) {
    return write(name, Drawing::createNew(true)->serialise());
}

void EditorTest::script(const std::string& text, const std::string& name) {
    std::string error;
    ASSERT_TRUE(host.script().start(write(name, text), error)) << error;
    run();
}

void EditorTest::run(const std::function<bool()>& until) {
    constexpr int LongestMilliseconds = 5000;
    QElapsedTimer timer;
    timer.start();
    host.input().wake();
    do {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        // A second round takes what the first has posted.
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    } while (until && !until() && timer.elapsed() < LongestMilliseconds);
}

void EditorTest::type(const std::string& text) {
    host.input().type(text);
    run();
}

}  // namespace drafthost::test
