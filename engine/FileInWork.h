// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The file in work is known by its position in the order of the queue. Whatever loads the queue or orders it
// anew moves the positions, and a script may do that at any time through the setters; so the file is
// remembered before and looked for afterwards. Its status must never go to another file.
#include <cstdint>
#include <QString>

struct CTarnelData;

class FileInWork {
  public:
    /// Remembers the file in work, if there is one.
    explicit FileInWork(const CTarnelData& data);
    /// Sets CurrentFile to the place at which the file stands now, -1 when it is gone.
    void FindAgain(CTarnelData& data) const;

  private:
    bool known = false;
    std::uint32_t entry = 0;
    QString path;
};
