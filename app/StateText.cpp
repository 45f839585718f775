#include "app/StateText.h"

#include "state/CodePage.h"
#include "state/MarkupDocument.h"
#include "state/WholeFile.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <QString>
#include <sstream>

namespace fs = std::filesystem;

namespace {

bool Save(MarkupDocument* document, const std::string& file, std::string* error) {
    errno = 0;
    if (document->SaveFile(QString::fromStdString(file))) {
        return true;
    }
    *error = file + ": cannot be written" + (errno ? std::string(": ") + std::strerror(errno) : "");
    return false;
}

/// Sets an element of the options. The module reads forward only, so calls go in the order of the file.
void SetOption(MarkupDocument* document, QStringView name, const QString& value) {
    if (document->FindChildElement(name)) {
        document->RemoveChildElement();
    }
    document->AddChildElement(name, value);
}

/// A new state with nothing in it.
void BeginState(MarkupDocument* document) {
    document->Clear();
    document->AddElement(u"TarnelRunner");
    document->AddChildElement(u"Options");
    document->IntoElement();
    document->AddChildElement(u"UseFilter", u"0");
    document->OutOfElement();
}

void SetScript(MarkupDocument* document, const std::string& script) {
    constexpr std::string_view head = ";DESCRIPTION:";
    std::ostringstream read;
    read << std::ifstream(script, std::ios::binary).rdbuf();
    std::string text = read.str();
    std::string description;
    if (text.starts_with(head)) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        description = text.substr(head.size(), end - head.size());
        text.erase(0, end + 1);
    }
    const auto decoded = [](const std::string& bytes) {
        return DecodeText(QByteArray::fromStdString(bytes), LocalePage);
    };
    SetOption(document, u"ScriptDescription", decoded(description));
    SetOption(document, u"Script", decoded(text));
    SetOption(document, u"ScriptModified", QStringLiteral("0"));
    SetOption(document, u"LastScriptFile",
              QString::fromStdString(fs::absolute(script).lexically_normal().string()));
}

}  // namespace

bool WriteQueue(const std::string& file, const std::string& base, const std::vector<QueueEntry>& queue,
                std::string* error) {
    MarkupDocument document;
    if (!document.LoadFile(QString::fromStdString(base)) || !document.FindElement(u"TarnelRunner") ||
        !document.FindChildElement(u"Options")) {
        BeginState(&document);
        if (fs::exists(base)) {
            *error = base + ": does not hold the state of a run";
            return false;
        }
    }
    document.IntoElement();
    SetOption(&document, u"SortIdx", QStringLiteral("6"));
    SetOption(&document, u"SortReverse", QStringLiteral("0"));
    document.OutOfElement();
    if (document.FindChildElement(u"Files")) {
        document.RemoveChildElement();
    }
    document.AddChildElement(u"Files");
    document.IntoElement();
    for (const QueueEntry& entry : queue) {
        document.AddChildElement(u"File", QString::fromStdString(entry.Path));
        document.SetChildAttribute(u"Status", static_cast<int>(entry.Status));
    }
    return Save(&document, file, error);
}

bool SetBack(const std::string& file, const std::vector<std::string>& paths, std::string* error) {
    MarkupDocument document;
    if (!document.LoadFile(QString::fromStdString(file)) || !document.FindElement(u"TarnelRunner") ||
        !document.FindChildElement(u"Files")) {
        *error = file + ": does not hold the state of a run";
        return false;
    }
    document.IntoElement();
    while (document.FindChildElement(u"File")) {
        if (std::find(paths.begin(), paths.end(), document.GetChildText().toStdString()) != paths.end()) {
            document.SetChildAttribute(u"Status", static_cast<int>(DrawingStatus::ToDo));
        }
    }
    return Save(&document, file, error);
}

bool WriteSettings(const std::string& file, const RunOptions& options, std::string* error) {
    MarkupDocument document;
    if (!document.LoadFile(QString::fromStdString(file)) || !document.FindElement(u"TarnelRunner") ||
        !document.FindChildElement(u"Options")) {
        *error = file + ": does not hold the state of a run";
        return false;
    }
    const bool isNew = !options.KeepsQueue();
    document.IntoElement();
    if (isNew || options.ReadOnly) {
        SetOption(&document, u"ProcessReadOnly",
                  options.ReadOnly ? QStringLiteral("1") : QStringLiteral("0"));
    }
    if (!options.Script.empty()) {
        SetScript(&document, options.Script);
    }
    if (isNew || options.MaxTime) {
        SetOption(&document, u"MaxTime", QString::number(options.MaxTime.value_or(kDefaultMaxTime)));
    }
    if (isNew || options.AlarmTime) {
        SetOption(&document, u"AlarmTime", QString::number(options.AlarmTime.value_or(kDefaultAlarmTime)));
    }
    document.OutOfElement();
    return Save(&document, file, error);
}
