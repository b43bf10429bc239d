#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "platform/desktop_services.h"
#include "tests/platform/desktop/turn_until.h"
#include "tests/support/scoped_variable.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

using namespace std::chrono_literals;

/// A folder of programs in which the opener is a script.
class OpenFile : public testing::Test {
protected:
    OpenFile() { ::mkfifo(folder.path("end").c_str(), 0600); }

    void opener(const std::string& script) const {
        folder.file("xdg-open", "#!/bin/sh\ncd " + folder.path().string() + '\n' + script, 0700);
    }

    /// One that runs until it is asked to end.
    void openerThatGoesOn() const {
        opener("echo running > running\nread line < end\necho ended > ended\n");
    }
    bool isRunning() const {
        return turnUntil([&] { return std::filesystem::exists(folder.path("running")); });
    }
    bool endsWhenAsked() const {
        std::ofstream(folder.path("end")) << '\n';
        // Its object remains until it has been waited for.
        return turnUntil([&] {
            return std::filesystem::exists(folder.path("ended")) &&
                   fileText("/proc/thread-self/children").empty();
        });
    }

    void open(std::chrono::milliseconds patience = 1h) {
        opening = desktop::openFile(
            "/tmp/an image é.deb",
            [this](bool isOpened) {
                EXPECT_FALSE(told) << "told twice";
                told = isOpened;
            },
            patience);
    }
    bool isTold() const {
        return turnUntil([&] { return told.has_value(); });
    }

    TemporaryFolder folder;
    ScopedVariable programs{"PATH", folder.path().string()};
    std::optional<bool> told;
    std::unique_ptr<FileOpening> opening;
};

TEST_F(OpenFile, IsOpenedWhenTheOpenerSaysSo) {
    const ScopedVariable token("XDG_ACTIVATION_TOKEN", "of this program");
    // The name in the second field has no space, so the sixth is the session.
    opener(
        "read -r pid name state parent group session rest < /proc/$$/stat\n"
        "echo \"$# $1\" > given\n"
        "echo \"${XDG_ACTIVATION_TOKEN-none}\" > token\n"
        "[ $session = $$ ] && echo own > session\n");
    open();
    ASSERT_TRUE(isTold());
    EXPECT_EQ(told, true);
    EXPECT_EQ(folder.read("given"), "1 /tmp/an image é.deb\n");
    EXPECT_EQ(folder.read("token"), "none\n");
    EXPECT_EQ(folder.read("session"), "own\n");
}

TEST_F(OpenFile, IsNotOpenedWhenTheOpenerFails) {
    for (const char* script : {"exit 3\n", "exit 4\n", "kill -9 $$\n"}) {
        opener(script);
        told.reset();
        open();
        ASSERT_TRUE(isTold());
        EXPECT_EQ(told, false) << script;
    }
}

TEST_F(OpenFile, IsNotOpenedWithoutAnOpener) {
    open();
    ASSERT_TRUE(isTold());
    EXPECT_EQ(told, false);
}

TEST_F(OpenFile, CountsAsOpenedWhileTheOpenerGoesOn) {
    openerThatGoesOn();
    open(50ms);
    ASSERT_TRUE(isTold());
    EXPECT_EQ(told, true);
    ASSERT_TRUE(isRunning());
    EXPECT_TRUE(endsWhenAsked()) << "what shows the file was ended";
}

TEST_F(OpenFile, WhatShowsTheFileOutlivesTheOpening) {
    openerThatGoesOn();
    open();
    ASSERT_TRUE(isRunning());
    opening.reset();
    EXPECT_TRUE(endsWhenAsked()) << "what shows the file was ended";
    EXPECT_EQ(told, std::nullopt);
}

}  // namespace
}  // namespace tallowcrest
