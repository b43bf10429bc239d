#include "disk/storage_areas.h"

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/each_of.h"

namespace tallowcrest {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

UserFolders linuxFolders() {
    return {.home = "/home/o",
            .downloads = "/home/o/Téléchargements",
            .documents = "/home/o/Documents",
            .desktop = "/home/o/Bureau",
            .videos = "/data/Videos",
            .pictures = "/home/o/Images",
            .music = "/home/o/Musique",
            .caches = "/home/o/.cache",
            .data = "/home/o/.local/share",
            .configuration = "/home/o/.config"};
}

std::vector<std::string> labels(const std::vector<StorageArea>& areas) {
    return eachOf(areas, &StorageArea::label);
}

TEST(StorageAreas, MacOSHasNineteenInTheirOrder) {
    EXPECT_THAT(
        macOSStorageAreas(macOSUserFolders("/Users/o")),
        ElementsAre(
            StorageArea{"Applications", "/Applications"}, StorageArea{"System Library", "/Library"},
            StorageArea{"System Data (/private/var)", "/private/var"},
            StorageArea{"macOS System", "/System"}, StorageArea{"Downloads", "/Users/o/Downloads"},
            StorageArea{"Documents", "/Users/o/Documents"},
            StorageArea{"Desktop", "/Users/o/Desktop"}, StorageArea{"Movies", "/Users/o/Movies"},
            StorageArea{"Pictures", "/Users/o/Pictures"}, StorageArea{"Music", "/Users/o/Music"},
            StorageArea{"Application Support", "/Users/o/Library/Application Support"},
            StorageArea{"App Containers", "/Users/o/Library/Containers"},
            StorageArea{"Shared App Data", "/Users/o/Library/Group Containers"},
            StorageArea{"Developer Data", "/Users/o/Library/Developer"},
            StorageArea{"User Caches", "/Users/o/Library/Caches"},
            StorageArea{"iCloud Drive Data", "/Users/o/Library/Mobile Documents"},
            StorageArea{"Mail", "/Users/o/Library/Mail"},
            StorageArea{"Messages", "/Users/o/Library/Messages"},
            StorageArea{"Trash", "/Users/o/.Trash"}));
}

TEST(StorageAreas, LinuxHasTheFoldersOfTheOwnerUnderTheirOwnNames) {
    const std::vector<StorageArea> areas = linuxStorageAreas(linuxFolders());
    for (const StorageArea& area :
         {StorageArea{"Programs", "/usr"}, StorageArea{"Optional Software", "/opt"},
          StorageArea{"System Data (/var)", "/var"}, StorageArea{"Snap Packages", "/var/lib/snapd"},
          StorageArea{"Flatpak Apps", "/var/lib/flatpak"},
          StorageArea{"Downloads", "/home/o/Téléchargements"},
          StorageArea{"Videos", "/data/Videos"}, StorageArea{"User Caches", "/home/o/.cache"},
          StorageArea{"Snap App Data", "/home/o/snap"},
          StorageArea{"Flatpak App Data", "/home/o/.var/app"},
          StorageArea{"Containers", "/home/o/.local/share/containers"},
          StorageArea{"Application Data", "/home/o/.local/share"},
          StorageArea{"Configuration", "/home/o/.config"},
          StorageArea{"Mail (Thunderbird)", "/home/o/.thunderbird"},
          StorageArea{"Developer Data (Cargo)", "/home/o/.cargo"},
          StorageArea{"Trash", "/home/o/.local/share/Trash"}}) {
        EXPECT_THAT(areas, Contains(area));
    }
    const std::vector<std::string> all = labels(areas);
    EXPECT_EQ(std::set<std::string>(all.begin(), all.end()).size(), all.size());
    EXPECT_GE(areas.size(), 19U);
}

TEST(StorageAreas, AFolderThatIsNotSetApartIsLeftOut) {
    UserFolders folders = linuxFolders();
    folders.desktop = folders.home;
    folders.music = folders.downloads;
    folders.pictures = {};
    folders.data = {};
    const std::vector<StorageArea> areas = linuxStorageAreas(folders);
    for (const char* missing : {"Desktop", "Music", "Pictures", "Application Data", "Trash"}) {
        EXPECT_THAT(labels(areas), Not(Contains(missing)));
    }
    for (const StorageArea& area : areas) {
        EXPECT_TRUE(area.folder.starts_with('/')) << area.label;
    }
}

TEST(StorageAreas, PersonalFoldersAreInTheirOrder) {
    EXPECT_THAT(personalFolders(macOSUserFolders("/Users/o")),
                ElementsAre("/Users/o/Downloads", "/Users/o/Desktop", "/Users/o/Documents",
                            "/Users/o/Movies", "/Users/o/Pictures"));
    EXPECT_THAT(personalFolders(linuxFolders()),
                ElementsAre("/home/o/Téléchargements", "/home/o/Bureau", "/home/o/Documents",
                            "/data/Videos", "/home/o/Images"));
}

TEST(StorageAreas, PersonalFoldersAreThoseThatAreSetApartEachOnceAlsoInsideOneAnother) {
    UserFolders folders = linuxFolders();
    folders.downloads = folders.documents + "/.downloads";
    folders.desktop = folders.home;
    folders.pictures = folders.videos;
    EXPECT_THAT(personalFolders(folders),
                ElementsAre("/home/o/Documents/.downloads", "/home/o/Documents", "/data/Videos"));
    EXPECT_THAT(personalFolders({}), IsEmpty());
}

TEST(StorageAreas, AFolderIsNotInsideItselfNorInOneWhoseNameBeginsItsOwn) {
    EXPECT_TRUE(isInsideFolder("/a/b", "/a"));
    EXPECT_TRUE(isInsideFolder("/a", "/"));
    EXPECT_FALSE(isInsideFolder("/", "/"));
    EXPECT_FALSE(isInsideFolder("/a", "/a"));
    EXPECT_FALSE(isInsideFolder("/ab", "/a"));
    EXPECT_FALSE(isInsideFolder("/a", "/a/b"));
    EXPECT_FALSE(isInsideFolder("/a", ""));
}

}  // namespace
}  // namespace tallowcrest
