#include "platform/base/local_public_key.h"

#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

class LocalPublicKeyTest : public ::testing::Test {
protected:
    void write(const std::string& name, const std::string& text) const {
        std::filesystem::create_directory(home.path() / ".ssh");
        std::ofstream(home.path() / ".ssh" / name) << text;
    }

    std::optional<std::string> key() const { return localPublicKey(home.path()); }

    TemporaryFolder home;
};

TEST_F(LocalPublicKeyTest, WithoutAFolderForKeysThereIsNone) {
    EXPECT_EQ(key(), std::nullopt);
}

TEST_F(LocalPublicKeyTest, IsTrimmed) {
    write("id_rsa.pub", " \tssh-rsa AAAA owner@desk\r\n\n");
    EXPECT_EQ(key(), "ssh-rsa AAAA owner@desk");
}

TEST_F(LocalPublicKeyTest, TheEd25519KeyComesFirst) {
    write("id_rsa.pub", "ssh-rsa AAAA");
    write("id_ed25519.pub", "ssh-ed25519 BBBB");
    EXPECT_EQ(key(), "ssh-ed25519 BBBB");
}

TEST_F(LocalPublicKeyTest, AFileWithoutAKeyIsPassedOver) {
    write("id_rsa.pub", "ssh-rsa AAAA");
    for (const char* text : {"", " \n\t", "ssh-ed25519 \xFF"}) {
        write("id_ed25519.pub", text);
        EXPECT_EQ(key(), "ssh-rsa AAAA") << text;
    }
}

TEST_F(LocalPublicKeyTest, OnlyARegularFileIsRead) {
    std::filesystem::create_directories(home.path() / ".ssh" / "id_rsa.pub");
    ASSERT_EQ(::mkfifo((home.path() / ".ssh" / "id_ed25519.pub").c_str(), 0600), 0);
    EXPECT_EQ(key(), std::nullopt) << "and the call has returned";
}

TEST_F(LocalPublicKeyTest, WithoutAHomeFolderTheCurrentFolderIsNotLookedAt) {
    const std::filesystem::path before = std::filesystem::current_path();
    write("id_rsa.pub", "ssh-rsa AAAA");
    std::filesystem::current_path(home.path());
    const std::optional<std::string> found = localPublicKey({});
    std::filesystem::current_path(before);
    EXPECT_EQ(found, std::nullopt);
}

TEST_F(LocalPublicKeyTest, OtherFilesAreNotLookedAt) {
    write("id_ecdsa.pub", "ecdsa CCCC");
    write("id_rsa", "a private key");
    EXPECT_EQ(key(), std::nullopt);
}

}  // namespace
}  // namespace tallowcrest
