#include "tests/architecture/layer_rules.h"

#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/architecture/violation_matcher.h"

namespace tallowcrest::architecture {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(LayerRules, AFileBelongsToItsFolder) {
    EXPECT_EQ(layerOf("core/date.h"), "core");
    EXPECT_EQ(layerOf("presentation/screens/overview/page.cpp"), "presentation");
    EXPECT_EQ(layerOf("presentation/widgets/card.cpp"), "presentation/widgets");
    EXPECT_EQ(layerOf("presentation/words/timeline.cpp"), "presentation/words");
    EXPECT_EQ(layerOf("presentation/screens/load/load_lines.h"), "presentation/words");
    EXPECT_EQ(layerOf("platform/linux/places.cpp"), "platform/linux");
    EXPECT_EQ(layerOf("platform/places.h"), "platform");
    EXPECT_EQ(layerOf("date.h"), "");
}

TEST(LayerRules, JudgesEachEdge) {
    using E = std::pair<const char*, const char*>;
    for (const auto& [from, to] : {E{"core", "core"},
                                   E{"sampling", "core"},
                                   E{"actions", "core"},
                                   E{"monitor", "integration"},
                                   E{"disk", "advisor"},
                                   E{"presentation", "monitor"},
                                   E{"app", "platform/linux"},
                                   E{"app", "presentation"},
                                   E{"platform/linux", "sampling"},
                                   E{"platform/linux", "integration"},
                                   E{"platform/linux", "platform/tools"},
                                   E{"platform/linux", "platform/base"},
                                   E{"platform/macos", "platform/tools"},
                                   E{"platform/desktop", "platform/base"},
                                   E{"platform/desktop", "platform/instance"},
                                   E{"platform/desktop", "platform/secrets"},
                                   E{"platform/http", "advisor"},
                                   E{"platform/secrets", "platform/base"},
                                   E{"platform/tools", "platform/base"},
                                   E{"presentation", "presentation/widgets"},
                                   E{"app", "presentation/widgets"},
                                   E{"presentation/widgets", "presentation/widgets"},
                                   E{"platform/desktop", "platform/x11"},
                                   E{"platform/x11", "platform/base"},
                                   E{"platform/x11", "actions"},
                                   E{"platform/locale", "core"},
                                   E{"platform/settings", "platform/base"},
                                   E{"platform/linux", "platform"},
                                   E{"presentation", "presentation/words"},
                                   E{"app", "presentation/words"},
                                   E{"presentation/words", "presentation/words"},
                                   E{"presentation/words", "monitor"},
                                   E{"presentation/words", "core"}}) {
        EXPECT_TRUE(mayInclude(from, to)) << from << " -> " << to;
    }
    for (const auto& [from, to] : {E{"core", "sampling"},
                                   E{"actions", "monitor"},
                                   E{"integration", "monitor"},
                                   E{"advisor", "disk"},
                                   E{"remote", "reports"},
                                   E{"presentation", "app"},
                                   E{"presentation", "platform/desktop"},
                                   E{"sampling", "platform/linux"},
                                   E{"core", "platform"},
                                   E{"platform/linux", "monitor"},
                                   E{"platform/desktop", "presentation"},
                                   E{"platform/linux", "app"},
                                   E{"platform/base", "platform/tools"},
                                   E{"platform/linux", "platform/instance"},
                                   E{"presentation/widgets", "presentation"},
                                   E{"presentation/widgets", "monitor"},
                                   E{"presentation/widgets", "core"},
                                   E{"monitor", "presentation/widgets"},
                                   E{"platform/x11", "platform/desktop"},
                                   E{"platform/linux", "platform/x11"},
                                   E{"presentation", "platform/x11"},
                                   E{"platform/base", "platform/linux"},
                                   E{"platform/tools", "platform/desktop"},
                                   E{"platform/settings", "platform/locale"},
                                   E{"platform/linux", "platform/settings"},
                                   E{"platform/linux", "platform/locale"},
                                   E{"platform/http", "platform/secrets"},
                                   E{"advisor", "platform/http"},
                                   E{"monitor", "platform/locale"},
                                   E{"platform/linux", "platform/macos"},
                                   E{"platform/desktop", "platform/linux"},
                                   E{"platform", "platform/linux"},
                                   E{"platform", "platform/base"},
                                   E{"helpers", "core"},
                                   E{"core", "helpers"},
                                   E{"app", "helpers"},
                                   E{"helpers", "helpers"},
                                   E{"", "core"},
                                   E{"presentation/words", "presentation"},
                                   E{"presentation/words", "presentation/widgets"},
                                   E{"presentation/words", "app"},
                                   E{"presentation/words", "platform"},
                                   E{"presentation/widgets", "presentation/words"},
                                   E{"monitor", "presentation/words"}}) {
        EXPECT_FALSE(mayInclude(from, to)) << from << " -> " << to;
    }
}

TEST(LayerRules, FindsForbiddenIncludes) {
    EXPECT_THAT(
        forbiddenIncludes(
            {{"core/date.h", "#pragma once\n#include \"sampling/protection.h\"\n"},
             {"sampling/protection.h", "#include \"core/date.h\"\n#include <vector>\n"},
             {"monitor/cycle.cpp", "#include \"platform/linux/proc.h\"\n"},
             {"core/date.cpp", "#include \"date.h\"\n#include \"../core/clock.h\"\n"},
             // Generated Qt code is allowed only in layers with Qt.
             {"presentation/model.cpp", "#include \"model.moc\"\n"},
             {"core/model.cpp", "#include \"model.moc\"\n"}}),
        ElementsAre(violation("core/date.h", 2, "core may not include sampling"),
                    violation("monitor/cycle.cpp", 1, "monitor may not include platform/linux"),
                    violation("core/date.cpp", 1, "from src/"),
                    violation("core/date.cpp", 2, "from src/"),
                    violation("core/model.cpp", 1, "from src/")));
}

TEST(LayerRules, FindsWidgetsAndPagesInTheWords) {
    const std::string text =
        "#include \"presentation/widgets/button.h\"\n"
        "#include \"presentation/state/window_state.h\"\n"
        "#include \"presentation/screens/shared/screen.h\"\n"
        "#include \"presentation/words/timeline.h\"\n";
    for (const char* path :
         {"presentation/words/commands.h", "presentation/screens/load/load_lines.cpp"}) {
        EXPECT_THAT(forbiddenIncludes({{path, text}}),
                    ElementsAre(violation(path, 1, "presentation/words may not include"),
                                violation(path, 2, "presentation/words may not include"),
                                violation(path, 3, "presentation/words may not include")));
    }
}

TEST(LayerRules, FindsTheMonitorOutsidePages) {
    const std::string text = "#include \"monitor/system_monitor.h\"\n";
    EXPECT_THAT(monitorOutsidePages({{"presentation/screens/load/load_page.cpp", text},
                                     {"presentation/screens/load/tool_row.cpp", text},
                                     {"presentation/shell/sidebar.cpp", text}}),
                ElementsAre(violation("presentation/screens/load/tool_row.cpp", 1, "only a page")));
}

TEST(LayerRules, FindsIncludesOfTheShellAndOfScreensBelowThem) {
    const std::string text =
        "#include \"presentation/widgets/card.h\"\n"
        "#include \"presentation/state/window_state.h\"\n"
        "#include \"presentation/screens/shared/screen.h\"\n"
        "#include \"presentation/shell/sidebar.h\"\n";
    EXPECT_THAT(upwardWindowIncludes({{"presentation/state/window_state.h", text},
                                      {"presentation/screens/load/load_page.cpp", text},
                                      {"presentation/shell/sidebar.cpp", text},
                                      {"presentation/widgets/card.cpp", text},
                                      {"app/desktop_main.cpp", text}}),
                ElementsAre(violation("presentation/state/window_state.h", 3, "screen.h"),
                            violation("presentation/state/window_state.h", 4, "sidebar.h"),
                            violation("presentation/screens/load/load_page.cpp", 4, "sidebar.h")));
}

TEST(LayerRules, FindsIncludesOfOtherScreens) {
    const std::string text =
        "#include \"presentation/screens/load/load_lines.h\"\n"
        "#include \"presentation/screens/shared/screen.h\"\n";
    EXPECT_THAT(
        includesBetweenScreens({{"presentation/screens/load/load_page.cpp", text},
                                {"presentation/screens/history/history_page.cpp", text},
                                {"presentation/screens/shared/review_process.cpp", text},
                                {"presentation/shell/dashboard_window.cpp", text}}),
        ElementsAre(
            violation("presentation/screens/history/history_page.cpp", 1, "load_lines.h"),
            violation("presentation/screens/shared/review_process.cpp", 1, "load_lines.h")));
}

TEST(LayerRules, FindsQtBelowTheWindowAndAcceptsItThere) {
    for (const std::string header :
         {"QString", "QtCore/QString", "QtGlobal", "qglobal.h", "private/qwidget_p.h"}) {
        const std::string text = "#include <" + header + ">\n";
        EXPECT_THAT(strayQtIncludes({{"monitor/a.cpp", text},
                                     {"platform/linux/b.cpp", text},
                                     {"presentation/c.cpp", text},
                                     {"platform/desktop/d.cpp", text},
                                     {"app/main.cpp", text}}),
                    ElementsAre(violation("monitor/a.cpp", 1, header),
                                violation("platform/linux/b.cpp", 1, header)));
    }
    EXPECT_THAT(strayQtIncludes({{"core/a.cpp", "#include <queue>\n#include <quote>\n"}}),
                IsEmpty());
}

TEST(LayerRules, FindsPlatformConditionsOutsideThePlatformFolder) {
    for (const std::string condition :
         {"#ifdef __linux__", "#ifndef __APPLE__", "#if defined(_WIN32)",
          "#  if defined ( Q_OS_LINUX )", "#elif TARGET_OS_MAC",
          "#if defined(A) && \\\n !defined(__unix__)"}) {
        const std::string text = "\n" + condition + "\n#endif\n";
        EXPECT_THAT(
            strayPlatformConditions({{"sampling/a.cpp", text}, {"platform/base/b.cpp", text}}),
            ElementsAre(violation("sampling/a.cpp", 2, "platform/")));
    }
    EXPECT_THAT(
        strayPlatformConditions({{"core/a.h", "#ifndef NDEBUG\n// #ifdef __linux__\n#endif\n"}}),
        IsEmpty());
}

TEST(LayerRules, FindsTheFileThatIsOneLineTooLong) {
    EXPECT_THAT(overlongFiles({{"core/short.cpp", std::string(maximumLines, '\n')},
                               {"core/long.cpp", std::string(maximumLines + 1, '\n')}}),
                ElementsAre(violation("core/long.cpp", 0, "401 lines")));
}

}  // namespace
}  // namespace tallowcrest::architecture
