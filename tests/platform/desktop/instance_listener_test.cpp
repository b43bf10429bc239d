#include "platform/desktop/instance_listener.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include <QByteArray>
#include <QCoreApplication>
#include <QSignalSpy>
#include <gmock/gmock.h>

#include "platform/base/local_socket.h"
#include "tests/platform/desktop/turn_until.h"
#include "tests/platform/support/test_children.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

class InstanceListenerTest : public testing::Test {
protected:
    InstanceListenerTest() : start(startInstance(place, {})), listener(*start.guard) {}

    UniqueFD call(std::string_view text) const {
        UniqueFD socket = local_socket::open();
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        (place.directory + "/window.socket").copy(&address.sun_path[0], 107);
        // When the queue is full, the listener has to accept others first.
        EXPECT_TRUE(turnUntil([&] {
            return ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address),
                             sizeof address) == 0 ||
                   errno != EAGAIN;
        }));
        if (!text.empty()) {
            EXPECT_GT(local_socket::send(socket.get(), text), 0);
        }
        return socket;
    }

    /// What the peer receives until the listener closes the connection.
    static std::string answerTo(const UniqueFD& caller) {
        std::string answer;
        ssize_t count = -1;
        EXPECT_TRUE(turnUntil([&] {
            char c = 0;
            while ((count = ::recv(caller.get(), &c, 1, 0)) > 0) {
                answer += c;
            }
            return count == 0 || errno == ECONNRESET;
        }));
        return answer;
    }

    TemporaryFolder folder;
    InstancePlace place{folder.path("run"), "window"};
    InstanceStart start;
    InstanceListener listener;
};

TEST_F(InstanceListenerTest, ARequestIsAnsweredOnceTheWindowIsShown) {
    bool isShown = false;
    QObject::connect(&listener, &InstanceListener::showRequested, &listener,
                     [&] { isShown = true; });
    const UniqueFD caller = call("show\n");
    EXPECT_EQ(answerTo(caller), instanceAcknowledgement);
    EXPECT_TRUE(isShown);
}

TEST_F(InstanceListenerTest, TheActivationTokenIsSetForThisRequestOnly) {
    std::vector<QByteArray> tokens;
    const auto remember = [&] { tokens.push_back(qgetenv("XDG_ACTIVATION_TOKEN")); };
    QObject::connect(&listener, &InstanceListener::showRequested, &listener, [&] {
        remember();
        QMetaObject::invokeMethod(&listener, remember, Qt::QueuedConnection);
    });
    const UniqueFD caller = call("show token\n");
    EXPECT_EQ(answerTo(caller), instanceAcknowledgement);
    EXPECT_TRUE(turnUntil([&] { return tokens.size() == 2; }));
    EXPECT_THAT(tokens, testing::Each(QByteArray("token")));
    EXPECT_TRUE(turnUntil([] { return !qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"); }));
}

TEST_F(InstanceListenerTest, InvalidDataClosesTheConnectionAndRequestsNothing) {
    QSignalSpy asked(&listener, &InstanceListener::showRequested);
    const UniqueFD caller = call("hide\n");
    EXPECT_EQ(answerTo(caller), "");
    EXPECT_EQ(asked.count(), 0);
}

TEST_F(InstanceListenerTest, SilenceClosesTheConnection) {
    const UniqueFD silent = call("");
    const UniqueFD slow = call("sho");
    EXPECT_EQ(answerTo(silent), "");
    EXPECT_EQ(answerTo(slow), "");
}

TEST_F(InstanceListenerTest, AFloodDoesNotPreventAnAnswer) {
    QSignalSpy asked(&listener, &InstanceListener::showRequested);
    const int before = openDescriptorCount();
    std::vector<UniqueFD> flood;
    for (int round = 0; round < 20; ++round) {
        for (int i = 0; i < 4; ++i) {
            flood.push_back(call(""));
        }
        QCoreApplication::processEvents();
    }
    const UniqueFD caller = call("show\n");
    EXPECT_EQ(answerTo(caller), instanceAcknowledgement);
    EXPECT_EQ(asked.count(), 1);
    // The client ends, and only a few descriptors of the listener.
    EXPECT_LE(openDescriptorCount(), before + static_cast<int>(flood.size()) + 5);
}

TEST_F(InstanceListenerTest, APeerMayCloseAtAnyTime) {
    QSignalSpy asked(&listener, &InstanceListener::showRequested);
    call("");
    call("sho");
    call("show\n");
    EXPECT_TRUE(turnUntil([&] { return asked.count() == 1; }));
    const UniqueFD caller = call("show\n");
    EXPECT_EQ(answerTo(caller), instanceAcknowledgement);
}

TEST(InstanceListener, StopsListeningWhenDestroyed) {
    const TemporaryFolder folder;
    InstanceStart start = startInstance({folder.path("run"), "window"}, {});
    ASSERT_TRUE(start.guard.has_value());
    { const InstanceListener listener(*start.guard); }
    EXPECT_EQ(start.guard->listener(), -1);
}

}  // namespace
}  // namespace tallowcrest
