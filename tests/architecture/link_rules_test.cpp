#include "tests/architecture/link_rules.h"

#include <source_location>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/architecture/violation_matcher.h"

namespace tallowcrest::architecture {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Files = std::vector<SourceFile>;

constexpr const char* coreBuild = "tallowcrest_layer(core SOURCES a.cpp LIBRARIES fmt::fmt)\n";

TEST(LinkRules, AcceptsEdgesThatMatchTheIncludes) {
    EXPECT_THAT(
        wrongLinkEdges(
            {{"core/CMakeLists.txt", coreBuild},
             {"core/a.cpp", ""},
             {"sampling/CMakeLists.txt", "tallowcrest_layer(sampling SOURCES b.cpp DEPENDS core)"},
             {"sampling/b.cpp", "#include \"core/a.h\"\n"},
             {"actions/CMakeLists.txt",
              "tallowcrest_layer(actions SOURCES c.cpp DEPENDS sampling)"},
             {"actions/c.cpp", "#include \"core/a.h\"\n#include \"sampling/b.h\"\n"},
             {"platform/linux/CMakeLists.txt",
              "tallowcrest_layer(platform_linux SOURCES d.cpp DEPENDS sampling)"},
             {"platform/linux/d.cpp", "#include \"sampling/b.h\"\n"},
             {"app/main.cpp", "#include \"actions/c.h\"\n"}}),
        IsEmpty());
}

TEST(LinkRules, FindsWrongLinkEdges) {
    const auto expectOne = [](const Files& files, const auto& expected,
                              std::source_location row = std::source_location::current()) {
        const testing::ScopedTrace trace(row.file_name(), static_cast<int>(row.line()), "row");
        EXPECT_THAT(wrongLinkEdges(files), ElementsAre(expected));
    };
    expectOne({{"core/CMakeLists.txt", "\ntallowcrest_layer(core SOURCES a.cpp DEPENDS monitor)"},
               {"core/a.cpp", ""}},
              violation("core/CMakeLists.txt", 2, "core may not be linked to monitor"));
    // An edge that is not declared by the function.
    expectOne({{"core/CMakeLists.txt",
                std::string(coreBuild) +
                    "target_link_libraries(tallowcrest_core PRIVATE tallowcrest_options "
                    "tallowcrest_platform_linux)"},
               {"core/a.cpp", ""}},
              violation("core/CMakeLists.txt", 2, "linked to platform/linux"));
    // An include without an edge.
    expectOne({{"core/CMakeLists.txt", coreBuild},
               {"core/a.cpp", ""},
               {"sampling/CMakeLists.txt", "tallowcrest_layer(sampling SOURCES b.cpp)"},
               {"sampling/b.cpp", "\n#include \"core/a.h\"\n"}},
              violation("sampling/b.cpp", 2, "sampling includes core without being linked"));
    // Qt in a layer without it.
    expectOne({{"core/CMakeLists.txt", "tallowcrest_layer(core SOURCES a.cpp LIBRARIES Qt6::Core)"},
               {"core/a.cpp", ""},
               {"presentation/CMakeLists.txt",
                "tallowcrest_layer(presentation SOURCES b.cpp LIBRARIES Qt6::Widgets)"},
               {"presentation/b.cpp", ""}},
              violation("core/CMakeLists.txt", 1, "core may not be linked to Qt6::Core"));
    // An alias belongs to the folder that declares it.
    expectOne(
        {{"platform/CMakeLists.txt",
          "add_library(tallowcrest_platform_host ALIAS tallowcrest_platform_macos)\n"
          "add_library(tallowcrest_platform_host ALIAS tallowcrest_platform_linux)\n"},
         {"app/CMakeLists.txt", "tallowcrest_layer(app SOURCES a.cpp DEPENDS platform_host)"},
         {"platform/desktop/CMakeLists.txt",
          "tallowcrest_layer(platform_desktop SOURCES a.cpp DEPENDS platform_host)"},
         {"core/CMakeLists.txt", "tallowcrest_layer(core SOURCES a.cpp DEPENDS platform_host)"}},
        violation("core/CMakeLists.txt", 1, "core may not be linked to platform"));
    // An alias has the edges of each library that it may refer to.
    expectOne(
        {{"platform/CMakeLists.txt",
          "add_library(tallowcrest_platform_host ALIAS tallowcrest_platform_desktop)\n"},
         {"app/CMakeLists.txt", "tallowcrest_layer(app SOURCES a.cpp DEPENDS platform_host)"}},
        violation("app", 0, "reaches platform/desktop"));
    // Sources that no layer declares.
    expectOne({{"core/CMakeLists.txt", "# nothing yet\n"}, {"core/a.cpp", ""}},
              violation("core", 0, "declares no tallowcrest_layer()"));
}

TEST(LinkRules, FindsQtInTheProgramWithoutAWindow) {
    const std::string build =
        "add_executable(tallowcrest main.cpp)\n"
        "target_link_libraries(tallowcrest PRIVATE tallowcrest_app)\n"
        "target_link_libraries(tallowcrest-desktop PRIVATE "
        "tallowcrest_presentation Qt6::Widgets)\n";
    EXPECT_THAT(wrongLinkEdges({{"app/CMakeLists.txt",
                                 build + "tallowcrest_layer(app SOURCES a.cpp DEPENDS monitor)"}}),
                IsEmpty());
    EXPECT_THAT(
        wrongLinkEdges(
            {{"app/CMakeLists.txt",
              build + "target_link_libraries(tallowcrest PRIVATE tallowcrest_presentation)"}}),
        ElementsAre(violation("app", 0, "reaches presentation")));
    EXPECT_THAT(
        wrongLinkEdges({{"app/CMakeLists.txt",
                         build + "tallowcrest_layer(app SOURCES a.cpp LIBRARIES Qt6::Core)"}}),
        ElementsAre(violation("app/CMakeLists.txt", 4, "app may not be linked to Qt6::Core")));
}

}  // namespace
}  // namespace tallowcrest::architecture
