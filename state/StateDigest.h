// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Tells one run's state from another's. The statuses do not count: they are what a run changes.
#include <QByteArray>
#include <QStringView>

struct CTarnelData;

/// The paths of a queue in the order of the record's arrays, as 64 hexadecimal digits.
QByteArray QueueDigest(const CTarnelData& data);
/// The script alone.
QByteArray ScriptDigest(const CTarnelData& data);
/// All that a host needs to do a run: queue, script, limits and how drawings are opened.
QByteArray RunDigest(const CTarnelData& data);
