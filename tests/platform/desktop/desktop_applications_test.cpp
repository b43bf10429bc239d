#include "platform/desktop/desktop_applications.h"

#include <string>
#include <vector>

#include <QByteArray>
#include <gmock/gmock.h>

#include "platform/host.h"
#include "tests/support/eventually.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

class DesktopApplications : public testing::Test {
protected:
    /// A program that leaves its name behind.
    std::string program(const std::string& name, mode_t mode = 0700) const {
        return folder.file(name, "#!/bin/sh\necho " + name + " $# >> " + folder.path("started"),
                           mode);
    }

    bool becomesStarted(const std::string& text) const {
        return eventually([&] { return folder.read("started") == text; });
    }

    TemporaryFolder folder;
};

TEST_F(DesktopApplications, TheFirstThatIsInstalledIsStartedAndNoOther) {
    const std::string first = program("first");
    const std::string second = program("second");
    const std::string missing = folder.path("missing");
    EXPECT_TRUE(openFirstApplication({missing, first, second}, {missing, first, second}));
    EXPECT_TRUE(becomesStarted("first 0\n"));
}

TEST_F(DesktopApplications, WhatTheDesktopGaveThisProgramIsNotPassedOn) {
    const std::string teller =
        folder.file("teller",
                    "#!/bin/sh\necho \"${XDG_ACTIVATION_TOKEN-none} ${DESKTOP_STARTUP_ID-none} "
                    "$KEPT\" > " +
                        folder.path("started"),
                    0700);
    const std::vector<const char*> variables{"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID", "KEPT"};
    for (const char* variable : variables) {
        ASSERT_TRUE(qputenv(variable, QByteArray("given")));
    }
    EXPECT_TRUE(openFirstApplication({teller}, {teller}));
    EXPECT_TRUE(becomesStarted("none none given\n"));
    for (const char* variable : variables) {
        qunsetenv(variable);
    }
}

TEST_F(DesktopApplications, WhatMayNotBeLaunchedIsPassedOver) {
    const std::string first = program("first");
    const std::string second = program("second");
    EXPECT_TRUE(openFirstApplication({first, second}, {second}));
    EXPECT_TRUE(becomesStarted("second 0\n"));
    EXPECT_FALSE(openFirstApplication({first}, {second}));
}

TEST_F(DesktopApplications, WhatCannotBeRunIsPassedOver) {
    const std::string text = program("text", 0600);
    EXPECT_FALSE(openFirstApplication({text}, {text}));
    EXPECT_FALSE(openFirstApplication({}, {text}));
}

TEST_F(DesktopApplications, EveryProcessViewerOfThisSystemMayBeLaunched) {
    const auto viewers = host::activityMonitors();
    ASSERT_THAT(viewers, testing::Not(testing::IsEmpty()));
    for (const std::string& path : viewers) {
        EXPECT_TRUE(CommandSafetyPolicy::isAllowedExecutable(host::allowedExecutables(), path))
            << path;
    }
}

}  // namespace
}  // namespace tallowcrest
