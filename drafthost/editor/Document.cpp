// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/editor/Document.h"

#include <unistd.h>
#include <filesystem>

#include "drafthost/drawing/Drawing.h"
#include "drafthost/drawing/UndoLog.h"
#include "drafthost/editor/CommandLine.h"
#include "drafthost/editor/CommandMemory.h"
#include "drafthost/editor/DocumentLisp.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/HostObserver.h"
#include "drafthost/editor/ReportChannel.h"

namespace drafthost {

Document::Document(Host& host, std::unique_ptr<Drawing> drawing, std::string path, std::string title,
                   bool readOnly)
    : host_(host),
      drawing_(std::move(drawing)),
      path_(std::move(path)),
      title_(std::move(title)),
      readOnly_(readOnly),
      memory_(std::make_unique<CommandMemory>()),
      commandLine_(std::make_unique<CommandLine>(host, *this)),
      lisp_(std::make_unique<DocumentLisp>(host, *this)) {
    drawing_->undo().enable();
}

Document::~Document() {
    // Commands hold on to the world and the drawing, so they go first.
    commandLine_.reset();
    lisp_.reset();
}

lisp::World& Document::world() {
    return lisp_->world();
}

unsigned Document::modified() const {
    if (modified_ == 0 && drawing_->modified()) {
        return ModifiedObjects;
    }
    return modified_;
}

void Document::clearModified() {
    modified_ = 0;
    drawing_->setModified(false);
    drawing_->undo().saved();
}

bool Document::save(std::string& error) {
    if (!hasName()) {
        error = title_ + " has no file yet; save it under a name.";
        return false;
    }
    if (readOnly_) {
        error = path_ + " was opened read-only; save it under another name.";
        return false;
    }
    return saveTo(path_, true, writer_, error);
}

bool Document::saveTo(const std::string& path, bool takeName, const Writer& writer, std::string& error) {
    std::optional<FileLock> newLock;
    const bool sameFile = path == path_ && !readOnly_;
    if (!sameFile && std::filesystem::exists(path)) {
        // Not over a drawing that somebody has open.
        newLock = FileLock::acquire(path, error);
        if (!newLock) {
            return false;
        }
    }
    host_.notify([&](HostObserver& observer) { observer.beginSave(*this, path); });
    bool done = writer ? writer(*drawing_, path, error) : drawing_->save(path, error);
    if (!done) {
        host_.notify([&](HostObserver& observer) { observer.abortSave(*this); });
        return false;
    }
    if (sameFile && lock_) {
        // The saved file is a new one under the old name.
        lock_->renew();
    } else if (takeName) {
        if (!newLock) {
            std::string ignored;
            newLock = FileLock::acquire(path, ignored);
        } else {
            newLock->renew();
        }
        lock_ = std::move(newLock);
        path_ = path;
        title_ = std::filesystem::path(path).filename().string();
        readOnly_ = false;
    }
    if (takeName) {
        clearModified();
    }
    savedName_ = path;
    if (host_.report()) {
        host_.report()->saved(path);
    }
    host_.notify([&](HostObserver& observer) { observer.saveComplete(*this, path); });
    return true;
}

bool Document::isQuiescent() const {
    return commandLine_->depth() == 0 && !lisp_->world().evaluating();
}

void Document::startLog() {
    if (!log_.isOn()) {
        log_.start(logName());
    }
}

void Document::stopLog() {
    if (const auto rest = log_.stop()) {
        host_.giveAway(*rest);
    }
}

const std::string& Document::logName() {
    if (logName_.empty()) {
        std::string folder = host_.variables().string("LOGFILEPATH", "");
        if (!folder.empty() && !folder.ends_with('/')) {
            folder += '/';
        }
        logName_ = folder + host_.nextLogName(std::filesystem::path(title_).stem().string());
    }
    return logName_;
}

}  // namespace drafthost
