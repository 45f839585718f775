// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the host tells the program that started it: JSON objects, one a line, on a socket of its own. The
// command line is no place for that, since a script can print any line that it likes there. A socket and no
// pipe, since the system lets nobody open a socket a second time by its name under /proc.

#include <cstddef>
#include <QString>
#include <string>
#include <string_view>

class QJsonObject;

namespace drafthost {

struct LogRest;

class ReportChannel {
  public:
    /// The descriptor stays the caller's. What the host starts does not inherit it.
    explicit ReportChannel(int descriptor);

    /// A piece of what the command line says. A line is told when it ends, and of one without end just the
    /// start and its length: {"event":"text","text":…}.
    void say(std::string_view text);
    /// A piece that tells nothing new, such as the echo of input: for where lines end only.
    void sayAside(std::string_view text);
    /// Tells what has been said of an unfinished line.
    void flush();
    /// A question that waits for an answer: {"event":"prompt","text":…}.
    void prompt(std::string_view text);
    /// A drawing was written: {"event":"saved","path":…}.
    void saved(std::string_view path);
    /// The end of a log that cannot be written, for whoever still can:
    /// {"event":"log","path":…,"written":…,"rest":base64,"whole":…,"cause":…}. False when nobody listens.
    bool logRest(const LogRest& rest);
    /// Why something is refused, before it is said. What follows on the command line is not taken for it.
    void because(std::string_view reason);
    /// What was said so far is no reason any more: another input begins.
    void forget();
    /// A line of a script was refused, for the reason that was given or else the line that was said last:
    /// {"event":"refused","script":…,"line":…,"text":…}.
    void refused(std::string_view script, std::size_t line);

  private:
    void send(const QJsonObject& event);

    int descriptor_;
    std::string line_;
    /// Bytes of the line that did not fit.
    std::size_t dropped_ = 0;
    /// The last line that was told.
    QString last_;
    QString reason_;
};

}  // namespace drafthost
