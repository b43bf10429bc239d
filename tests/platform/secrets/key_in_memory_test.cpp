#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/base/unique_fd.h"
#include "tests/platform/http/test_provider.h"
#include "tests/platform/secrets/keyring_fixture.h"

namespace tallowcrest {
namespace {

/// The writable memory of a process, piece by piece: "heap", an address, and what it holds.
struct Piece {
    std::string name;
    std::string bytes;
};

std::vector<Piece> writableMemory(pid_t pid) {
    const std::string folder = "/proc/" + std::to_string(pid);
    const UniqueFD memory(::open((folder + "/mem").c_str(), O_RDONLY | O_CLOEXEC));
    std::ifstream maps(folder + "/maps");
    std::vector<Piece> pieces;
    for (std::string line; std::getline(maps, line);) {
        const std::size_t dash = line.find('-');
        const std::size_t blank = line.find(' ');
        const auto begin = std::stoull(line.substr(0, dash), nullptr, 16);
        const auto end = std::stoull(line.substr(dash + 1, blank - dash - 1), nullptr, 16);
        if (line.compare(blank + 1, 2, "rw") != 0) {
            continue;
        }
        Piece piece{line, std::string(end - begin, '\0')};
        const ssize_t count = ::pread(memory.get(), piece.bytes.data(), piece.bytes.size(),
                                      static_cast<off_t>(begin));
        piece.bytes.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        pieces.push_back(std::move(piece));
    }
    return pieces;
}

/// The pieces that hold 12 characters of the key in a row, and the first of these.
std::vector<std::string> remainsOf(const std::string& key, pid_t pid) {
    constexpr std::size_t telling = 12;
    std::vector<std::string> found;
    std::size_t total = 0;
    for (const Piece& piece : writableMemory(pid)) {
        total += piece.bytes.size();
        // Any run of twice this length contains one of these.
        for (std::size_t at = 0; at + telling <= key.size(); at += telling) {
            const std::string part = key.substr(at, telling);
            if (piece.bytes.find(part) != std::string::npos) {
                found.push_back(part + " in " + piece.name);
            }
        }
    }
    EXPECT_GT(total, std::size_t{100'000});
    return found;
}

std::string randomKey() {
    constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::random_device random;
    std::string key = "sk-";
    while (key.size() < 99) {
        key += letters[random() % letters.size()];
    }
    return key;
}

class KeyInMemoryTest : public KeyringTest {
protected:
    void SetUp() override {
        startKeyring(true);
        rlimit limit{};
        ASSERT_EQ(::getrlimit(RLIMIT_CORE, &limit), 0);
        limit.rlim_cur = limit.rlim_max;
        ASSERT_EQ(::setrlimit(RLIMIT_CORE, &limit), 0);
        user_.emplace(std::vector<std::string>{
            TALLOWCREST_BINARY_DIR "/tests/key_user", home_.file("key", key_, 0600),
            provider_.at("https://localhost") + "/echo?401", authority_.path()});
    }

    std::string key_ = randomKey();
    TestAuthority authority_;
    TestProvider provider_{authority_.certificate("DNS:localhost")};
    std::optional<StartedProgram> user_;
};

TEST_F(KeyInMemoryTest, NothingOfItRemainsWhenItIsNoLongerUsed) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizers keep memory that was released";
#endif
    ASSERT_EQ(user_->line(), "held");
    EXPECT_THAT(remainsOf(key_, user_->pid()), testing::Not(testing::IsEmpty()));
    user_->signal(SIGUSR1);
    ASSERT_EQ(user_->line(), "sent Server error 401: " + std::string(240, 'b'));
    EXPECT_EQ(provider_.line().find("POST /echo Bearer " + key_ + " "), 0U);
    user_->signal(SIGUSR1);
    ASSERT_EQ(user_->line(), "removed");
    EXPECT_THAT(remainsOf(key_, user_->pid()), testing::IsEmpty());
    user_->signal(SIGUSR1);
    EXPECT_EQ(user_->exitStatus(), 0);
}

TEST_F(KeyInMemoryTest, ACrashLeavesNoDump) {
    ASSERT_EQ(user_->line(), "held");
    rlimit limit{};
    ASSERT_EQ(::prlimit(user_->pid(), RLIMIT_CORE, nullptr, &limit), 0);
    EXPECT_LE(limit.rlim_cur, 1U);
    EXPECT_GT(limit.rlim_max, 1U) << "This system makes no dumps anyway";
}

}  // namespace
}  // namespace tallowcrest
