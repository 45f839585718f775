// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "drafthost/drawing/Record.h"
#include "drafthost/drawing/TagIndex.h"
#include "drafthost/drawing/TextCodec.h"
#include "drafthost/drawing/Value.h"

#include <deque>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace drafthost {

struct Structure;
class UndoLog;

/// How SAVEAS writes: the form, and digits after the point for reals (16 keeps them as they are).
struct SaveFormat {
    bool binary = false;
    int decimals = 16;
};

// A drawing as a lossless store of tags: the bytes of the file stay as they were read, with an index of
// (code, offset) over them, and an edit lays a changed copy of one record over it. So whatever this host does
// not understand, down to odd blanks and comments, goes back to the disk byte for byte, and loading costs
// little more than looking for line ends.
//
// A record runs from a tag with code 0 up to the next one, and is known by a small id that stays valid until
// the drawing is closed, also after other records were added or deleted. What stands before the first code 0
// (comments) is a record with an empty type. Everything above records (header, tables, blocks, layouts) is in
// free functions: Header.h, SymbolTables.h, Blocks.h, Objects.h, Extents.h, View.h.
//
// Not thread-safe. Errors come back as one line that names the file and the cause.
class Drawing {
  public:
    /// Reads a drawing, ASCII or binary; nullptr with `error` when it is missing, too large (4 GiB) or its
    /// tags cannot be read. Broken structure (duplicate handles, missing records) does not keep it from
    /// opening.
    static std::unique_ptr<Drawing> open(const std::string& path, std::string& error);
    /// The same over bytes in memory; `name` is used in messages.
    static std::unique_ptr<Drawing> parse(std::string bytes, const std::string& name, std::string& error);
    /// An empty drawing of the 2013 format, metric or imperial, as NEW makes it without a template.
    static std::unique_ptr<Drawing> createNew(bool metric);

    Drawing(const Drawing&) = delete;
    Drawing& operator=(const Drawing&) = delete;
    ~Drawing();

    /// Writes the drawing in its own form: beside `path`, synced, then renamed over it; the mode of a file
    /// that is replaced is kept. On failure the old file stands untouched. Before that the header is brought
    /// up to date: $HANDSEED when it is not above every handle; $TDUPDATE and $TDUUPDATE when the drawing was
    /// edited and has them. Nothing else changes.
    bool save(const std::string& path, std::string& error);
    /// Writes in another form, for SAVEAS and DXFOUT; the form of the open drawing itself stays.
    bool saveAs(const std::string& path, const SaveFormat& format, std::string& error);
    /// The bytes that save would write, header as it stands.
    std::string serialise() const;
    /// The drawing's bytes in the given form.
    bool convert(const SaveFormat& format, std::string& bytes, std::string& error) const;
    /// Size in bytes as read.
    std::size_t sourceSize() const { return bytes_.size(); }

    /// $ACADVER, for example "AC1015"; "AC1009" when the drawing has none.
    const std::string& version() const { return version_; }
    /// The number in it: 1009 is R12, 1012 R13, 1015 2000, 1021 2007, 1032 2018.
    int versionNumber() const { return versionNumber_; }
    bool isBinary() const { return index_.binary(); }
    /// The code page as $DWGCODEPAGE gives it, "ANSI_1252" when it does not.
    const std::string& codePage() const { return codePage_; }
    const TextCodec& codec() const { return codec_; }

    /// Set by every edit, cleared by save (not by saveAs, whose caller decides); DBMOD hangs on it.
    bool modified() const { return modified_; }
    void setModified(bool modified) { modified_ = modified; }

    // Records in file order.

    RecordId first() const;
    RecordId next(RecordId id) const;
    RecordId previous(RecordId id) const;
    bool isAlive(RecordId id) const;
    /// Whether the record stands between two others.
    bool isWithin(RecordId id, RecordId begin, RecordId end) const;
    /// The tags of one record; valid until that record is edited.
    Record record(RecordId id) const;
    /// Value of the tag with code 0, for example "LINE".
    std::string_view type(RecordId id) const { return record(id).type(); }

    // Edits. Values are converted to the kind of the code; text that the code page lacks becomes \U+XXXX. A
    // value that is there already leaves the drawing unmodified.

    void setTag(RecordId id, std::size_t tag, const Value& value);
    void insertTag(RecordId id, std::size_t before, int code, const Value& value);
    void appendTag(RecordId id, int code, const Value& value);
    void removeTag(RecordId id, std::size_t tag);
    /// Sets the first tag with `code` that is not extended data; else inserts it behind the last of the tags
    /// with a code in `behind` (the earliest choice that is there), else before the extended data.
    void put(RecordId id, int code, const Value& value, std::initializer_list<int> behind = {});
    /// Sets or inserts the reals of a point under `code`, `code` + 10 and, when `withZ`, `code` + 20.
    void putPoint(RecordId id, int code, const Point& point, bool withZ,
                  std::initializer_list<int> behind = {});
    /// A new record with only its type, behind `previous`.
    RecordId insertRecord(RecordId previous, std::string_view type);
    void deleteRecord(RecordId id);
    /// Gives a deleted record back (OOPS, UNDO).
    void restoreRecord(RecordId id);

    /// What can be taken back; it records nothing until it is switched on.
    UndoLog& undo() { return *undo_; }

    // Handles (code 5, or 105 in DIMSTYLE; the first of a record counts).

    std::uint64_t handle(RecordId id) const;
    /// The first record with this handle, NoRecord when there is none.
    RecordId findHandle(std::uint64_t handle) const;
    /// The next free handle; $HANDSEED follows at save.
    std::uint64_t allocateHandle();
    /// The largest handle in use, 0 for none.
    std::uint64_t largestHandle() const;
    /// Whether records carry handles (always from R13, by $HANDLING before).
    bool hasHandles() const;

    /// Where a record is now that stood elsewhere in the file: going to another layout writes its contents
    /// anew.
    RecordId placeNow(RecordId id) const;
    void setPlaceNow(RecordId before, RecordId now) { movedTo_[before] = now; }

    /// The viewport of the current layout through which model space is worked in; NoRecord on the sheet
    /// itself and in the model tab. No file tells it.
    RecordId activeViewport() const;
    void setActiveViewport(RecordId viewport) { activeViewport_ = viewport; }

    /// Sections, tables, blocks and layouts as found; built on demand and dropped by edits that change it.
    const Structure& structure() const;

  private:
    friend class Record;
    friend class UndoLog;
    struct Overlay;
    struct Row {
        std::uint32_t firstTag;
        std::uint32_t overlay;
    };

    Drawing();
    bool load(std::string bytes, const std::string& name, std::string& error);
    void readIdentity();
    Overlay* overlayOf(RecordId id) const;
    Overlay& edit(RecordId id);
    void changed(RecordId id, int code);
    void linkBehind(RecordId previous, RecordId id);
    std::string rawFromValue(int code, const Value& value, std::string_view old) const;
    void updateHeaderForSave();
    /// Sets those of the date variables that the header has to now, in local and in universal time.
    void setDates(std::initializer_list<const char*> local, std::initializer_list<const char*> universal);
    void buildHandles() const;
    std::vector<std::string_view> pieces(std::deque<std::string>& scratch) const;
    void appendPieces(RecordId id, std::vector<std::string_view>& pieces,
                      std::deque<std::string>& scratch) const;
    std::string codeBytes(int code) const;

    std::string name_;
    std::string bytes_;
    TagIndex index_;
    TextCodec codec_;
    std::string version_ = "AC1009";
    int versionNumber_ = 1009;
    std::string codePage_ = "ANSI_1252";
    std::vector<Row> rows_;
    std::uint32_t originals_ = 0;
    std::vector<std::unique_ptr<Overlay>> overlays_;
    /// First and last of the new records behind an original one.
    std::unordered_map<RecordId, std::pair<RecordId, RecordId>> chains_;
    bool modified_ = false;
    std::unique_ptr<UndoLog> undo_;
    std::unordered_map<RecordId, RecordId> movedTo_;
    RecordId activeViewport_ = NoRecord;
    std::uint64_t nextHandle_ = 0;
    mutable std::unique_ptr<Structure> structure_;
    mutable std::unordered_map<std::uint64_t, RecordId> handles_;
    mutable bool handlesBuilt_ = false;
};

}  // namespace drafthost
