// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/record/FileQueue.h"
#include "state/StateFile.h"

#include "engine/record/FileName.h"
#include "state/LastSave.h"
#include "state/StateFields.h"
#include "text/Base64.h"
#include "text/MarkupDocument.h"
#include "text/MarkupFile.h"
#include "text/PatchedFile.h"
#include "text/UserText.h"
#include "text/WholeFile.h"

namespace {

class Writer {
  public:
    explicit Writer(MarkupDocument& document) : document(document) {}

    template <class T>
    void Number(QStringView name, const T& field) {
        document.AddChildElement(name, QString::number(static_cast<int>(field)));
    }
    void String(QStringView name, const QString& field) { document.AddChildElement(name, field); }
    // What a file of another system holds is kept as the text that it is, not as its bytes.
    void Narrow(QStringView name, const QByteArray& field) {
        document.AddChildElement(name, DecodeUserText(field).Text);
    }
    void Boolean(QStringView name, bool field) { document.AddChildElement(name, field ? u"1" : u"0"); }
    void ScriptModified(QStringView name, const CTarnelData& data) { Boolean(name, data.ScriptModified()); }
    /// Adds a child, lets the function write into it, and comes out again.
    template <class Function>
    void Inside(QStringView name, Function function) {
        document.AddChildElement(name);
        document.IntoElement();
        function();
        document.OutOfElement();
    }

  private:
    MarkupDocument& document;
};

void saveOptions(MarkupDocument& document, CTarnelData& data, int full) {
    Writer writer(document);
    if (!data.UseWatcher) {
        writer.Boolean(u"UseWatcher", false);
    }
    VisitOptions(data, writer);
    if (full == 0) {
        return;
    }
    writer.Boolean(u"TemporarilyLoadFromRegistry", data.TemporarilyLoadFromRegistry);
    writer.Inside(u"WindowState", [&] { VisitWindowState(data, writer); });
    writer.Inside(u"DebugWindowState", [&] { VisitRect(data.DebugWindow, writer); });
    writer.Inside(u"PreviousDirectories", [&] {
        for (const QByteArray& item : data.PreviousDirectories) {
            if (item.isEmpty()) {
                continue;
            }
            const QString lines = u"\r\n" + Base64Encode(item) + u"\r\n";
            document.AddChildElement(u"Directory", lines);
            document.SetChildAttribute(u"Type", u"pidl");
            document.SetChildAttribute(u"Path", QString::fromUtf8(item));
        }
    });
}

void saveFiles(MarkupDocument& document, const CTarnelData& data) {
    QString path;
    Writer(document).Inside(u"Files", [&] {
        for (std::size_t i = 0; i < data.FileNames.size(); ++i) {
            path.resize(0);
            AppendPath(path, data.FileDirs[i], data.FileNames[i]);
            document.AddChildElement(u"File", path);
            document.SetChildAttribute(u"Status", static_cast<int>(EntryStatus(data, i)));
        }
    });
}

/// A save always answers 1; what went wrong is told apart.
int finish(const QString& file, int failure, QString* error) {
    if (error != nullptr) {
        *error = failure != 0 ? file + u": cannot be written: " + SystemMessage(failure) : QString();
    }
    return 1;
}

}  // namespace

int SaveState(const QString* target, int full, QString* error) {
    return SaveState(TarnelData(), target, full, error);
}

int SaveState(CTarnelData& data, const QString* target, int full, QString* error) {
    const QString& file = target != nullptr ? *target : data.StateFile;
    // A run saves several times per drawing: the room of the last text is used again.
    static MarkupDocument document;
    document.Clear();
    document.AddElement(u"TarnelRunner");
    document.SetAttribute(u"Version", data.Version);
    document.SetAttribute(u"Build", data.Build);
    Writer writer(document);
    writer.Inside(u"Options", [&] { saveOptions(document, data, full); });
    if (full != 0 && data.SysVarsSaved) {
        writer.Inside(u"SysVars", [&] {
            for (std::size_t i = 0; i < data.SysVarNames.size(); ++i) {
                if (data.SavedSysVars[i]) {
                    writer.Number(data.SysVarNames[i], *data.SavedSysVars[i]);
                }
            }
        });
    }
    static LastSave last;
    const QString head = document.GetDocumentText();
    if (full == 0 || !last.Update(file, head, data)) {
        saveFiles(document, data);
        QString report;
        const QByteArray bytes = EncodeMarkup(document.GetDocumentText(), report, 0);
        if (full == 0) {
            return finish(file, WriteWholeFile(file, bytes), error);
        }
        last.Remember(file, head, bytes, data);
    }
    return finish(file, WritePatchedFile(file, last.Bytes()), error);
}
