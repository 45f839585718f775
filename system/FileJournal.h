// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The names of what a process makes beside drawings and elsewhere, and means to take away again: temporaries,
// lock markers, logs. Each is noted before it is made, so that after a kill at any moment whoever works on in
// the same data folder can remove what was left, by name. The journal is a comfort: when it cannot be
// written, the work goes on without it.
//
//   host machine 4711 123456%.
//   temporary /plans/.save-abc%.
//   gone /plans/.save-abc%.
//
// "%." ends a note, and a line without it is none: half a note on a full disk could be the name of a drawing.

#include <map>
#include <string>
#include <string_view>

namespace files {

class FileJournal {
  public:
    FileJournal() = default;
    ~FileJournal() { Close(); }
    FileJournal(const FileJournal&) = delete;
    FileJournal& operator=(const FileJournal&) = delete;

    /// Notes go behind what the file holds. The owner is what lock markers of this process hold. False with
    /// one line when the file cannot be written.
    bool Open(const std::string& path, const std::string& owner, std::string* error);
    /// To be called before the file is made; nothing happens without an open journal.
    void NoteTemporary(const std::string& path) { note("temporary", path); }
    void NoteMarker(const std::string& path) { note("marker", path); }
    /// False with errno when the note could not be written; the file is then better not made, as nobody would
    /// remove it.
    bool NoteLog(const std::string& path) { return note("log", path); }
    /// The file is gone, or is no longer this process's business.
    void Gone(const std::string& path);
    /// Removes the file by its name, which stays noted while that does not go. Without a word to errno.
    void Remove(const std::string& path);
    /// It was noted and is not gone.
    bool Stands(const std::string& path) const;
    /// One line of cause of the first note that was lost; reading it clears it.
    std::string TakeError();

    void Close();

  private:
    bool note(std::string_view kind, const std::string& path);
    bool write(const std::string& line);
    void shorten();

    int file = -1;
    std::string path;
    std::string head;
    std::string error;
    /// What is not gone yet, with its kind.
    std::map<std::string, std::string> standing;
    /// The last line is half a note.
    bool torn = false;
    std::size_t written = 0;
    std::size_t enough = 0;
};

/// The journal of this process.
FileJournal& Journal();

/// How markers tell that they belong to a process: "name\nmachine\nnumber\nstart\n", all that a journal's
/// line of its owner says in one line.
std::string OwnerLine(const std::string& marker);

enum class Logs { Remove, Keep };

/// Removes what the dead processes that wrote a journal have left, then the journal. To be called only when
/// none of them lives. A file is left alone when it is no regular file, when it is a marker of someone else,
/// or when the journal is another user's and the file is not his. A journal that names what is still there
/// stays.
void ClearJournal(const std::string& path, Logs logs);

}  // namespace files
