#include <set>

#include <QMenu>
#include <QMenuBar>

#include "presentation/dashboard_text.h"
#include "tests/presentation/window_fixture.h"

namespace tallowcrest {
namespace {

class MenusTest : public WindowFixture {};

TEST_F(MenusTest, TheMenusInTheirOrderEachEntryWithItsIdentifier) {
    QStringList entries;
    std::set<QString> identifiers;
    EXPECT_EQ(window().menuBar()->objectName(), QStringLiteral("menu"));
    for (const QAction* menu : window().menuBar()->actions()) {
        EXPECT_FALSE(menu->menu()->objectName().isEmpty()) << menu->text().toStdString();
        entries.append(menu->text().remove(u'&') + u':');
        for (const QAction* action : menu->menu()->actions()) {
            if (!action->isSeparator()) {
                entries.append(action->objectName() + u'|' + action->text() + u'|' +
                               action->shortcut().toString(QKeySequence::PortableText));
                EXPECT_TRUE(identifiers.insert(action->objectName()).second);
            }
        }
    }
    EXPECT_EQ(entries.join(u'\n').toStdString(),
              "Tallowcrest:\n"
              "menu.about|About Tallowcrest|\n"
              "menu.refresh|Refresh|Ctrl+R\n"
              "menu.quit|Quit Tallowcrest|Ctrl+Q\n"
              "Go:\n"
              "menu.go.overview|Overview|Ctrl+1\n"
              "menu.go.load|Processes|Ctrl+2\n"
              "menu.go.optimize|Optimize|Ctrl+3\n"
              "menu.go.optimizationSuggestions|Suggestions|Ctrl+4\n"
              "menu.go.aiAdvisor|AI Advisor|Ctrl+5\n"
              "menu.go.chat|Chat|Ctrl+6\n"
              "menu.go.remoteMacs|Remote Macs|Ctrl+7\n"
              "menu.go.history|History|Ctrl+8\n"
              "menu.go.settings|Settings|Ctrl+9\n"
              "menu.go.filter-processes|Filter Processes|Ctrl+F");
}

TEST_F(MenusTest, GoMenuChoosesARoute) {
    showWithSample();
    QMenu* go = nullptr;
    for (const QAction* entry : window().menuBar()->actions()) {
        if (entry->text().remove(u'&') == QStringLiteral("Go")) {
            go = entry->menu();
        }
    }
    ASSERT_NE(go, nullptr);
    const QList<QAction*> entries = go->actions();
    ASSERT_GT(entries.size(), static_cast<qsizetype>(allAppRoutes.size()));
    for (std::size_t i = allAppRoutes.size(); i-- > 0;) {
        QAction* entry = entries.at(static_cast<qsizetype>(i));
        EXPECT_EQ(entry->text(), dashboard_text::text(title(allAppRoutes.at(i))));
        entry->trigger();
        settle();
        EXPECT_EQ(route(), allAppRoutes.at(i));
    }
}

}  // namespace
}  // namespace tallowcrest
