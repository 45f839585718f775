// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/api/Documents.h"

#include <deque>
#include <memory>
#include <unordered_map>

#include "drafthost/api/ApiHost.h"
#include "drafthost/editor/InputStream.h"

namespace drafthost {
namespace {

class ApiDatabase : public AcDbDatabase {
  public:
    // A drawing is always read whole.
    void disablePartialOpen() override {}
};

class ApiDocument : public AcApDocument {
  public:
    explicit ApiDocument(Document& document) : document_(&document), name_(toUtf16(fileNameOf(document))) {}

    const ACHAR* fileName() const override {
        if (document_) {
            name_ = toUtf16(fileNameOf(*document_));
        }
        return name_.c_str();
    }
    AcDbDatabase* database() const override { return &database_; }
    bool isReadOnly() const override { return document_ && document_->isReadOnly(); }
    bool isQuiescent() const override { return document_ && document_->isQuiescent(); }

    Document* document() const { return document_; }
    void retire() { document_ = nullptr; }

  private:
    static const std::string& fileNameOf(const Document& document) {
        return document.hasName() ? document.path() : document.title();
    }

    Document* document_;
    mutable std::u16string name_;
    mutable ApiDatabase database_;
};

std::unordered_map<const Document*, std::unique_ptr<ApiDocument>> openObjects;
std::deque<std::unique_ptr<ApiDocument>> retiredObjects;

ApiDocument& objectOf(Document& document) {
    auto& object = openObjects[&document];
    if (!object) {
        object = std::make_unique<ApiDocument>(document);
    }
    return *object;
}

class DocumentIterator : public AcApDocumentIterator {
  public:
    DocumentIterator() : documents_(apiHost().documents()) { skipClosed(); }
    bool done() const override {
        skipClosed();
        return at_ >= documents_.size();
    }
    void step() override { ++at_; }
    AcApDocument* document() override { return done() ? nullptr : apiDocument(documents_[at_]); }

  private:
    void skipClosed() const {
        while (at_ < documents_.size() && !apiHost().isOpen(documents_[at_])) {
            ++at_;
        }
    }

    std::vector<Document*> documents_;
    mutable std::size_t at_ = 0;
};

class DocumentManager : public AcApDocManager {
  public:
    AcApDocument* curDocument() const override { return apiDocument(apiHost().current()); }
    AcApDocument* mdiActiveDocument() const override { return curDocument(); }
    int documentCount() const override { return int(apiHost().documents().size()); }
    AcApDocumentIterator* newAcApDocumentIterator() override { return new DocumentIterator; }

    Acad::ErrorStatus closeDocument(AcApDocument* document) override {
        Document* open = openDocumentOf(document);
        if (!open) {
            return Acad::eNoDocument;
        }
        apiHost().closeDocument(*open);
        return Acad::eOk;
    }

    bool isApplicationContext() const override { return apiHost().input().inApplicationContext(); }

    void executeInApplicationContext(void (*function)(void*), void* data) const override {
        apiHost().input().runInApplicationContext([&] { function(data); });
    }

    Acad::ErrorStatus sendStringToExecute(AcApDocument* document, const ACHAR* text, bool activate, bool,
                                          bool echoString) override {
        Document* open = openDocumentOf(document);
        const bool noneIsOpen = !document && !apiHost().current();
        if (!text || (!open && !noneIsOpen)) {
            return text ? Acad::eNoDocument : Acad::eInvalidInput;
        }
        if (activate && open) {
            apiHost().activate(*open);
        }
        apiHost().input().queue(toUtf8(text), echoString);
        return Acad::eOk;
    }

    Acad::ErrorStatus disableDocumentActivation() override {
        apiHost().setActivationEnabled(false);
        return Acad::eOk;
    }
    Acad::ErrorStatus enableDocumentActivation() override {
        apiHost().setActivationEnabled(true);
        return Acad::eOk;
    }

    // Resources of modules are found by themselves here.
    void pushResourceHandle() override {}
    void popResourceHandle() override {}
};

}  // namespace

AcApDocument* apiDocument(Document* document) {
    return document ? &objectOf(*document) : nullptr;
}
AcDbDatabase* apiDatabase(Document& document) {
    return objectOf(document).database();
}

Document* openDocumentOf(const AcApDocument* document) {
    for (const auto& [open, object] : openObjects) {
        if (object.get() == document) {
            return object->document();
        }
    }
    return nullptr;
}

void retireDocument(Document& document) {
    constexpr std::size_t Kept = 16;
    auto found = openObjects.find(&document);
    if (found == openObjects.end()) {
        return;
    }
    found->second->retire();
    retiredObjects.push_back(std::move(found->second));
    openObjects.erase(found);
    if (retiredObjects.size() > Kept) {
        retiredObjects.pop_front();
    }
}

void forgetDocuments() {
    openObjects.clear();
    retiredObjects.clear();
}

}  // namespace drafthost

AcApDocManager* acDocManagerPtr() {
    static drafthost::DocumentManager manager;
    return &manager;
}
