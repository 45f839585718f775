// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/editor/Host.h"

#include <unistd.h>
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <random>

#include "drafthost/drawing/Drawing.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/HostObserver.h"
#include "drafthost/editor/InputStream.h"
#include "drafthost/editor/ModuleCommands.h"
#include "drafthost/editor/ModuleTable.h"
#include "drafthost/editor/ProgramFiles.h"
#include "drafthost/editor/RegistryFile.h"
#include "drafthost/editor/ReportChannel.h"
#include "drafthost/editor/ScriptReader.h"

namespace drafthost {

namespace fs = std::filesystem;

Host::Host(const std::string& registryPath)
    : variables_(*this),
      registry_(std::make_unique<RegistryFile>(registryPath)),
      script_(std::make_unique<ScriptReader>()),
      input_(std::make_unique<InputStream>(*this)),
      moduleCommands_(std::make_unique<ModuleCommands>()),
      modules_(std::make_unique<ModuleTable>(*this)),
      programs_(std::make_unique<ProgramFiles>(*this)) {
    supportPath_ = {programFolder() + "support/"};
}

Host::~Host() {
    shutDown();
}

// --- text ---

void Host::setReport(std::unique_ptr<ReportChannel> report) {
    report_ = std::move(report);
}

void Host::print(std::string_view text, Said said) {
    if (text.empty()) {
        return;
    }
    ++textMark_;
    lastLine_.add(text);
    lineOpen_ = text.back() != '\n';
    if (current_) {
        current_->log().write(text);
    }
    if (report_ && said != Said::Aside) {
        report_->say(text);
    } else if (report_) {
        report_->sayAside(text);
    }
    if (output_) {
        constexpr std::size_t Enough = 1 << 16;
        line_ += text;
        if (!lineOpen_ || line_.size() > Enough) {
            handOut();
        }
    }
}

void Host::freshLine() {
    if (lineOpen_) {
        print("\n");
    }
}

void Host::printLine(std::string_view text, Said said) {
    freshLine();
    if (report_ && said == Said::Refusal) {
        report_->because(text);
    }
    print(std::string(text) + "\n", said);
}

void Host::logTyped(std::string_view text) {
    if (current_) {
        current_->log().write(std::string(text) + "\n");
    }
    ++textMark_;
    lineOpen_ = false;
}

void Host::flushOutput() {
    handOut();
    if (report_) {
        report_->flush();
    }
}

void Host::handOut() {
    if (output_ && !line_.empty()) {
        output_(line_);
        line_.clear();
    }
}

void Host::giveAway(const LogRest& rest) {
    if (!report_ || !report_->logRest(rest)) {
        lostLog_ = true;
        printLine("The log " + rest.path + " is not whole: " + rest.cause);
    }
}

std::string Host::nextLogName(const std::string& drawing) {
    static std::mt19937 random{std::random_device{}()};
    char tail[48];
    std::snprintf(tail, sizeof tail, "_%d_1_%04x.log", ++logs_, unsigned(random() & 0xFFFF));
    // A name has its limit, and a log that lacks text gets four bytes more. Not in the middle of a character.
    constexpr std::size_t LongestName = 255 - 4;
    std::size_t length = std::min(drawing.size(), LongestName - std::strlen(tail));
    while (length > 0 && length < drawing.size() &&
           (static_cast<unsigned char>(drawing[length]) & 0xC0) == 0x80) {
        --length;
    }
    return drawing.substr(0, length) + tail;
}

// --- files ---

std::string Host::absolute(const std::string& path) {
    std::error_code code;
    const fs::path full = fs::absolute(path, code);
    return code ? path : full.lexically_normal().string();
}

std::string Host::programFolder() {
    std::error_code code;
    fs::path program = fs::read_symlink("/proc/self/exe", code);
    return code ? std::string() : program.parent_path().string() + "/";
}

void Host::addSupportPath(const std::string& folder) {
    const std::string path = absolute(folder);
    supportPath_.insert(supportPath_.end() - 1, path.ends_with('/') ? path : path + "/");
}

std::string Host::findFile(std::string_view name) const {
    if (name.empty()) {
        return {};
    }
    if (ProgramFiles::isProgram(name)) {
        return programs_->find(name, {}).path;
    }
    std::error_code code;
    const std::string file(name);
    if (file.find('/') != std::string::npos) {
        return fs::exists(file, code) ? absolute(file) : std::string();
    }
    std::vector<std::string> folders = {"./"};
    if (current_ && current_->hasName()) {
        folders.push_back(fs::path(current_->path()).parent_path().string() + "/");
    }
    folders.insert(folders.end(), supportPath_.begin(), supportPath_.end());
    folders.push_back(programFolder());
    for (const std::string& folder : folders) {
        if (fs::exists(folder + file, code)) {
            return absolute(folder + file);
        }
    }
    return {};
}

std::string Host::findStartUp(std::string_view name) const {
    std::error_code code;
    for (const std::string& folder : supportPath_) {
        if (std::string path = folder + std::string(name); fs::exists(path, code)) {
            return path;
        }
    }
    return {};
}

// --- end ---

void Host::requestQuit() {
    quitRequested_ = true;
    input_->wake();
}

void Host::shutDown() {
    if (ended_) {
        return;
    }
    ended_ = true;
    quitRequested_ = true;
    script_->stop();
    notify([](HostObserver& observer) { observer.beginQuit(); });
    notify([](HostObserver& observer) { observer.quitWillStart(); });
    modules_->sendToAll(AcRx::kPreQuitMsg);
    modules_->sendToFunctionOwners(AcRx::kQuitMsg);
    while (!documents_.empty()) {
        detach(*documents_.back());
    }
    modules_->unloadAll();
    closed_.clear();
    std::string error;
    if (!registry_->save(error)) {
        printLine(error);
    }
    freshLine();
    flushOutput();
}

// --- observers ---

void Host::addObserver(HostObserver* observer) {
    observers_.push_back(observer);
}

void Host::removeObserver(HostObserver* observer) {
    // The place stays: notices may be on their way.
    std::replace(observers_.begin(), observers_.end(), observer, static_cast<HostObserver*>(nullptr));
}

}  // namespace drafthost
