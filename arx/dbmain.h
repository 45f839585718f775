// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The database of a drawing, as far as modules here look at it, and the host application services.
#include "achar.h"

class ARX_EXPORT AcDbDatabase {
  public:
    virtual ~AcDbDatabase() = default;
    /// Makes sure that everything is read in, with no lazy load afterwards.
    virtual void disablePartialOpen() = 0;
};

class ARX_EXPORT AcDbHostApplicationServices {
  public:
    virtual ~AcDbHostApplicationServices() = default;
    /// Root of the host's own keys in its registry file.
    virtual const ACHAR* getRegistryProductRootKey() = 0;
};
ARX_EXPORT AcDbHostApplicationServices* acdbHostApplicationServices();

/// The host's registry file. A root is "HKEY_LOCAL_MACHINE", "HKEY_CURRENT_USER" or "HKEY_CLASSES_ROOT", the
/// path goes down to the value's name, parted by backslashes; a path that ends in one means the key's
/// default value. Reads answer false when the value is not there.
ARX_EXPORT bool acrxRegistryReadDword(const ACHAR* root, const ACHAR* path, unsigned int* value);
ARX_EXPORT bool acrxRegistryReadString(const ACHAR* root, const ACHAR* path, ACHAR* value, int size);
ARX_EXPORT bool acrxRegistryWriteDword(const ACHAR* root, const ACHAR* path, unsigned int value);
ARX_EXPORT bool acrxRegistryWriteString(const ACHAR* root, const ACHAR* path, const ACHAR* value);
