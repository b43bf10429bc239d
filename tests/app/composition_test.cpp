#include "app/composition.h"

#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/settings_keys.h"
#include "platform/posix/run_loop.h"
#include "tests/app/private_data.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::internal::CaptureStderr;
using ::testing::internal::GetCapturedStderr;

/// The parts of this machine, with an owner's data of the test's own.
class CompositionTest : public ::testing::Test {
protected:
    std::unique_ptr<Composition> start(SettingsAccess access) {
        return std::make_unique<Composition>(loop, access, std::vector<std::string>{"tallowcrest"},
                                             MonitorExtensions{});
    }

    void writeGarbage() const {
        fs::create_directory(file.parent_path());
        std::ofstream(file) << "garbage";
    }

    std::string content() const {
        std::ostringstream text;
        text << std::ifstream(file, std::ios::binary).rdbuf();
        return text.str();
    }

    PrivateData data;
    fs::path file = data.folder() / "tallowcrest" / "settings.sqlite";
    RunLoop loop;
};

TEST_F(CompositionTest, KeepsSettingsFromOneRunToTheNext) {
    CaptureStderr();
    {
        const auto composition = start(SettingsAccess::keep);
        EXPECT_THAT(composition->monitor().log().activityLog(), IsEmpty());
        composition->monitor().log().recordMessage("Kept.");
        EXPECT_TRUE(composition->shutDown());
    }
    const auto composition = start(SettingsAccess::keep);
    EXPECT_EQ(GetCapturedStderr(), "");
    ASSERT_EQ(composition->monitor().log().activityLog().size(), 1U);
    EXPECT_EQ(composition->monitor().log().activityLog().front().detail, "Kept.");
    EXPECT_EQ(composition->monitor().log().lastAction(), "Monitoring started.");
    EXPECT_TRUE(composition->shutDown());
}

TEST_F(CompositionTest, OnlyLookingSeesWhatIsKeptAndLeavesIt) {
    {
        const auto composition = start(SettingsAccess::keep);
        composition->monitor().log().recordMessage("Kept.");
        EXPECT_TRUE(composition->shutDown());
    }
    const std::string before = content();
    {
        const auto composition = start(SettingsAccess::look);
        ASSERT_EQ(composition->monitor().log().activityLog().size(), 1U);
        composition->monitor().log().recordMessage("Not kept.");
        EXPECT_TRUE(composition->shutDown());
    }
    EXPECT_TRUE(content() == before);
    const auto composition = start(SettingsAccess::look);
    EXPECT_EQ(composition->monitor().log().activityLog().size(), 1U);
    EXPECT_TRUE(composition->shutDown());
}

TEST_F(CompositionTest, OnlyLookingMakesNothing) {
    const auto composition = start(SettingsAccess::look);
    composition->monitor().log().recordMessage("Not kept.");
    EXPECT_TRUE(composition->shutDown());
    EXPECT_TRUE(fs::is_empty(data.folder()));
}

TEST_F(CompositionTest, SaysWhatItCouldNotReadEverywhereOnce) {
    writeGarbage();
    CaptureStderr();
    {
        const auto composition = start(SettingsAccess::keep);
        const std::string& said = composition->monitor().log().lastAction();
        EXPECT_THAT(said, HasSubstr(file.string()));
        EXPECT_THAT(said, HasSubstr("damaged"));
        EXPECT_EQ(GetCapturedStderr(), "tallowcrest: " + said + "\n");
        ASSERT_EQ(composition->monitor().log().activityLog().size(), 1U);
        EXPECT_EQ(composition->monitor().log().activityLog().front().title, "Action");
        EXPECT_EQ(composition->monitor().log().activityLog().front().detail, said);
        EXPECT_TRUE(composition->shutDown());
    }
    CaptureStderr();
    const auto composition = start(SettingsAccess::keep);
    EXPECT_EQ(GetCapturedStderr(), "");
    EXPECT_EQ(composition->monitor().log().lastAction(), "Monitoring started.");
    EXPECT_EQ(composition->monitor().log().activityLog().size(), 1U);
    EXPECT_TRUE(composition->shutDown());
}

TEST_F(CompositionTest, StartsOnAMachineThatKeepsNothing) {
    std::ofstream(data.folder() / "tallowcrest") << "a file where the folder should be";
    CaptureStderr();
    const auto composition = start(SettingsAccess::keep);
    EXPECT_THAT(GetCapturedStderr(), HasSubstr("cannot be made"));
    EXPECT_THAT(composition->monitor().log().lastAction(), HasSubstr("cannot be made"));
    EXPECT_TRUE(composition->shutDown());
}

}  // namespace
}  // namespace tallowcrest
