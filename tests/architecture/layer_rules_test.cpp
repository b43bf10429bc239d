#include "tests/architecture/layer_rules.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tallowcrest::architecture {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;

using Files = std::vector<SourceFile>;

auto violation(const std::string& path, std::size_t line, const std::string& words) {
    return AllOf(Field(&Violation::path, path), Field(&Violation::line, line),
                 Field(&Violation::what, HasSubstr(words)));
}

TEST(LayerRules, AFileBelongsToItsFolder) {
    EXPECT_EQ(layerOf("core/date.h"), "core");
    EXPECT_EQ(layerOf("presentation/screens/overview/page.cpp"), "presentation");
    EXPECT_EQ(layerOf("presentation/widgets/card.cpp"), "presentation/widgets");
    EXPECT_EQ(layerOf("platform/linux/places.cpp"), "platform/linux");
    EXPECT_EQ(layerOf("platform/places.h"), "platform");
    EXPECT_EQ(layerOf("date.h"), "");
}

struct Edge {
    std::string from;
    std::string to;
    bool allowed;
};

class LayerEdge : public testing::TestWithParam<Edge> {};

TEST_P(LayerEdge, IsJudged) {
    EXPECT_EQ(mayInclude(GetParam().from, GetParam().to), GetParam().allowed)
        << GetParam().from << " -> " << GetParam().to;
}

INSTANTIATE_TEST_SUITE_P(
    Table, LayerEdge,
    testing::Values(
        Edge{"core", "core", true}, Edge{"sampling", "core", true}, Edge{"core", "sampling", false},
        Edge{"actions", "core", true}, Edge{"actions", "monitor", false},
        Edge{"monitor", "integration", true}, Edge{"integration", "monitor", false},
        Edge{"disk", "advisor", true}, Edge{"advisor", "disk", false},
        Edge{"remote", "reports", false}, Edge{"presentation", "monitor", true},
        Edge{"presentation", "app", false}, Edge{"presentation", "platform/desktop", false},
        Edge{"sampling", "platform/linux", false}, Edge{"core", "platform", false},
        Edge{"app", "platform/linux", true}, Edge{"app", "presentation", true},
        Edge{"platform/linux", "sampling", true}, Edge{"platform/linux", "integration", true},
        Edge{"platform/linux", "monitor", false}, Edge{"platform/desktop", "presentation", false},
        Edge{"platform/linux", "app", false}, Edge{"platform/linux", "platform/tools", true},
        Edge{"platform/linux", "platform/base", true},
        Edge{"platform/macos", "platform/tools", true},
        Edge{"platform/desktop", "platform/base", true},
        Edge{"platform/desktop", "platform/instance", true},
        Edge{"platform/tools", "platform/base", true},
        Edge{"platform/base", "platform/tools", false},
        Edge{"platform/linux", "platform/instance", false},
        Edge{"presentation", "presentation/widgets", true},
        Edge{"app", "presentation/widgets", true},
        Edge{"presentation/widgets", "presentation/widgets", true},
        Edge{"presentation/widgets", "presentation", false},
        Edge{"presentation/widgets", "monitor", false}, Edge{"presentation/widgets", "core", false},
        Edge{"monitor", "presentation/widgets", false},
        Edge{"platform/desktop", "platform/x11", true}, Edge{"platform/x11", "platform/base", true},
        Edge{"platform/x11", "actions", true}, Edge{"platform/x11", "platform/desktop", false},
        Edge{"platform/linux", "platform/x11", false}, Edge{"presentation", "platform/x11", false},
        Edge{"platform/base", "platform/linux", false},
        Edge{"platform/tools", "platform/desktop", false}, Edge{"platform/icu", "core", true},
        Edge{"platform/settings", "platform/base", true},
        Edge{"platform/settings", "platform/icu", false},
        Edge{"platform/linux", "platform/settings", false},
        Edge{"platform/linux", "platform/icu", false}, Edge{"monitor", "platform/icu", false},
        Edge{"platform/linux", "platform/macos", false},
        Edge{"platform/desktop", "platform/linux", false}, Edge{"platform/linux", "platform", true},
        Edge{"platform", "platform/linux", false}, Edge{"platform", "platform/base", false},
        Edge{"helpers", "core", false}, Edge{"core", "helpers", false},
        Edge{"app", "helpers", false}, Edge{"helpers", "helpers", false}, Edge{"", "core", false}));

TEST(LayerRules, FindsAnIncludeUpwards) {
    const Files files{{"core/date.h", "#pragma once\n#include \"sampling/protection.h\"\n"},
                      {"sampling/protection.h", "#include \"core/date.h\"\n#include <vector>\n"}};
    EXPECT_THAT(forbiddenIncludes(files),
                ElementsAre(violation("core/date.h", 2, "core may not include sampling")));
}

TEST(LayerRules, FindsAnIncludeOfThePlatform) {
    const Files files{{"monitor/cycle.cpp", "#include \"platform/linux/proc.h\"\n"}};
    EXPECT_THAT(
        forbiddenIncludes(files),
        ElementsAre(violation("monitor/cycle.cpp", 1, "monitor may not include platform/linux")));
}

TEST(LayerRules, FindsAnIncludeThatIsNotWrittenFromTheRoot) {
    const Files files{{"core/date.cpp", "#include \"date.h\"\n#include \"../core/clock.h\"\n"}};
    EXPECT_THAT(forbiddenIncludes(files), ElementsAre(violation("core/date.cpp", 1, "from src/"),
                                                      violation("core/date.cpp", 2, "from src/")));
}

TEST(LayerRules, AcceptsGeneratedQtCodeOnlyWhereThereIsQt) {
    const Files files{{"presentation/model.cpp", "#include \"model.moc\"\n"},
                      {"core/model.cpp", "#include \"model.moc\"\n"}};
    EXPECT_THAT(forbiddenIncludes(files), ElementsAre(violation("core/model.cpp", 1, "from src/")));
}

TEST(LayerRules, FindsTheMonitorOutsidePages) {
    const std::string text = "#include \"monitor/system_monitor.h\"\n";
    EXPECT_THAT(monitorOutsidePages({{"presentation/screens/load/processes_page.cpp", text},
                                     {"presentation/screens/load/tool_row.cpp", text},
                                     {"presentation/shell/sidebar.cpp", text}}),
                ElementsAre(violation("presentation/screens/load/tool_row.cpp", 1, "only a page")));
}

class QtInclude : public testing::TestWithParam<std::string> {};

TEST_P(QtInclude, IsFoundBelowTheWindowAndAcceptedInIt) {
    const std::string text = "#include <" + GetParam() + ">\n";
    EXPECT_THAT(strayQtIncludes({{"monitor/a.cpp", text},
                                 {"platform/linux/b.cpp", text},
                                 {"presentation/c.cpp", text},
                                 {"platform/desktop/d.cpp", text},
                                 {"app/main.cpp", text}}),
                ElementsAre(violation("monitor/a.cpp", 1, GetParam()),
                            violation("platform/linux/b.cpp", 1, GetParam())));
}

INSTANTIATE_TEST_SUITE_P(Table, QtInclude,
                         testing::Values("QString", "QtCore/QString", "QtGlobal", "qglobal.h",
                                         "private/qwidget_p.h"));

TEST(LayerRules, TakesNoStandardHeaderForQt) {
    EXPECT_THAT(strayQtIncludes({{"core/a.cpp", "#include <queue>\n#include <quote>\n"}}),
                IsEmpty());
}

class PlatformCondition : public testing::TestWithParam<std::string> {};

TEST_P(PlatformCondition, IsFoundOutsideThePlatformFolder) {
    const std::string text = "\n" + GetParam() + "\n#endif\n";
    EXPECT_THAT(strayPlatformConditions({{"sampling/a.cpp", text}, {"platform/base/b.cpp", text}}),
                ElementsAre(violation("sampling/a.cpp", 2, "platform/")));
}

INSTANTIATE_TEST_SUITE_P(Table, PlatformCondition,
                         testing::Values("#ifdef __linux__", "#ifndef __APPLE__",
                                         "#if defined(_WIN32)", "#  if defined ( Q_OS_LINUX )",
                                         "#elif TARGET_OS_MAC",
                                         "#if defined(A) && \\\n !defined(__unix__)"));

TEST(LayerRules, AcceptsOtherConditions) {
    EXPECT_THAT(
        strayPlatformConditions({{"core/a.h", "#ifndef NDEBUG\n// #ifdef __linux__\n#endif\n"}}),
        IsEmpty());
}

TEST(LayerRules, FindsTheFileThatIsOneLineTooLong) {
    EXPECT_THAT(overlongFiles({{"core/short.cpp", std::string(maximumLines, '\n')},
                               {"core/long.cpp", std::string(maximumLines + 1, '\n')}}),
                ElementsAre(violation("core/long.cpp", 0, "441 lines")));
}

constexpr const char* coreBuild = "tallowcrest_layer(core SOURCES a.cpp LIBRARIES fmt::fmt)\n";

TEST(LayerRules, AcceptsEdgesThatMatchTheIncludes) {
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

TEST(LayerRules, FindsALinkEdgeUpwards) {
    EXPECT_THAT(
        wrongLinkEdges(
            {{"core/CMakeLists.txt", "\ntallowcrest_layer(core SOURCES a.cpp DEPENDS monitor)"},
             {"core/a.cpp", ""}}),
        ElementsAre(violation("core/CMakeLists.txt", 2, "core may not be linked to monitor")));
}

TEST(LayerRules, FindsALinkEdgeBesideTheFunction) {
    EXPECT_THAT(
        wrongLinkEdges({{"core/CMakeLists.txt",
                         std::string(coreBuild) +
                             "target_link_libraries(tallowcrest_core PRIVATE tallowcrest_options "
                             "tallowcrest_platform_linux)"},
                        {"core/a.cpp", ""}}),
        ElementsAre(violation("core/CMakeLists.txt", 2, "linked to platform/linux")));
}

TEST(LayerRules, FindsAnIncludeWithoutALinkEdge) {
    EXPECT_THAT(
        wrongLinkEdges({{"core/CMakeLists.txt", coreBuild},
                        {"core/a.cpp", ""},
                        {"sampling/CMakeLists.txt", "tallowcrest_layer(sampling SOURCES b.cpp)"},
                        {"sampling/b.cpp", "\n#include \"core/a.h\"\n"}}),
        ElementsAre(violation("sampling/b.cpp", 2, "sampling includes core without being linked")));
}

TEST(LayerRules, FindsQtLinkedWhereThereIsNoQt) {
    EXPECT_THAT(
        wrongLinkEdges(
            {{"core/CMakeLists.txt", "tallowcrest_layer(core SOURCES a.cpp LIBRARIES Qt6::Core)"},
             {"core/a.cpp", ""},
             {"presentation/CMakeLists.txt",
              "tallowcrest_layer(presentation SOURCES b.cpp LIBRARIES Qt6::Widgets)"},
             {"presentation/b.cpp", ""}}),
        ElementsAre(violation("core/CMakeLists.txt", 1, "core may not be linked to Qt6::Core")));
}

TEST(LayerRules, ASecondNameBelongsToTheFolderThatDeclaresIt) {
    const std::string aliases =
        "add_library(tallowcrest_platform_host ALIAS tallowcrest_platform_macos)\n"
        "add_library(tallowcrest_platform_host ALIAS tallowcrest_platform_linux)\n";
    EXPECT_THAT(
        wrongLinkEdges(
            {{"platform/CMakeLists.txt", aliases},
             {"app/CMakeLists.txt", "tallowcrest_layer(app SOURCES a.cpp DEPENDS platform_host)"},
             {"platform/desktop/CMakeLists.txt",
              "tallowcrest_layer(platform_desktop SOURCES a.cpp DEPENDS platform_host)"},
             {"core/CMakeLists.txt",
              "tallowcrest_layer(core SOURCES a.cpp DEPENDS platform_host)"}}),
        ElementsAre(violation("core/CMakeLists.txt", 1, "core may not be linked to platform")));
}

TEST(LayerRules, ASecondNameCarriesWhatItMayStandFor) {
    EXPECT_THAT(
        wrongLinkEdges(
            {{"platform/CMakeLists.txt",
              "add_library(tallowcrest_platform_host ALIAS tallowcrest_platform_desktop)\n"},
             {"app/CMakeLists.txt", "tallowcrest_layer(app SOURCES a.cpp DEPENDS platform_host)"}}),
        ElementsAre(violation("app", 0, "reaches platform/desktop")));
}

TEST(LayerRules, FindsQtInTheProgramWithoutAWindow) {
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

TEST(LayerRules, FindsSourcesThatNoLayerDeclares) {
    EXPECT_THAT(wrongLinkEdges({{"core/CMakeLists.txt", "# nothing yet\n"}, {"core/a.cpp", ""}}),
                ElementsAre(violation("core", 0, "declares no tallowcrest_layer()")));
}

}  // namespace
}  // namespace tallowcrest::architecture
