// SPDX-License-Identifier: GPL-3.0-or-later
// The open documents of the host: opening, making, choosing and closing them.
#include "drafthost/editor/Host.h"

#include <sys/stat.h>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "drafthost/drawing/Drawing.h"
#include "drafthost/editor/CommandLine.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/DocumentLisp.h"
#include "drafthost/editor/HostObserver.h"
#include "drafthost/editor/InputStream.h"
#include "drafthost/editor/ModuleTable.h"
#include "system/FileJournal.h"

namespace drafthost {

namespace fs = std::filesystem;

namespace {

bool isSameFile(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

}  // namespace

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

namespace {

OpenResult staysCurrent() {
    return {nullptr, "The current drawing has to stay; another one cannot be opened now.", false};
}

}  // namespace

OpenResult Host::openDocument(const std::string& name, OpenMode mode) {
    if (!activationEnabled_) {
        return staysCurrent();
    }
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
    if (!activationEnabled_) {
        return staysCurrent();
    }
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
    // The place of one that has been closed is free.
    const bool isTaken = !activationEnabled_ && isOpen(current_);
    if (!isOpen(&document) || current_ == &document || isTaken) {
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

}  // namespace drafthost
