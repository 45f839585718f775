// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the module tells besides dialogs: lines for people on the host's command line, and events for the
// program that started the host. Events are JSON objects, one a line, on the socket that the environment
// variable TARNEL_REPORT_FD names; docs/formats.md tells their form. They have a way of their own because a
// script can print any line that it likes, while nothing but the module and the host has this socket.
#include <QString>

class QJsonObject;

/// Sends an event. False when no program listens.
bool Report(const QJsonObject& event);
/// What writes to the host's command line, as the text stands; null for nothing. Whoever brings a host sets
/// it, so that all that only tells needs none.
void SetConsole(void (*print)(const QString&));
/// One line with the prefix "Tarnel: " at the start of a line of the command line, and a message to the
/// program that listens.
void ConsoleLine(const QString& text);
