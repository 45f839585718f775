// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/editor/Host.h"

#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <random>

#include "drafthost/drawing/Drawing.h"
#include "drafthost/editor/CommandLine.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/DocumentLisp.h"
#include "drafthost/editor/HostObserver.h"
#include "drafthost/editor/InputStream.h"
#include "drafthost/editor/ModuleCommands.h"
#include "drafthost/editor/ModuleTable.h"
#include "drafthost/editor/ProgramFiles.h"
#include "drafthost/editor/RegistryFile.h"
#include "drafthost/editor/ReportChannel.h"
#include "drafthost/editor/ScriptReader.h"
#include "system/FileJournal.h"

namespace drafthost {

namespace fs = std::filesystem;

namespace {

std::string absolute(const std::string& path) {
    std::error_code code;
    fs::path full = fs::absolute(path, code);
    return code ? path : full.lexically_normal().string();
}

bool isSameFile(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

}  // namespace

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

// --- documents ---

std::vector<Document*> Host::documents() const {
    std::vector<Document*> all;
    for (const auto& document : documents_) {
        all.push_back(document.get());
    }
    return all;
}

bool Host::isOpen(const Document* document) const {
    return std::any_of(documents_.begin(), documents_.end(),
                       [&](const auto& other) { return other.get() == document; });
}

Document* Host::openFile(const std::string& path) const {
    struct stat wanted {};
    if (::stat(path.c_str(), &wanted) != 0) {
        return nullptr;
    }
    for (const auto& document : documents_) {
        struct stat other {};
        if (document->hasName() && ::stat(document->path().c_str(), &other) == 0 &&
            isSameFile(wanted, other)) {
            return document.get();
        }
    }
    return nullptr;
}

OpenResult Host::openDocument(const std::string& name, OpenMode mode) {
    OpenResult result;
    const std::string path = absolute(name);
    const bool single = isSingleDocument();
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) {
        result.error = path + ": " + std::strerror(errno);
        return result;
    }
    if (!S_ISREG(info.st_mode)) {
        result.error = path + " is not a file.";
        return result;
    }
    Document* already = openFile(path);
    const bool again = already && single && already == current_;
    std::optional<FileLock> lock;
    if (mode == OpenMode::ReadWrite) {
        if (already && !again) {
            result.error = path + " is open already.";
            result.locked = true;
            return result;
        }
        if (again) {
            // The document that this one replaces holds the lock; it is handed on.
            lock = std::move(already->lock_);
        }
        if (!lock) {
            lock = FileLock::acquire(path, result.error);
            if (const std::string lost = files::Journal().TakeError(); !lost.empty()) {
                printLine(lost);
            }
        }
        if (!lock) {
            result.locked = true;
            return result;
        }
    }
    auto drawing = Drawing::open(path, result.error);
    if (!drawing) {
        if (again) {
            already->lock_ = std::move(lock);
        }
        return result;
    }
    auto document = std::make_unique<Document>(
        *this, std::move(drawing), path, fs::path(path).filename().string(), mode == OpenMode::ReadOnly);
    document->lock_ = std::move(lock);
    return take(std::move(document));
}

OpenResult Host::newDocument(const std::string& templatePath) {
    OpenResult result;
    std::unique_ptr<Drawing> drawing;
    if (templatePath.empty()) {
        drawing = Drawing::createNew(variables_.integer("MEASUREINIT", 0) != 0);
    } else {
        drawing = Drawing::open(absolute(templatePath), result.error);
    }
    if (!drawing) {
        return result;
    }
    drawing->setModified(false);
    return take(std::make_unique<Document>(*this, std::move(drawing), std::string(),
                                           "Drawing" + std::to_string(++newDocuments_) + ".dxf", false));
}

OpenResult Host::take(std::unique_ptr<Document> owned) {
    Document* document = owned.get();
    if (isSingleDocument() && current_) {
        detach(*current_);
    }
    documents_.push_back(std::move(owned));
    current_ = document;
    if (variables_.integer("LOGFILEMODE", 0) != 0) {
        document->startLog();
    }
    notify([&](HostObserver& observer) { observer.documentOpened(*document); });
    notify([&](HostObserver& observer) { observer.documentActivated(document); });
    modules_->sendToAll(AcRx::kLoadDwgMsg);
    document->lisp().startUp();
    input_->wake();
    return {isOpen(document) ? document : nullptr, {}, false};
}

void Host::closeDocument(Document& document) {
    if (!isOpen(&document)) {
        return;
    }
    const bool wasCurrent = current_ == &document;
    detach(document);
    if (wasCurrent && !documents_.empty()) {
        activate(*documents_.back());
    } else if (wasCurrent) {
        notify([&](HostObserver& observer) { observer.documentActivated(nullptr); });
    }
    input_->wake();
}

void Host::detach(Document& document) {
    Document* before = current_;
    current_ = &document;
    modules_->sendToFunctionOwners(AcRx::kUnloadDwgMsg);
    document.commandLine().cancelAll();
    freshLine();
    document.stopLog();
    notify([&](HostObserver& observer) { observer.documentClosing(document); });
    document.closed_ = true;
    document.lock_.reset();
    auto place = std::find_if(documents_.begin(), documents_.end(),
                              [&](const auto& other) { return other.get() == &document; });
    closed_.push_back(std::move(*place));
    documents_.erase(place);
    current_ = before == &document ? nullptr : before;
}

void Host::activate(Document& document) {
    if (!isOpen(&document) || current_ == &document) {
        return;
    }
    freshLine();
    current_ = &document;
    notify([&](HostObserver& observer) { observer.documentActivated(&document); });
    input_->wake();
}

void Host::forEachDocument(const std::function<void()>& function) {
    Document* before = current_;
    for (Document* document : documents()) {
        if (isOpen(document)) {
            current_ = document;
            function();
        }
    }
    current_ = isOpen(before) ? before : documents_.empty() ? nullptr : documents_.back().get();
}

void Host::releaseClosed() {
    if (input_->isIdle()) {
        // Moved away first: the end of a document may close another.
        auto going = std::move(closed_);
        closed_.clear();
    }
}

Document* Host::standIn() {
    if (!standIn_) {
        standIn_ =
            std::make_unique<Document>(*this, Drawing::createNew(false), std::string(), std::string(), true);
    }
    return standIn_.get();
}

bool Host::isSingleDocument() const {
    return variables_.integer("SDI", 0) != 0 || modules_->needsSingleDocument();
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

void Host::tellLostLog(const std::string& cause) {
    lostLog_ = true;
    printLine(cause);
}

std::string Host::nextLogName(const std::string& drawing) {
    static std::mt19937 random{std::random_device{}()};
    char tail[48];
    std::snprintf(tail, sizeof tail, "_%d_1_%04x.log", ++logs_, unsigned(random() & 0xFFFF));
    return drawing + tail;
}

// --- files ---

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
