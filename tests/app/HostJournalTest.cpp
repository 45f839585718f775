// SPDX-License-Identifier: GPL-3.0-or-later
// What a killed run leaves in its data folder goes, and nothing else does.
#include "app/HostJournal.h"

#include <gmock/gmock.h>

#include <set>

#include "tests/system/Folder.h"

namespace {

class HostJournalTest : public files::FolderTest {
  protected:
    std::set<std::string> names() const {
        std::set<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            found.insert(entry.path().filename());
        }
        return found;
    }
};

TEST_F(HostJournalTest, HalfWrittenFilesAndScriptsOfTheRunGo) {
    for (const char* name : {"TarnelRunner.xml", "TarnelRunner.xml.new", "run.json.new", "run.journal.new",
                             "tnl log.html.new", "TNLLog.zip.new", "TNLapp.log.new", "registry.ini.new",
                             "script1.scr", "script2.scr", "mine.new", "mine.scr"}) {
        Put(In(name), name);
    }
    ClearHostJournal(folder, files::Logs::Keep);
    EXPECT_THAT(names(), testing::ElementsAre("TarnelRunner.xml", "mine.new", "mine.scr"));
}

}  // namespace
