// SPDX-License-Identifier: GPL-3.0-or-later
#include "log/RunLogText.h"

#include "text/CodePage.h"
#include "text/Entities.h"

#include <QList>

#include <algorithm>
#include <ctime>

namespace {

constexpr QLatin1String SpanStart("<span>");
constexpr QLatin1String SpanEnd("</span><br />");
constexpr QLatin1String FileStart("Processing file: <span id=\"");
constexpr QLatin1String NameStart("\">");
constexpr QLatin1String NameEnd("</span>");

QString reference(char32_t code) {
    return QStringLiteral("&#%1;").arg(static_cast<uint>(code));
}

/// The text at an ampersand would be read as another character. Browsers take the entities of Latin-1 also
/// without their semicolon.
bool readsAsEntity(QStringView text) {
    constexpr qsizetype Longest = 11;
    const QStringView start = text.first(std::min(text.size(), Longest));
    const qsizetype end = start.indexOf(u';');
    if (start.size() > 1 && start[1] == u'#') {
        return true;
    }
    if (end > 0 && UnescapeMarkup(start.first(end + 1)) != start.first(end + 1)) {
        return true;
    }
    for (qsizetype length = 3; length <= start.size() && start[length - 1].isLetterOrNumber(); ++length) {
        const QString read = UnescapeMarkup(start.first(length).toString() + QLatin1Char(';'));
        if (read.size() == 1 && read[0].unicode() < 0x100 && read[0] != u'\'') {
            return true;
        }
    }
    return false;
}

bool isControl(char16_t c) {
    return c < 0x20 || (c >= 0x7f && c < 0xa0);
}

/// The part of a text between two marks, from a position on, which moves behind the second; null without
/// them.
QStringView between(QStringView text, QLatin1String start, QLatin1String end, qsizetype& at) {
    const qsizetype first = text.indexOf(start, at);
    const qsizetype from = first < 0 ? -1 : first + start.size();
    const qsizetype to = from < 0 ? -1 : text.indexOf(end, from);
    if (to < 0) {
        return {};
    }
    at = to + end.size();
    return text.sliced(from, to - from);
}

bool readLine(QStringView line, RunLogEntry& entry) {
    if (!line.startsWith(SpanStart) || !line.endsWith(SpanEnd)) {
        return false;
    }
    line = line.sliced(SpanStart.size()).chopped(SpanEnd.size());
    const qsizetype colon = line.indexOf(u": ");
    if (colon < 0) {
        return false;
    }
    entry.Time = line.first(colon).toString();
    const QStringView html = line.sliced(colon + 2);
    entry.Html = html.toString();
    if (html == BatchStartedHtml()) {
        entry.Kind = RunLogEntry::Started;
    } else if (html == BatchCompletedHtml()) {
        entry.Kind = RunLogEntry::Completed;
    } else if (html.startsWith(FileStart) && html.endsWith(NameEnd)) {
        qsizetype at = 0;
        entry.Id = UnescapeMarkup(between(html, FileStart, NameStart, at));
        entry.Name = UnescapeMarkup(html.sliced(at).chopped(NameEnd.size()));
        entry.Kind = RunLogEntry::File;
    }
    return true;
}

}  // namespace

QString EscapeLogName(const QString& name) {
    QString out;
    out.reserve(name.size());
    for (qsizetype i = 0; i < name.size(); ++i) {
        const QChar c = name[i];
        if (c == u'<') {
            out += u"&lt;";
        } else if (c == u'>') {
            out += u"&gt;";
        } else if (c == u'"') {
            out += u"&quot;";
        } else if (c == u'&' && readsAsEntity(QStringView(name).sliced(i))) {
            out += u"&amp;";
        } else if (isControl(c.unicode())) {
            out += reference(c.unicode());
        } else {
            out += c;
        }
    }
    return out;
}

QString BatchStartedHtml() {
    return QStringLiteral("<font color=blue>Batch started</font>");
}

QString BatchCompletedHtml() {
    return QStringLiteral("<font color=blue>Batch completed</font>");
}

QString ProcessingHtml(const QString& id, const QString& name) {
    return FileStart + EscapeLogName(id) + NameStart + EscapeLogName(name) + NameEnd;
}

QString RunLogTime() {
    char text[128] = {};
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    std::strftime(text, sizeof text, "%x %X", &local);
    return DecodeText(text, LocalePage);
}

QString RunLogLineText(const QString& time, const QString& html) {
    return SpanStart + time + QLatin1String(": ") + html + SpanEnd + QLatin1String("\r\n");
}

QByteArray EncodeRunLog(const QString& text) {
    bool lossy = false;
    QByteArray bytes = EncodeText(text, LocalePage, '?', &lossy);
    if (!lossy) {
        return bytes;
    }
    QString written;
    for (const char32_t code : text.toUcs4()) {
        const QString one = QString::fromUcs4(&code, 1);
        bool missing = false;
        EncodeText(one, LocalePage, '?', &missing);
        written += missing ? reference(code) : one;
    }
    return EncodeText(written, LocalePage);
}

RunLogContent ReadRunLog(const QByteArray& bytes) {
    QString text = DecodeText(bytes, LocalePage);
    RunLogContent content;
    content.IsWhole = QStringView(text).trimmed().endsWith(RunLogTail);
    // Behind a log that was taken up again the head may stand in the middle.
    text.remove(RunLogHead).remove(RunLogTail);
    for (const QStringView piece : QStringView(text).split(u'\n')) {
        RunLogEntry entry;
        if (readLine(piece.endsWith(u'\r') ? piece.chopped(1) : piece, entry)) {
            content.Entries.push_back(std::move(entry));
        }
    }
    return content;
}
