// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the front has told of the drawings of a run, line by line as it was told: how long each took and what
// the host said stand nowhere else, and a run that is gone on with must not lose it. It also tells a drawing
// that ended as Error from one that was in work when everything was killed, and how often each was tried.
#include "app/DataFolder.h"
#include "app/RunLedger.h"

#include <optional>
#include <string>
#include <vector>

/// What a journal says of each drawing, by place in the queue.
struct JournalContent {
    std::vector<std::optional<DrawingRecord>> Records;
    /// The drawing was set back to wait since it was in work when its host was killed.
    std::vector<bool> TriedAgain;
};

class RunJournal {
  public:
    /// Opens the journal of a run for more lines; one of another run is begun anew. False with one line.
    bool Open(const DataFolder& folder, const std::string& runId, std::string* error);
    RunJournal() = default;
    ~RunJournal();
    RunJournal(const RunJournal&) = delete;
    RunJournal& operator=(const RunJournal&) = delete;

    void Settled(std::size_t place, const DrawingRecord& record);
    void TriedAgain(std::size_t place);
    /// One line when something could not be written; empty otherwise.
    const std::string& Error() const { return error; }

  private:
    void add(const std::string& line);

    std::string path;
    std::string error;
    int file = -1;
};

/// Reads the journal of a run over so many drawings. Lines that are cut off or damaged are passed over, and a
/// journal of another run says nothing.
JournalContent ReadJournal(const DataFolder& folder, const std::string& runId, std::size_t drawings);

/// Writes a journal in one go to the file "run.journal" of a folder. False with one line.
bool WriteJournal(const std::string& folder, const std::string& runId,
                  const std::vector<DrawingRecord>& records, const std::vector<bool>& triedAgain,
                  std::string* error);
