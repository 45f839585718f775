// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/editor/ReportChannel.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <algorithm>
#include <cerrno>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

#include "drafthost/editor/LogFile.h"

namespace drafthost {
namespace {

/// What is told of one line at most.
constexpr std::size_t MostOfLine = 1000;

QString toText(std::string_view text) {
    return QString::fromUtf8(text.data(), qsizetype(text.size()));
}

QJsonObject eventOf(const char* name, const char* key, const QString& text) {
    return {{QStringLiteral("event"), QString::fromLatin1(name)}, {QString::fromLatin1(key), text}};
}

/// The start of a text, cut between characters.
std::string_view cut(std::string_view text, std::size_t most) {
    std::size_t length = std::min(text.size(), most);
    while (length > 0 && length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) {
        --length;
    }
    return text.substr(0, length);
}

}  // namespace

ReportChannel::ReportChannel(int descriptor) : descriptor_(descriptor) {
    ::fcntl(descriptor_, F_SETFD, FD_CLOEXEC);
}

void ReportChannel::say(std::string_view text) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view taken =
            dropped_ > 0 ? std::string_view() : cut(text.substr(0, end), MostOfLine - line_.size());
        line_ += taken;
        dropped_ += end - taken.size();
        if (end < text.size()) {
            flush();
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

void ReportChannel::sayAside(std::string_view text) {
    if (text.find('\n') != std::string_view::npos) {
        flush();
    }
}

void ReportChannel::flush() {
    const bool blank = line_.find_first_not_of(" \t\r") == std::string::npos;
    if (!blank || dropped_ > 0) {
        QString text = toText(line_);
        if (dropped_ > 0) {
            text += QStringLiteral(" ... (%1 bytes in one line)").arg(line_.size() + dropped_);
        }
        send(eventOf("text", "text", text));
        last_ = text.trimmed();
    }
    line_.clear();
    dropped_ = 0;
}

void ReportChannel::prompt(std::string_view text) {
    flush();
    send(eventOf("prompt", "text", toText(cut(text, MostOfLine))));
}

void ReportChannel::saved(std::string_view path) {
    send(eventOf("saved", "path", toText(path)));
}

bool ReportChannel::logRest(const LogRest& rest) {
    flush();
    QJsonObject event = eventOf("log", "path", toText(rest.path));
    // Of a script's making: any bytes may stand there.
    const QByteArray text = QByteArray::fromRawData(rest.text.data(), qsizetype(rest.text.size()));
    event[QStringLiteral("rest")] = QString::fromLatin1(text.toBase64());
    event[QStringLiteral("written")] = qint64(rest.written);
    event[QStringLiteral("whole")] = rest.whole;
    event[QStringLiteral("cause")] = toText(rest.cause);
    send(event);
    return descriptor_ >= 0;
}

void ReportChannel::because(std::string_view reason) {
    flush();
    const QString text = toText(cut(reason, MostOfLine)).trimmed();
    // A command or a module that LISP has called has said why it failed.
    const bool isEcho =
        text == QLatin1String("Command failed") || text.startsWith(QLatin1String("ARXUNLOAD failed: "));
    if (isEcho && !reason_.isEmpty()) {
        return;
    }
    // The function of a module has said itself what is wrong.
    const bool said = text == QLatin1String("AutoCAD rejected function") && !last_.isEmpty();
    reason_ = said ? last_ : text;
}

void ReportChannel::forget() {
    reason_.clear();
    last_.clear();
}

void ReportChannel::refused(std::string_view script, std::size_t line) {
    flush();
    QJsonObject event = eventOf("refused", "text", reason_.isEmpty() ? last_ : reason_);
    reason_.clear();
    event[QStringLiteral("script")] = toText(script);
    event[QStringLiteral("line")] = qint64(line);
    send(event);
}

void ReportChannel::send(const QJsonObject& event) {
    const QByteArray line = QJsonDocument(event).toJson(QJsonDocument::Compact) + '\n';
    for (qsizetype at = 0; at < line.size() && descriptor_ >= 0;) {
        const ssize_t count =
            ::send(descriptor_, line.constData() + at, std::size_t(line.size() - at), MSG_NOSIGNAL);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            // Whoever listened is gone; the work goes on without him.
            descriptor_ = -1;
            return;
        }
        at += count;
    }
}

}  // namespace drafthost
