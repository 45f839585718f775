// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The editor and its notices. Every notice has an empty default.
#include "achar.h"

class AcDbDatabase;

class ARX_EXPORT AcRxEventReactor {
  public:
    virtual ~AcRxEventReactor() = default;
    virtual void databaseConstructed(AcDbDatabase*) {}
    virtual void databaseToBeDestroyed(AcDbDatabase*) {}
    virtual void beginSave(AcDbDatabase*, const ACHAR* /*intendedName*/) {}
    virtual void saveComplete(AcDbDatabase*, const ACHAR* /*actualName*/) {}
    virtual void abortSave(AcDbDatabase*) {}
};

class ARX_EXPORT AcEditorReactor : public AcRxEventReactor {
  public:
    /// Command notices carry the global name in capitals, without prefixes. Exactly one of ended, cancelled
    /// and failed follows each start.
    virtual void commandWillStart(const ACHAR*) {}
    virtual void commandEnded(const ACHAR*) {}
    virtual void commandCancelled(const ACHAR*) {}
    virtual void commandFailed(const ACHAR*) {}
    virtual void lispWillStart(const ACHAR* /*firstLine*/) {}
    virtual void lispEnded() {}
    virtual void lispCancelled() {}
    virtual void beginQuit() {}
    virtual void quitAborted() {}
    virtual void quitWillStart() {}
    virtual void sysVarChanged(const ACHAR*, bool /*success*/) {}
};

class ARX_EXPORT AcEditor {
  public:
    virtual ~AcEditor() = default;
    virtual void addReactor(AcRxEventReactor*) = 0;
    virtual void removeReactor(AcRxEventReactor*) = 0;
};
ARX_EXPORT AcEditor* acedEditorPtr();
