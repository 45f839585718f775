// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/record/FileName.h"
#include "engine/record/FileQueue.h"
#include "state/StateFields.h"
#include "state/StateFile.h"
#include "text/Base64.h"
#include "text/CodePage.h"
#include "text/MarkupDocument.h"
#include "text/MarkupFile.h"
#include "text/NumberText.h"
#include "text/WholeFile.h"

#include <cerrno>
#include <numeric>

namespace {

/// Reads each field whose element is found, and leaves the others as they are.
class Reader {
  public:
    explicit Reader(MarkupDocument& document) : document(document) {}

    template <class T>
    void Number(QStringView name, T& field) {
        if (document.FindChildElement(name)) {
            field = static_cast<T>(ParseNumber(document.GetChildText()));
        }
    }
    void String(QStringView name, QString& field) {
        if (document.FindChildElement(name)) {
            field = document.GetChildText();
        }
    }
    void Narrow(QStringView name, QByteArray& field) {
        if (document.FindChildElement(name)) {
            field = EncodeText(document.GetChildText(), LocalePage);
        }
    }
    void Boolean(QStringView name, bool& field) {
        if (document.FindChildElement(name)) {
            field = isTrue();
        }
    }
    void ScriptModified(QStringView name, CTarnelData& data) {
        if (document.FindChildElement(name)) {
            data.SetScriptModified(isTrue());
        }
    }
    /// Goes into a child if there is one, lets the function read there, and comes out again.
    template <class Function>
    bool Inside(QStringView name, Function function) {
        if (!document.FindChildElement(name)) {
            return false;
        }
        document.IntoElement();
        function();
        document.OutOfElement();
        return true;
    }

  private:
    bool isTrue() const {
        const QString text = document.GetChildText();
        return text != u"0" && text.compare(u"false", Qt::CaseInsensitive) != 0;
    }

    MarkupDocument& document;
};

void loadPreviousDirectories(MarkupDocument& document, std::deque<QByteArray>& directories) {
    while (document.FindChildElement(u"Directory")) {
        const QString text = document.GetChildText();
        QByteArray item;
        if (document.GetChildAttribute(u"Type") == u"pidl") {
            item = Base64Decode(text).value_or(QByteArray());
        } else {
            item = text.toUtf8();
        }
        if (!item.isEmpty()) {
            directories.push_back(item);
        }
    }
}

void loadOptions(MarkupDocument& document, CTarnelData& data, int full) {
    Reader reader(document);
    reader.Boolean(u"UseWatcher", data.UseWatcher);
    VisitOptions(data, reader);
    if (full == 0) {
        return;
    }
    reader.Boolean(u"TemporarilyLoadFromRegistry", data.TemporarilyLoadFromRegistry);
    reader.Inside(u"WindowState", [&] { VisitWindowState(data, reader); });
    reader.Inside(u"DebugWindowState", [&] { VisitRect(data.DebugWindow, reader); });
    data.PreviousDirectories.clear();
    reader.Inside(u"PreviousDirectories",
                  [&] { loadPreviousDirectories(document, data.PreviousDirectories); });
}

void loadQueue(MarkupDocument& document, CTarnelData& data) {
    QString directory;
    while (document.FindChildElement(u"File")) {
        const QString path = document.GetChildText();
        const qsizetype nameStart = NameOffset(path);
        // Neighbours mostly lie in one folder and then share its text.
        if (directory != QStringView(path).first(nameStart)) {
            directory = path.first(nameStart);
        }
        data.FileDirs.push_back(directory);
        data.FileNames.push_back(path.sliced(nameStart));
        data.FileStatus.push_back(
            static_cast<std::uint32_t>(ParseNumber(document.GetChildAttribute(u"Status"))));
    }
}

}  // namespace

int LoadState(const QString* path, int full, QString* error) {
    return LoadState(TarnelData(), path, full, error);
}

int LoadState(CTarnelData& data, const QString* path, int full, QString* error) {
    const QString& file = path != nullptr ? *path : data.StateFile;
    QByteArray bytes;
    const int failure = ReadWholeFile(file, bytes);
    if (error != nullptr) {
        const bool isThere = failure != 0 && failure != ENOENT;
        *error = isThere ? file + u": cannot be read: " + SystemMessage(failure) : QString();
    }
    TakeState(data, bytes, full);
    return 1;
}

void TakeState(CTarnelData& data, const QByteArray& bytes, int full) {
    MarkupDocument document;
    QString report;
    std::uint32_t flags = 0;
    if (!bytes.isEmpty()) {
        document.SetDocumentText(DecodeMarkup(bytes, report, flags));
    }
    Reader reader(document);
    document.FindElement(u"TarnelRunner");
    if (full == 0) {
        reader.Inside(u"Options", [&] { loadOptions(document, data, full); });
    } else if (!reader.Inside(u"Options", [&] { loadOptions(document, data, full); })) {
        data.PreviousDirectories.clear();
    }
    if (full != 0) {
        data.SysVarsSaved = reader.Inside(u"SysVars", [&] {
            for (std::size_t i = 0; i < data.SysVarNames.size(); ++i) {
                // What is held already is the older value, and so the one from before the run.
                if (document.FindChildElement(data.SysVarNames[i]) && !data.SavedSysVars[i]) {
                    data.SavedSysVars[i] = static_cast<short>(ParseNumber(document.GetChildText()));
                }
            }
        });
    }

    data.FileNames.clear();
    data.FileDirs.clear();
    data.FileStatus.clear();
    reader.Inside(u"Files", [&] { loadQueue(document, data); });
    data.FileOrder.resize(data.FileNames.size());
    std::iota(data.FileOrder.begin(), data.FileOrder.end(), 0U);
    if (data.SortIdx != 6) {
        BuildFileOrder(data);
    }
}
