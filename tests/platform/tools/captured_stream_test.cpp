#include "platform/tools/captured_stream.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

class CapturedStreamTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(openCapturePipe(pipe), 0); }

    CapturedStream stream(std::size_t maximumBytes = 1000000) {
        return {std::move(pipe.readEnd), &output, maximumBytes};
    }

    void write(const std::string& text) const {
        ASSERT_EQ(::write(pipe.writeEnd.get(), text.data(), text.size()),
                  static_cast<ssize_t>(text.size()));
    }

    spawn_support::Pipe pipe;
    std::string output;
};

TEST_F(CapturedStreamTest, OnlyTheReadEndIsNonBlockingAndNeitherIsInherited) {
    EXPECT_NE(::fcntl(pipe.readEnd.get(), F_GETFL) & O_NONBLOCK, 0);
    EXPECT_EQ(::fcntl(pipe.writeEnd.get(), F_GETFL) & O_NONBLOCK, 0);
    EXPECT_EQ(::fcntl(pipe.readEnd.get(), F_GETFD), FD_CLOEXEC);
    EXPECT_EQ(::fcntl(pipe.writeEnd.get(), F_GETFD), FD_CLOEXEC);
}

TEST_F(CapturedStreamTest, PipesAvoidTheStandardDescriptors) {
    std::array<UniqueFD, 3> kept;
    for (std::size_t number = 0; number < kept.size(); ++number) {
        kept.at(number) = UniqueFD(::fcntl(static_cast<int>(number), F_DUPFD_CLOEXEC, 20));
        ::close(static_cast<int>(number));
    }
    spawn_support::Pipe clear;
    const int error = openCapturePipe(clear);
    const int readFlags = ::fcntl(clear.readEnd.get(), F_GETFD);
    const int writeFlags = ::fcntl(clear.writeEnd.get(), F_GETFD);
    bool standardNumberTaken = false;
    for (std::size_t number = 0; number < kept.size(); ++number) {
        standardNumberTaken |= ::fcntl(static_cast<int>(number), F_GETFD) != -1;
        if (kept.at(number).valid()) {
            ::dup2(kept.at(number).get(), static_cast<int>(number));
        }
    }

    EXPECT_EQ(error, 0);
    EXPECT_GT(clear.readEnd.get(), STDERR_FILENO);
    EXPECT_GT(clear.writeEnd.get(), STDERR_FILENO);
    EXPECT_EQ(readFlags, FD_CLOEXEC);
    EXPECT_EQ(writeFlags, FD_CLOEXEC);
    EXPECT_FALSE(standardNumberTaken);
}

TEST_F(CapturedStreamTest, AnEmptyPipeIsNotTheEndOfTheStream) {
    CapturedStream captured = stream();
    captured.readAvailable();
    captured.readRemaining();
    EXPECT_GE(captured.descriptor(), 0);

    write("late");
    captured.readAvailable();
    EXPECT_EQ(output, "late");
}

TEST_F(CapturedStreamTest, TheStreamEndsWithItsLastWriter) {
    CapturedStream captured = stream();
    write("last words");
    pipe.writeEnd.reset();
    captured.readAvailable();
    EXPECT_EQ(output, "last words");
    EXPECT_GE(captured.descriptor(), 0);

    captured.readAvailable();
    EXPECT_EQ(captured.descriptor(), -1);
    captured.readAvailable();
    captured.readRemaining();
    EXPECT_EQ(output, "last words");
}

TEST_F(CapturedStreamTest, ReadsTheRemainderOfAPipeThatStaysOpen) {
    CapturedStream captured = stream();
    const std::string text(50000, 'x');
    write(text);
    captured.readRemaining();
    EXPECT_EQ(output, text);
}

TEST_F(CapturedStreamTest, DiscardsOutputBeyondTheLimit) {
    CapturedStream captured = stream(5);
    write("123");
    captured.readAvailable();
    write("45678");
    captured.readAvailable();
    write("9");
    captured.readRemaining();
    EXPECT_EQ(output, "12345");

    write("later");
    pipe.writeEnd.reset();
    captured.readAvailable();
    captured.readAvailable();
    EXPECT_EQ(output, "12345");
    EXPECT_EQ(captured.descriptor(), -1);
}

TEST_F(CapturedStreamTest, DiscardsEverythingWithoutATarget) {
    CapturedStream captured(std::move(pipe.readEnd), nullptr, 0);
    write("unread");
    pipe.writeEnd.reset();
    captured.readAvailable();
    captured.readAvailable();
    EXPECT_EQ(captured.descriptor(), -1);
}

}  // namespace
}  // namespace tallowcrest
