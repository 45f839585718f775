// SPDX-License-Identifier: GPL-3.0-or-later
#include <filesystem>
#include <optional>

#include "drafthost/commands/Backup.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/commands/Selection.h"
#include "drafthost/drawing/BlockEdit.h"
#include "drafthost/drawing/Drawing.h"
#include "drafthost/drawing/UndoLog.h"
#include "drafthost/drawing/VersionConvert.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"

namespace drafthost::commands {

namespace {

constexpr std::string_view OnlyDxf = "this host writes DXF drawings only";

std::string lowerExtension(const std::string& path) {
    std::string extension = std::filesystem::path(path).extension().string();
    for (char& c : extension) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return extension;
}

/// One line when a drawing cannot be written under that name in DXF.
std::optional<std::string> refusedName(const std::string& path) {
    std::string extension = lowerExtension(path);
    if (extension == ".dwg" || extension == ".dwt" || extension == ".dws") {
        return "Cannot save " + path + ": " + std::string(OnlyDxf) + ", no " + extension.substr(1) +
               " files.";
    }
    return std::nullopt;
}

std::string proposedPath(const Document& document) {
    return document.hasName() ? document.path() : absolutePath(document.title(), ".dxf");
}

struct VersionWord {
    std::string_view word;
    int number;
};
constexpr VersionWord VersionWords[] = {{"R12", 1009},  {"2000", 1015}, {"2004", 1018}, {"2007", 1021},
                                        {"2010", 1024}, {"2013", 1027}, {"2018", 1032}};

std::string_view wordOfVersion(int number) {
    for (const VersionWord& entry : VersionWords) {
        if (entry.number == number) {
            return entry.word;
        }
    }
    return {};
}

/// Reads a count of decimals from 0 to 16.
std::optional<int> decimalsOf(std::string_view text) {
    if (text.empty() || text.size() > 2 || text.find_first_not_of("0123456789") != std::string_view::npos) {
        return std::nullopt;
    }
    int value = std::stoi(std::string(text));
    return value <= 16 ? std::optional(value) : std::nullopt;
}

struct DxfChoice {
    SaveFormat format;
    int version = 0;    ///< 0: the drawing's own
    bool some = false;  ///< only these objects
    std::vector<RecordId> objects;
    /// A file name that was given where the decimals were asked for.
    std::string fileName;
};

int versionOf(std::string_view word) {
    for (const VersionWord& entry : VersionWords) {
        if (entry.word == word) {
            return entry.number;
        }
    }
    return 0;
}

/// The questions about the form of a DXF file. Scripts are found that give the file's name before these
/// answers and such that give it behind them, so with `allowName` a name is taken here too.
Task<std::optional<DxfChoice>> askDxfForm(CommandContext& context, Drawing& drawing, bool allowName) {
    DxfChoice choice;
    for (;;) {
        auto answer = co_await context.fileName(
            choice.some ? "Enter decimal places of accuracy (0 to 16) or [Binary/Version]"
                        : "Enter decimal places of accuracy (0 to 16) or [Objects/Binary/Version]",
            "16");
        const std::string& text = answer.text;
        if (text.empty()) {
            co_return choice;
        }
        if (auto decimals = decimalsOf(text)) {
            choice.format.decimals = *decimals;
            co_return choice;
        }
        if (isWord(text, "binary", 1)) {
            choice.format.binary = true;
            co_return choice;
        }
        if (isWord(text, "objects", 1) && !choice.some) {
            choice.objects = co_await selectObjects(context);
            choice.some = true;
        } else if (isWord(text, "version", 1)) {
            std::string own(wordOfVersion(drawing.versionNumber()));
            auto version =
                co_await context.keyword("Enter version", "R12 2000 2004 2007 2010 2013 2018", own);
            choice.version = versionOf(version.keyword);
        } else if (allowName && text.find_first_not_of("-0123456789") != std::string::npos) {
            choice.fileName = text;
            co_return choice;
        } else {
            context.complain("Enter a whole number from 0 to 16, Binary or Version.");
        }
    }
}

/// Writes a drawing in the form that was chosen; what the version cannot hold is left in `lost`.
bool writeForm(Drawing& drawing, const DxfChoice& choice, const std::string& target,
               std::vector<std::string>& lost, std::string& error) {
    std::unique_ptr<Drawing> some;
    if (choice.some) {
        some = drawingOf(drawing, choice.objects, {});
    }
    Drawing& source = some ? *some : drawing;
    if (choice.version == 0 || choice.version == source.versionNumber()) {
        return source.saveAs(target, choice.format, error);
    }
    ConvertedDrawing converted = convertVersion(source, choice.version, error);
    lost = std::move(converted.lost);
    return converted.drawing && converted.drawing->saveAs(target, choice.format, error);
}

void tellLost(CommandContext& context, const std::vector<std::string>& lost) {
    for (const std::string& what : lost) {
        context.printLine("Not kept in that version: " + what + ".");
    }
}

/// Asks for the name of the file to write, with the question whether an old file may be replaced. Nothing
/// when the command is to end; that has been told.
Task<std::optional<std::string>> askTarget(CommandContext& context, std::string given) {
    if (given.empty()) {
        auto answer = co_await context.fileName("Save drawing as", proposedPath(context.document()));
        given = answer.text;
    }
    if (given.empty()) {
        context.fail(context.name() + " needs a file name.");
        co_return std::nullopt;
    }
    std::string path = absolutePath(given, ".dxf");
    if (auto refusal = refusedName(path)) {
        context.fail(*refusal);
        co_return std::nullopt;
    }
    bool replace = co_await mayReplaceFile(context, path);
    if (!replace) {
        context.fail(context.name() + " was given up, " + path + " stays as it is.");
        co_return std::nullopt;
    }
    co_return path;
}

/// Writes the document to the path and tells a failure. The old file of that name is kept as .bak when the
/// user wants that.
void writeTo(CommandContext& context, const std::string& path, bool takeName,
             const Document::Writer& writer) {
    Document& document = context.document();
    std::string error;
    if (!keepBackup(context.host(), path, error) || !document.saveTo(path, takeName, writer, error)) {
        context.fail(error);
    }
}

/// A file beside the drawing, which stays what and where it is.
void writeCopy(CommandContext& context, const std::string& path, const DxfChoice& choice) {
    Document& document = context.document();
    if (path == document.path()) {
        context.fail("Cannot write " + path + ": the drawing itself is open under that name; use QSAVE.");
        return;
    }
    std::string error;
    std::vector<std::string> lost;
    const UndoLog::Pause pause(document.drawing().undo());
    if (!keepBackup(context.host(), path, error) ||
        !writeForm(document.drawing(), choice, path, lost, error)) {
        context.fail(error);
        return;
    }
    tellLost(context, lost);
}

}  // namespace

CommandTask qsaveCommand(CommandContext& context) {
    Document& document = context.document();
    if (!document.hasName()) {
        auto path = co_await askTarget(context, {});
        if (path) {
            writeTo(context, *path, true, {});
        }
        co_return;
    }
    if (document.isReadOnly()) {
        context.fail("Cannot save " + document.path() + ": the drawing was opened read-only.");
        co_return;
    }
    std::string error;
    if (!keepBackup(context.host(), document.path(), error) || !document.save(error)) {
        context.fail(error);
    }
}

CommandTask saveCommand(CommandContext& context) {
    Document& document = context.document();
    auto path = co_await askTarget(context, {});
    if (!path) {
        co_return;
    }
    if (*path != document.path()) {
        writeTo(context, *path, !document.hasName(), {});
    } else if (document.isReadOnly()) {
        context.fail("Cannot save " + *path + ": the drawing was opened read-only.");
    } else {
        std::string error;
        if (!keepBackup(context.host(), *path, error) || !document.save(error)) {
            context.fail(error);
        }
    }
}

CommandTask saveAsCommand(CommandContext& context) {
    Document& document = context.document();
    // The LT names stand for the same formats and are what older scripts give.
    auto format = co_await context.keyword("Enter file format",
                                           "R14 LT98 LT97 2000 LT2000 2004 LT2004 2007 LT2007 2010 LT2010 "
                                           "2013 LT2013 2018 LT2018 Standards DXF Template",
                                           "DXF");
    if (!format.isKeyword("DXF")) {
        context.fail("Cannot save " + document.title() + " in the format " + format.keyword + ": " +
                     std::string(OnlyDxf) + ", no DWG files.");
        co_return;
    }
    auto choice = co_await askDxfForm(context, document.drawing(), true);
    if (!choice) {
        co_return;
    }
    bool nameFirst = !choice->fileName.empty();
    auto path = co_await askTarget(context, choice->fileName);
    if (!path) {
        co_return;
    }
    if (nameFirst) {
        choice = co_await askDxfForm(context, document.drawing(), false);
        if (!choice) {
            co_return;
        }
    }
    if (*path == document.path() && document.isReadOnly()) {
        context.fail("Cannot save " + *path + ": the drawing was opened read-only.");
        co_return;
    }
    if (choice->some) {
        // Part of a drawing is a file of its own; the drawing stays where it is.
        writeCopy(context, *path, *choice);
        co_return;
    }
    auto lost = std::make_shared<std::vector<std::string>>();
    const DxfChoice form = *choice;
    const Document::Writer writer = [form, lost](Drawing& drawing, const std::string& target,
                                                 std::string& error) {
        return writeForm(drawing, form, target, *lost, error);
    };
    writeTo(context, *path, true, writer);
    tellLost(context, *lost);
    // Saves from now on keep to the version that was chosen.
    if (form.version != 0 && form.version != document.drawing().versionNumber()) {
        document.setWriter(writer);
    }
}

CommandTask dxfOutCommand(CommandContext& context) {
    auto path = co_await askTarget(context, {});
    if (!path) {
        co_return;
    }
    auto choice = co_await askDxfForm(context, context.document().drawing(), false);
    if (choice) {
        writeCopy(context, *path, *choice);
    }
}

}  // namespace drafthost::commands
