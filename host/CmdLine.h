// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Watches the host from inside: drawings of a run must open whole, and the host's variables must go back
// before the host is left.
#include "aced.h"

#include <cstdint>

class CmdLine : public AcEditorReactor {
  public:
    CmdLine();
    void databaseConstructed(AcDbDatabase* database) override;
    void commandWillStart(const ACHAR* name) override;
    void commandEnded(const ACHAR* name) override;
    void commandCancelled(const ACHAR* name) override;
    void commandFailed(const ACHAR* name) override;
    void lispWillStart(const ACHAR* firstLine) override;
    void lispEnded() override;
    void lispCancelled() override;
    void beginQuit() override;

    /// When the last command or LISP call began, in seconds since 1970.
    std::int64_t StartTime;
    /// Commands and LISP calls that are under way.
    std::int32_t Depth = 0;

  private:
    void begin();
    void end();
};
