// The guard between real processes. The test has no other threads, so forked children may call any
// function.

#include "platform/instance/instance_guard.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <csignal>
#include <memory>
#include <string>

#include <gmock/gmock.h>

#include "platform/base/local_socket.h"
#include "tests/platform/support/test_children.h"
#include "tests/support/eventually.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using Kind = InstanceStart::Kind;
using std::chrono::milliseconds;

/// Answers every request, as the window program does.
[[noreturn]] void serve(InstanceGuard& guard, const std::string& tokenFile) {
    while (true) {
        pollfd waiting{guard.listener(), POLLIN, 0};
        ::poll(&waiting, 1, -1);
        std::optional<InstancePeer> peer;
        if (guard.accept(peer) != InstanceGuard::Accepted::peer) {
            continue;
        }
        pollfd message{peer->descriptor(), POLLIN, 0};
        ::poll(&message, 1, 1000);
        if (peer->read() == InstancePeer::State::requested) {
            const UniqueFD file(::open(tokenFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600));
            const std::string& token = peer->request().activationToken;
            if (::write(file.get(), token.data(), token.size()) ==
                static_cast<ssize_t>(token.size())) {
                peer->acknowledge();
            }
        }
    }
}

class InstanceGuardTest : public testing::Test {
protected:
    InstanceGuardTest() { place = {folder.path("run"), "window-test"}; }

    std::string socketPath() const { return place.directory + '/' + place.name + ".socket"; }
    std::string lockPath() const { return place.directory + '/' + place.name + ".lock"; }

    InstanceStart start(const InstanceRequest& request = {}) const {
        return startInstance(place, request, {milliseconds(20'000), milliseconds(20'000)});
    }
    /// For starts that will get no answer.
    InstanceStart startWithShortTimeouts() const {
        return startInstance(place, {}, {milliseconds(200), milliseconds(200)});
    }

    /// Another process that already is the instance.
    std::unique_ptr<TestChild> otherInstance() const {
        auto child = std::make_unique<TestChild>([this] {
            InstanceStart other = start();
            if (other.kind == Kind::first) {
                const UniqueFD ready(
                    ::open(folder.path("ready").c_str(), O_WRONLY | O_CREAT, 0600));
                serve(*other.guard, folder.path("token"));
            }
        });
        EXPECT_TRUE(
            eventually([this] { return ::access(folder.path("ready").c_str(), F_OK) == 0; }));
        ::unlink(folder.path("ready").c_str());
        return child;
    }

    TemporaryFolder folder;
    InstancePlace place;
};

TEST_F(InstanceGuardTest, TheFirstStartIsTheInstanceAndItsFilesArePrivate) {
    const InstanceStart first = start();
    ASSERT_EQ(first.kind, Kind::first);
    EXPECT_EQ(first.message, "");
    EXPECT_GE(first.guard->listener(), 0);
    struct stat status {};
    ASSERT_EQ(::stat(place.directory.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0700U);
    for (const std::string& path : {socketPath(), lockPath()}) {
        ASSERT_EQ(::stat(path.c_str(), &status), 0) << path;
        EXPECT_EQ(status.st_mode & 0777U, 0600U) << path;
    }
}

TEST_F(InstanceGuardTest, TheSecondStartHandsOverWithItsToken) {
    const auto other = otherInstance();
    const InstanceStart second = start({"token_TIME1"});
    EXPECT_EQ(second.kind, Kind::handedOver);
    EXPECT_FALSE(second.guard.has_value());
    EXPECT_EQ(folder.read("token"), "token_TIME1");
    EXPECT_EQ(start().kind, Kind::handedOver);
    EXPECT_EQ(folder.read("token"), "");
    place.name = "window-other";
    EXPECT_EQ(start().kind, Kind::first) << "another place is another instance";
}

TEST_F(InstanceGuardTest, AStartAfterAnEndedOrKilledInstanceIsTheFirst) {
    otherInstance()->end();
    ASSERT_EQ(::access(socketPath().c_str(), F_OK), 0);
    ASSERT_EQ(::access(lockPath().c_str(), F_OK), 0);
    EXPECT_EQ(start().kind, Kind::first) << "even if its files are left";
    EXPECT_EQ(start().kind, Kind::first);
}

TEST_F(InstanceGuardTest, AHungInstanceIsReportedAndStaysTheOnlyOne) {
    const auto other = otherInstance();
    ASSERT_EQ(::kill(other->pid(), SIGSTOP), 0);
    const InstanceStart second = startWithShortTimeouts();
    EXPECT_EQ(second.kind, Kind::noAnswer);
    EXPECT_FALSE(second.guard.has_value());
    EXPECT_THAT(second.message, HasSubstr("process " + std::to_string(other->pid())));
    EXPECT_EQ(second.message.find('\n'), std::string::npos);
    ASSERT_EQ(::kill(other->pid(), SIGCONT), 0);
    EXPECT_EQ(start().kind, Kind::handedOver);
}

TEST_F(InstanceGuardTest, WaitsForAnInstanceThatNoLongerListensToEnd) {
    const TestChild ending([this] {
        InstanceStart other = start();
        other.guard->stopListening();
        { const UniqueFD ready(::open(folder.path("ready").c_str(), O_WRONLY | O_CREAT, 0600)); }
        while (::access(folder.path("end").c_str(), F_OK) != 0) {
            ::poll(nullptr, 0, 5);
        }
    });
    ASSERT_TRUE(eventually([this] { return ::access(folder.path("ready").c_str(), F_OK) == 0; }));
    EXPECT_EQ(startWithShortTimeouts().kind, Kind::noAnswer);
    const TestChild ender([this] {
        ::poll(nullptr, 0, 100);
        const UniqueFD end(::open(folder.path("end").c_str(), O_WRONLY | O_CREAT, 0600));
    });
    EXPECT_EQ(start().kind, Kind::first);
}

TEST_F(InstanceGuardTest, AWrongAnswerCountsAsNoAnswer) {
    const InstanceStart first = start();
    const TestChild pretender([&first] {
        while (true) {
            pollfd waiting{first.guard->listener(), POLLIN, 0};
            ::poll(&waiting, 1, -1);
            const UniqueFD socket = local_socket::accept(first.guard->listener());
            local_socket::send(socket.get(), "SHOWN\n and much more\n");
        }
    });
    EXPECT_EQ(startWithShortTimeouts().kind, Kind::noAnswer);
}

class InstancePeerTest : public InstanceGuardTest {
protected:
    InstancePeerTest() : first(start()) {}

    UniqueFD call(std::string_view text) const {
        UniqueFD socket = local_socket::open();
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        socketPath().copy(&address.sun_path[0], sizeof address.sun_path - 1);
        EXPECT_EQ(
            ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
            0);
        if (!text.empty()) {
            EXPECT_GT(local_socket::send(socket.get(), text), 0);
        }
        return socket;
    }

    InstancePeer accepted() {
        std::optional<InstancePeer> peer;
        EXPECT_EQ(first.guard->accept(peer), InstanceGuard::Accepted::peer);
        return peer ? std::move(*peer) : InstancePeer(UniqueFD());
    }

    InstanceStart first;
};

TEST_F(InstancePeerTest, RefusesAnotherUser) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only the superuser can play another user";
    }
    // Opens the permissions that would already keep another user out.
    ASSERT_EQ(::chmod(folder.path(".").c_str(), 0711), 0);
    ASSERT_EQ(::chmod(place.directory.c_str(), 0711), 0);
    ASSERT_EQ(::chmod(socketPath().c_str(), 0666), 0);
    const TestChild otherUser([this] {
        constexpr uid_t nobody = 65534;
        if (::setuid(nobody) == 0) {
            const UniqueFD caller = call("show\n");
            ::pause();
        }
    });
    pollfd waiting{first.guard->listener(), POLLIN, 0};
    ASSERT_EQ(::poll(&waiting, 1, 20'000), 1);
    std::optional<InstancePeer> peer;
    EXPECT_EQ(first.guard->accept(peer), InstanceGuard::Accepted::nothing);
    EXPECT_FALSE(peer.has_value());
    const UniqueFD own = call("show\n");
    EXPECT_EQ(accepted().read(), InstancePeer::State::requested);
}

TEST_F(InstancePeerTest, DoesNotBlockWithoutAPeerAndRefusesInvalidData) {
    std::optional<InstancePeer> peer;
    EXPECT_EQ(first.guard->accept(peer), InstanceGuard::Accepted::nothing);
    EXPECT_FALSE(peer.has_value());
    for (const std::string& text :
         {std::string("nonsense\n"), std::string("show\nshow\n"), std::string(60'000, 'x'),
          std::string("show ") + std::string(60'000, 'x')}) {
        const UniqueFD caller = call(text);
        EXPECT_EQ(accepted().read(), InstancePeer::State::refused);
    }
}

TEST_F(InstancePeerTest, NoDataIsIncompleteAndClosingIsRefused) {
    UniqueFD caller = call("");
    InstancePeer peer = accepted();
    EXPECT_EQ(peer.read(), InstancePeer::State::incomplete);
    caller.reset();
    EXPECT_EQ(peer.read(), InstancePeer::State::refused);
}

TEST_F(InstancePeerTest, ARequestMayComeInPieces) {
    const UniqueFD caller = call("sho");
    InstancePeer peer = accepted();
    EXPECT_EQ(peer.read(), InstancePeer::State::incomplete);
    ASSERT_EQ(local_socket::send(caller.get(), "w a"), 3);
    EXPECT_EQ(peer.read(), InstancePeer::State::incomplete);
    ASSERT_EQ(local_socket::send(caller.get(), "b\n"), 2);
    ASSERT_EQ(peer.read(), InstancePeer::State::requested);
    EXPECT_EQ(peer.request().activationToken, "ab");
    peer.acknowledge();
    std::string answer(instanceAcknowledgement.size() + 1, '\0');
    answer.resize(static_cast<std::size_t>(
        std::max<ssize_t>(::recv(caller.get(), answer.data(), answer.size(), 0), 0)));
    EXPECT_EQ(answer, instanceAcknowledgement);
}

TEST_F(InstancePeerTest, AcknowledgingAClosedPeerRaisesNoSignal) {
    UniqueFD caller = call("show\n");
    InstancePeer peer = accepted();
    ASSERT_EQ(peer.read(), InstancePeer::State::requested);
    caller.reset();
    peer.acknowledge();
    EXPECT_EQ(peer.read(), InstancePeer::State::refused);
}

TEST_F(InstancePeerTest, IsAcceptedEvenAtTheDescriptorLimit) {
    const UniqueFD caller = call("show\n");
    const UniqueFD waiting = call("show\n");
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    const int next = ::dup(STDERR_FILENO);
    ::close(next);
    const rlimit full{static_cast<rlim_t>(next), before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &full), 0);
    std::optional<InstancePeer> peer;
    const auto one = first.guard->accept(peer);
    std::optional<InstancePeer> other;
    const auto two = first.guard->accept(other);
    const auto said = peer ? peer->read() : InstancePeer::State::refused;
    peer.reset();
    const auto three = first.guard->accept(other);
    ::setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(one, InstanceGuard::Accepted::peer);
    EXPECT_EQ(two, InstanceGuard::Accepted::postponed);
    EXPECT_EQ(said, InstancePeer::State::requested);
    EXPECT_EQ(three, InstanceGuard::Accepted::peer);
}

TEST_F(InstanceGuardTest, APathLongerThanASocketAddressWorks) {
    place.directory = folder.path(std::string(120, 'a') + '/' + std::string(120, 'b'));
    const auto other = otherInstance();
    EXPECT_EQ(start({"far"}).kind, Kind::handedOver);
    EXPECT_EQ(folder.read("token"), "far");
    other->end();
    EXPECT_EQ(start().kind, Kind::first);
}

TEST_F(InstanceGuardTest, ANameLongerThanASocketAddressLeavesTheStartUnguarded) {
    place.name = std::string(120, 'n');
    const InstanceStart alone = start();
    EXPECT_EQ(alone.kind, Kind::unguarded);
    EXPECT_THAT(alone.message, HasSubstr("File name too long"));
}

TEST_F(InstanceGuardTest, ADirectoryThatCannotBeCreatedLeavesTheStartUnguarded) {
    for (const std::string& directory :
         {std::string("/proc/tallowcrest"), folder.file("file", "", 0600),
          folder.path("file") + "/below", std::string()}) {
        place.directory = directory;
        const InstanceStart alone = start();
        EXPECT_EQ(alone.kind, Kind::unguarded);
        EXPECT_FALSE(alone.guard.has_value());
        EXPECT_THAT(alone.message,
                    directory.empty() ? HasSubstr("no directory") : HasSubstr(directory + ": "));
    }
}

TEST_F(InstanceGuardTest, ADirectoryWhereOthersMayWriteIsNotTrusted) {
    ASSERT_EQ(::mkdir(place.directory.c_str(), 0700), 0);
    ASSERT_EQ(::chmod(place.directory.c_str(), 0777), 0);
    EXPECT_EQ(start().kind, Kind::unguarded);
    EXPECT_THAT(start().message, EndsWith("others may write there"));
    ASSERT_EQ(::chmod(place.directory.c_str(), 0700), 0);
    EXPECT_EQ(start().kind, Kind::first);
}

TEST_F(InstanceGuardTest, ALinkInPlaceOfTheLockIsNotFollowed) {
    ASSERT_EQ(::mkdir(place.directory.c_str(), 0700), 0);
    const std::string target = folder.path("target");
    ASSERT_EQ(::symlink(target.c_str(), lockPath().c_str()), 0);
    EXPECT_EQ(start().kind, Kind::unguarded);
    EXPECT_NE(::access(target.c_str(), F_OK), 0);
}

TEST_F(InstanceGuardTest, ADirectoryInPlaceOfTheSocketLeavesTheStartUnguarded) {
    ASSERT_EQ(::mkdir(place.directory.c_str(), 0700), 0);
    ASSERT_EQ(::mkdir(socketPath().c_str(), 0700), 0);
    EXPECT_EQ(start().kind, Kind::unguarded);
    EXPECT_THAT(start().message, HasSubstr(socketPath() + ": "));
}

TEST_F(InstanceGuardTest, AStartWithoutARuntimeDirectoryFindsAnInstanceThatHasOne) {
    const std::string runtime = folder.path("run");
    ASSERT_EQ(::mkdir(runtime.c_str(), 0700), 0);
    const std::string data = folder.path("data");
    place = instancePlace({runtime, data, "here", runtime});
    EXPECT_EQ(place.directory, runtime + "/tallowcrest");
    const auto other = otherInstance();
    for (const std::string& unusable :
         {std::string(), std::string("run"), folder.path("missing")}) {
        const InstancePlace found = instancePlace({unusable, data, "here", runtime});
        EXPECT_EQ(found.directory, place.directory) << unusable;
        EXPECT_EQ(startInstance(found, {}).kind, Kind::handedOver) << unusable;
    }
    EXPECT_EQ(instanceEnvironment(data).usualRuntimeDirectory,
              "/run/user/" + std::to_string(::geteuid()));
}

}  // namespace
}  // namespace tallowcrest
