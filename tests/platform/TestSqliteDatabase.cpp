#include "fakes/ChildProcess.h"
#include "fakes/TemporaryFolder.h"
#include "platform/linux/store/SqliteDatabase.h"

#include <sqlite3.h>

using namespace korvalin;

namespace {

namespace fs = std::filesystem;

TEST(SqliteDatabase, AFileThatCannotBeWrittenNowIsNotOpenForWriting) {
    TemporaryFolder folder;
    const fs::path file = folder.Write("some.db", "");
    fs::permissions(folder.Path(), fs::perms::all);
    for (const auto& [mode, expected] : {std::pair(0444, SQLITE_READONLY), std::pair(0666, SQLITE_OK)}) {
        fs::permissions(file, static_cast<fs::perms>(mode));
        const WithoutRoot somebody;
        EXPECT_EQ(SqliteDatabase().OpenFile(file, SQLITE_OPEN_READWRITE, 0), expected);
    }
}

} // namespace
