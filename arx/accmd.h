// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Commands that modules add to the host.
#include "acadstrc.h"
#include "achar.h"

constexpr Adesk::Int32 ACRX_CMD_MODAL = 0;
constexpr Adesk::Int32 ACRX_CMD_TRANSPARENT = 1;
constexpr Adesk::Int32 ACRX_CMD_SESSION = 0x200000;

using AcRxFunctionPtr = void (*)();

class ARX_EXPORT AcEdCommandStack {
  public:
    virtual ~AcEdCommandStack() = default;
    /// eDuplicateKey when the group has a command of that global name already. Users type the local name;
    /// "_" and the global name always works.
    virtual Acad::ErrorStatus addCommand(const ACHAR* group, const ACHAR* globalName, const ACHAR* localName,
                                         Adesk::Int32 flags, AcRxFunctionPtr function) = 0;
    /// eKeyNotFound for an unknown group.
    virtual Acad::ErrorStatus removeGroup(const ACHAR* group) = 0;
};
ARX_EXPORT AcEdCommandStack* acedRegCmdsPtr();
