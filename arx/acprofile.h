// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Profiles of the host's user.
#include "acadstrc.h"
#include "achar.h"

class ARX_EXPORT AcApProfileManager {
  public:
    virtual ~AcApProfileManager() = default;
    /// Key of a profile (null: the active one) with its root in front, for example
    /// HKEY_CURRENT_USER\Software\Maker\Product\Profiles\<name>. The caller frees it with free().
    virtual Acad::ErrorStatus ProfileRegistryKey(ACHAR*& key, const ACHAR* profile) = 0;
};
ARX_EXPORT AcApProfileManager* acProfileManagerPtr();
