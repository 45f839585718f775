// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What a data folder holds of its run beside the module's state, in the file run.json: what the form of the
// state file has no place for, and how far a change of several files has come. It is replaced whole, so each
// step that writes it is taken at once or not at all.
#include "app/DataFolder.h"
#include "app/Shares.h"

#include <optional>
#include <string>
#include <vector>

/// A list of drawings, told from others by their number and a digest of their paths.
struct ListMark {
    std::size_t Count = 0;
    std::string Digest;
    bool operator==(const ListMark&) const = default;
};

struct RunDescription {
    /// A name that no other run has.
    std::string Id;
    /// The queue that the state must hold.
    ListMark Queue;
    /// The digest of the script and the limits that the state must hold; an empty digest when nobody has
    /// noted them.
    std::string Script;
    unsigned MaxTime = 0;
    unsigned AlarmTime = 0;
    bool ReadOnly = false;
    /// Which share of a list it is, and of which list.
    std::optional<Shard> Share;
    ListMark List;
    /// The scripts open the drawings themselves; the module keeps this in no file.
    bool Recover = false;
    /// A refused line is counted only; a drawing that is left changed and not saved ends as Error.
    bool Lenient = false;
    bool MustSave = false;
    /// The script's file has a line more in front, the description, than the state.
    bool HasHeading = false;

    /// Folders of several hosts that are there, numbered from one.
    std::size_t Jobs = 0;
    /// Each of them has its queue, so hosts may have worked in them.
    bool JobsReady = false;
    /// Files that wait in the folder "next" to take the place of those of the same name.
    std::vector<std::string> Next;
    /// What goes then: so many folders of hosts, and the log and archive that stand there and were set aside.
    std::size_t OldJobs = 0;
    bool OldLogs = false;

    /// Of the run in a host's own folder: the places of its drawings in the whole queue.
    std::vector<std::size_t> Places;
};

/// A description with a name of its own and nothing else.
RunDescription NewDescription();

/// Where it stands in a folder.
std::string DescriptionFile(const std::string& folder);
/// Nothing when the text is no description.
std::optional<RunDescription> ParseDescription(const std::string& text);
/// One line that says so.
std::string DamagedDescription(const std::string& file);
/// Nothing when the folder has none, which is no error: the window and earlier versions write none. False
/// with one line when there is one that cannot be read.
bool ReadDescription(const std::string& folder, std::optional<RunDescription>* description,
                     std::string* error);
/// On the disk when this comes back. False with one line; the old one then stays.
bool WriteDescription(const std::string& folder, const RunDescription& description, std::string* error);

/// The mark of a list in its order.
ListMark MarkOf(const std::vector<std::string>& paths);
