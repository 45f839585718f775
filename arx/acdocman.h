// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Documents of the host.
#include "acadstrc.h"
#include "achar.h"

class AcDbDatabase;

class ARX_EXPORT AcApDocument {
  public:
    virtual ~AcApDocument() = default;
    virtual const ACHAR* fileName() const = 0;
    virtual AcDbDatabase* database() const = 0;
    virtual bool isReadOnly() const = 0;
    virtual bool isQuiescent() const = 0;
};

/// Walks the open documents. The caller deletes it; documents that go during the walk are passed over.
class ARX_EXPORT AcApDocumentIterator {
  public:
    virtual ~AcApDocumentIterator() = default;
    virtual bool done() const = 0;
    virtual void step() = 0;
    virtual AcApDocument* document() = 0;
};

class ARX_EXPORT AcApDocManager {
  public:
    virtual ~AcApDocManager() = default;
    /// Document of the running code; null when none is open.
    virtual AcApDocument* curDocument() const = 0;
    virtual AcApDocument* mdiActiveDocument() const = 0;
    virtual int documentCount() const = 0;
    virtual AcApDocumentIterator* newAcApDocumentIterator() = 0;
    /// Closes a document and drops its changes.
    virtual Acad::ErrorStatus closeDocument(AcApDocument* document) = 0;
    virtual bool isApplicationContext() const = 0;
    /// Runs the function in the application context, before this call returns.
    virtual void executeInApplicationContext(void (*function)(void*), void* data) const = 0;
    /// Queues input for the next time the document reads commands. A blank or line end is Enter, code 3 one
    /// cancel, acted on at once. Queued input runs only after the running command or LISP has ended.
    virtual Acad::ErrorStatus sendStringToExecute(AcApDocument* document, const ACHAR* text,
                                                  bool activate = true, bool wrapUpInactiveDoc = false,
                                                  bool echoString = true) = 0;
    /// While switched off, the current document stays: none is opened, made or chosen in its place.
    virtual Acad::ErrorStatus disableDocumentActivation() = 0;
    virtual Acad::ErrorStatus enableDocumentActivation() = 0;
    virtual void pushResourceHandle() = 0;
    virtual void popResourceHandle() = 0;
};
ARX_EXPORT AcApDocManager* acDocManagerPtr();
