#include <fcntl.h>
#include <sys/stat.h>

#include <string>
#include <variant>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/files/image_folder_posix.h"
#include "platform/files/installation_files_posix.h"
#include "platform/files/partial_copies.h"
#include "tests/support/names_in.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::FieldsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

namespace fs = std::filesystem;

mode_t modeOf(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
}

class InstallationFilesTest : public ::testing::Test {
protected:
    std::vector<std::string> names() const { return namesIn(folder_.path()); }
    std::string at(const std::string& name) const { return folder_.path(name); }

    Outcome write(const std::string& path, const char* text) {
        return files_.writeFile(path, text, LinkedFolder::refused);
    }

    TemporaryFolder folder_;
    PosixInstallationFiles files_;
};

TEST_F(InstallationFilesTest, TellsLinksFromWhatTheyLeadTo) {
    folder_.file("file", "text", 0600);
    fs::create_symlink(at("file"), at("link"));
    fs::create_symlink(at("missing"), at("dangling"));
    EXPECT_TRUE(files_.isLink(at("link")));
    EXPECT_TRUE(files_.isLink(at("dangling")));
    EXPECT_FALSE(files_.isLink(at("file")));
    EXPECT_FALSE(files_.isLink(at("missing")));
    EXPECT_TRUE(files_.exists(at("link")));
    EXPECT_TRUE(files_.exists(folder_.path()));
    EXPECT_FALSE(files_.exists(at("dangling")));
    EXPECT_FALSE(files_.exists(at("file/below")));
}

TEST_F(InstallationFilesTest, AFolderIsReservedForOneAtATime) {
    auto reserved = files_.reserve(folder_.path());
    EXPECT_NE(reserved, nullptr);
    EXPECT_EQ(files_.reserve(folder_.path()), nullptr);
    reserved.reset();
    EXPECT_NE(files_.reserve(folder_.path()), nullptr);
}

TEST_F(InstallationFilesTest, MakesFoldersWithTheirParents) {
    EXPECT_EQ(files_.makeFolder(at("a/b/c")), Outcome::done());
    EXPECT_TRUE(fs::is_directory(at("a/b/c")));
    EXPECT_EQ(files_.makeFolder(at("a/b/c")), Outcome::done());
    folder_.file("file", "", 0600);
    EXPECT_EQ(files_.makeFolder(at("file")), Outcome::failed("Not a directory"));
    EXPECT_EQ(files_.makeFolder(at("file/below")), Outcome::failed("Not a directory"));
}

TEST_F(InstallationFilesTest, WritesAndReplacesAFileAsAWhole) {
    EXPECT_EQ(write(at("entry"), "one"), Outcome::done());
    EXPECT_EQ(folder_.read("entry"), "one");
    EXPECT_EQ(modeOf(at("entry")) & 0400U, 0400U);
    EXPECT_EQ(write(at("entry"), "two"), Outcome::done());
    EXPECT_EQ(folder_.read("entry"), "two");
    EXPECT_THAT(names(), ElementsAre("entry"));
}

TEST_F(InstallationFilesTest, WhatIsWrittenIsReadableByEverybodyWhateverTheUmask) {
    const mode_t before = ::umask(0077);
    EXPECT_EQ(write(at("entry"), "text"), Outcome::done());
    ::umask(before);
    EXPECT_EQ(modeOf(at("entry")), 0644U);
}

TEST_F(InstallationFilesTest, TellsWhatIsInAFolder) {
    EXPECT_THAT(files_.entriesOf(folder_.path()), IsEmpty());
    folder_.file("file", "", 0600);
    folder_.file(".hidden", "", 0600);
    fs::create_directory(at("folder"));
    fs::create_symlink(at("file"), at("link"));
    EXPECT_THAT(files_.entriesOf(folder_.path()),
                UnorderedElementsAre(FieldsAre("file", true), FieldsAre(".hidden", true),
                                     FieldsAre("folder", false), FieldsAre("link", false)));
    EXPECT_THAT(files_.entriesOf(at("missing")), IsEmpty());
    EXPECT_THAT(files_.entriesOf(at("file")), IsEmpty());
}

TEST_F(InstallationFilesTest, NeverWritesThroughALink) {
    folder_.file("kept", "kept", 0600);
    fs::create_symlink(at("kept"), at("link"));
    EXPECT_EQ(write(at("link"), "new").kind, Outcome::Kind::failed);
    fs::create_directory(at("elsewhere"));
    fs::create_directory_symlink(at("elsewhere"), at("folder"));
    EXPECT_EQ(write(at("folder/entry"), "new").kind, Outcome::Kind::failed);
    EXPECT_EQ(folder_.read("kept"), "kept");
    EXPECT_THAT(namesIn(at("elsewhere")), IsEmpty());
    EXPECT_THAT(names(), UnorderedElementsAre("kept", "link", "elsewhere", "folder"));
}

TEST_F(InstallationFilesTest, ALinkedFolderOfTheOwnersIsFollowedWhereItMayBe) {
    fs::create_directory(at("dotfiles"));
    fs::create_directory_symlink(at("dotfiles"), at("folder"));
    EXPECT_EQ(files_.makeFolder(at("folder")), Outcome::done());
    EXPECT_EQ(files_.writeFile(at("folder/entry"), "new", LinkedFolder::followed), Outcome::done());
    EXPECT_EQ(files_.makeLink(at("folder/launcher"), "/opt/one"), Outcome::done());
    EXPECT_EQ(folder_.read("dotfiles/entry"), "new");
    EXPECT_EQ(fs::read_symlink(at("dotfiles/launcher")), "/opt/one");
    // The file itself must not be one.
    fs::create_symlink(at("kept"), at("dotfiles/other"));
    EXPECT_FALSE(files_.writeFile(at("folder/other"), "new", LinkedFolder::followed).isAccepted());
    EXPECT_FALSE(fs::exists(at("kept")));
}

TEST_F(InstallationFilesTest, AFileThatCannotBeWrittenLeavesNothing) {
    fs::create_directory(at("entry"));
    EXPECT_EQ(write(at("entry"), "new"), Outcome::failed("Is a directory"));
    EXPECT_EQ(write(at("missing/entry"), "new"), Outcome::failed("No such file or directory"));
    EXPECT_THAT(names(), ElementsAre("entry"));
}

TEST_F(InstallationFilesTest, MakesALinkInPlaceOfAnotherLinkAlone) {
    EXPECT_EQ(files_.makeLink(at("launcher"), "/opt/one"), Outcome::done());
    EXPECT_EQ(files_.makeLink(at("launcher"), "/opt/two"), Outcome::done());
    EXPECT_EQ(fs::read_symlink(at("launcher")), "/opt/two");
    folder_.file("script", "mine", 0700);
    EXPECT_EQ(files_.makeLink(at("script"), "/opt/two"), Outcome::failed("File exists"));
    EXPECT_EQ(folder_.read("script"), "mine");
    EXPECT_THAT(names(), UnorderedElementsAre("launcher", "script"));
}

TEST_F(InstallationFilesTest, RemovesALinkItselfAndNoFolder) {
    folder_.file("kept", "kept", 0600);
    fs::create_symlink(at("kept"), at("link"));
    EXPECT_EQ(files_.removeFile(at("link")), Outcome::done());
    EXPECT_EQ(files_.removeFile(at("link")), Outcome::failed("No such file or directory"));
    fs::create_directory(at("folder"));
    EXPECT_EQ(files_.removeFile(at("folder")).kind, Outcome::Kind::failed);
    EXPECT_THAT(names(), UnorderedElementsAre("kept", "folder"));
}

class ImageFolderTest : public ::testing::Test {
protected:
    std::unique_ptr<DownloadedImage> begin() {
        return std::get<std::unique_ptr<DownloadedImage>>(images_.begin());
    }

    TemporaryFolder folder_;
    PosixImageFolder images_{folder_.path()};
};

TEST_F(ImageFolderTest, AnImageIsItsOwnersUntilItIsPublished) {
    auto image = begin();
    EXPECT_FALSE(image->write("one ").has_value());
    EXPECT_FALSE(image->write("two").has_value());
    const std::vector<std::string> names = namesIn(folder_.path());
    ASSERT_EQ(names.size(), 1U);
    EXPECT_EQ(modeOf(folder_.path(names.front())), 0600U);
    EXPECT_EQ(std::get<std::string>(image->publish("image.deb")), folder_.path("image.deb"));
    image.reset();
    EXPECT_THAT(namesIn(folder_.path()), ElementsAre("image.deb"));
    EXPECT_EQ(folder_.read("image.deb"), "one two");
    EXPECT_EQ(modeOf(folder_.path("image.deb")), 0644U);
}

TEST_F(ImageFolderTest, AnImageThatIsNotPublishedIsRemoved) {
    begin()->write("text");
    EXPECT_THAT(namesIn(folder_.path()), IsEmpty());
}

TEST_F(ImageFolderTest, SeveralImagesDoNotDisturbOneAnother) {
    const auto one = begin();
    const auto two = begin();
    one->write("one");
    two->write("two");
    EXPECT_TRUE(std::holds_alternative<std::string>(one->publish("image.deb")));
    EXPECT_TRUE(std::holds_alternative<std::string>(two->publish("image.deb")));
    EXPECT_EQ(folder_.read("image.deb"), "two");
}

TEST_F(ImageFolderTest, ABackupIntoItsFolderLeavesAnImageThatIsBeingWritten) {
    const UniqueFD folder(::open(folder_.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    auto image = begin();
    removePartialCopies(folder.get());
    EXPECT_EQ(namesIn(folder_.path()).size(), 1U);
    image.reset();
    folder_.file(partialCopyName(), "of a killed process", 0600);
    removePartialCopies(
        UniqueFD(::open(folder_.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)).get());
    EXPECT_THAT(namesIn(folder_.path()), IsEmpty());
}

TEST_F(ImageFolderTest, ANewImageRemovesWhatKilledDownloadsHaveLeft) {
    folder_.file(partialCopyName(), "of a killed process", 0600);
    folder_.file(".tallowcrest-notes.part", "of the owner", 0600);
    const auto running = begin();
    EXPECT_EQ(namesIn(folder_.path()).size(), 2U);
    const auto another = begin();
    EXPECT_EQ(namesIn(folder_.path()).size(), 3U) << "one that is being written stays";
    EXPECT_EQ(folder_.read(".tallowcrest-notes.part"), "of the owner");
}

TEST_F(ImageFolderTest, WithoutAFolderThereIsAReason) {
    for (const char* place : {"/nowhere/at/all", "tmp"}) {
        EXPECT_EQ(std::get<UpdateError>(PosixImageFolder(place).begin()).description,
                  "No such file or directory");
    }
}

}  // namespace
}  // namespace tallowcrest
