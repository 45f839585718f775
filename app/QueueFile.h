#pragma once
// The queue as the module's state file holds it: the only truth about how each drawing went, since it is
// written before every step that can go wrong. This reader knows just the queue and the few options that the
// front needs; the front never writes the file, which belongs to the module.
#include <string>
#include <vector>

/// The states of a drawing, with their numbers in the file.
enum class DrawingStatus : unsigned { ToDo, Done, FailOpen, Timeout, Locked, Error, Canceled };

/// The word for a status, as users see it everywhere.
const char* StatusWord(DrawingStatus status);
/// The status of a word; false when it is none.
bool StatusFromWord(const std::string& word, DrawingStatus* status);

struct QueueEntry {
    std::string Path;
    DrawingStatus Status = DrawingStatus::ToDo;
};

class QueueFile {
  public:
    /// Reads a file. False with one line naming the file and the cause when it cannot be read or holds no
    /// state.
    bool Load(const std::string& path, std::string* error);

    /// In the order in which a run takes them.
    const std::vector<QueueEntry>& Entries() const { return entries; }
    unsigned MaxTime() const { return maxTime; }
    std::size_t Count(DrawingStatus status) const;

  private:
    void Sort(int key, bool reverse);

    std::vector<QueueEntry> entries;
    unsigned maxTime = 60;
};
