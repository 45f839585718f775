// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The record of what the last operation on a state file failed at, for the files that implement them.
#include <QString>

void SetStateError(const QString& path, const QString& cause);
void ClearStateError();
