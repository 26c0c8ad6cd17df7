#include "common/store_folder.h"

#include <pwd.h>
#include <stdlib.h>
#include <unistd.h>

#include "common/store_error.h"
#include "store_test.h"

using namespace pim_store;
using namespace store_test;

class StoreFolder : public StoreTest {};

TEST_F(StoreFolder, IsTheOneOfItsOwnVariable)
{
    setenv("XDG_DATA_HOME", "/elsewhere", 1);
    EXPECT_EQ(store_folder(), store_home());
}

TEST_F(StoreFolder, IsOneAmongTheUsersData)
{
    setenv("JSR75_PIM_HOME", "", 1);
    setenv("XDG_DATA_HOME", "/data", 1);
    EXPECT_EQ(store_folder(), "/data/jsr75-pim");
}

TEST_F(StoreFolder, IsBelowTheHomeFolderWhereNoOtherIsNamed)
{
    unsetenv("JSR75_PIM_HOME");
    setenv("XDG_DATA_HOME", "relative", 1);
    setenv("HOME", "/home/ada", 1);
    EXPECT_EQ(store_folder(), "/home/ada/.local/share/jsr75-pim");
}

class StoreFolderWithoutHome : public StoreFolder {
protected:
    static void expect_folder_of_the_user()
    {
        unsetenv("JSR75_PIM_HOME");
        unsetenv("XDG_DATA_HOME");
        EXPECT_EQ(store_folder(), fs::path(getpwuid(getuid())->pw_dir) / ".local/share/jsr75-pim");
    }
};

TEST_F(StoreFolderWithoutHome, IsTheOneOfTheUser)
{
    unsetenv("HOME");
    expect_folder_of_the_user();
}

TEST_F(StoreFolderWithoutHome, IsTheOneOfTheUserAlsoWithAnEmptyOne)
{
    setenv("HOME", "", 1);
    expect_folder_of_the_user();
}

TEST_F(StoreFolder, IsDecidedOnce)
{
    store_folder();
    setenv("JSR75_PIM_HOME", "/elsewhere", 1);
    EXPECT_EQ(store_folder(), store_home());
}

TEST_F(StoreFolder, StaysTheSameWhenTheProcessMoves)
{
    fs::current_path(room());
    setenv("JSR75_PIM_HOME", "here", 1);
    EXPECT_EQ(store_folder(), fs::current_path() / "here");
}

TEST_F(StoreFolder, IsMadeForThisUserAloneWithAllAboveIt)
{
    const fs::path folder = room() / "a/b/c";
    make_folder(folder);
    for (const fs::path& made : {folder, folder.parent_path(), folder.parent_path().parent_path()})
        EXPECT_EQ(mode_of(made), 0700u) << made;
    make_folder(folder);
}

TEST_F(StoreFolder, CannotBeMadeBelowAFile)
{
    write_file(room() / "file", "");
    for (const char* below : {"file", "file/a", "file/a/b"}) {
        try {
            make_folder(room() / below);
            ADD_FAILURE() << below;
        } catch (const store_failure& failure) {
            EXPECT_EQ(failure.code(), static_cast<int>(store_error::folder)) << below;
        }
    }
}
