#include "presentation/shell/menu_bar_row.h"

#include <QScrollArea>

#include "presentation/shell/menu_bar_panel.h"
#include "tests/presentation/window_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

QImage painted(QWidget& widget) {
    return widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

/// The first column from `from` on that is not all background; -1 for none.
int firstInked(const QImage& image, int from) {
    const QColor ground = image.pixelColor(1, image.height() / 2);
    for (int x = from; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y) {
            if (image.pixelColor(x, y) != ground) {
                return x;
            }
        }
    }
    return -1;
}

class MenuBarRowTest : public WindowFixture {
protected:
    MenuBarPanel& panelOf(int count) {
        std::vector<std::vector<MenuBarEntry>> groups(1);
        for (int i = 0; i < count; ++i) {
            const QString title = u"H command %1"_s.arg(QString(i, u'x'));
            groups.front().push_back({[title] { return title; },
                                      i % 2 == 0 ? u"power"_s : QString(), u"command.%1"_s.arg(i),
                                      [] {}});
        }
        panel_ = std::make_unique<MenuBarPanel>(machine.monitor(), groups);
        panel_->toggleAt({10, 10});
        settle();
        return *panel_;
    }

    MenuBarRow& row(int number) {
        return *panel_->findChild<MenuBarRow*>(u"command.%1"_s.arg(number));
    }

private:
    std::unique_ptr<MenuBarPanel> panel_;
};

TEST_F(MenuBarRowTest, IconsAndTitlesAreAligned) {
    panelOf(4);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(row(i).x(), row(0).x());
        EXPECT_EQ(row(i).width(), row(0).width());
        const QImage image = painted(row(i));
        constexpr int afterTheIcon = spacing::unit + spacing::iconSmall + 1;
        EXPECT_NEAR(firstInked(image, afterTheIcon), 4 * spacing::unit + 1, 2) << i;
        const int icon = firstInked(image, 0);
        if (i % 2 == 0) {
            EXPECT_GE(icon, spacing::unit);
            EXPECT_LT(icon, 2 * spacing::unit);
        } else {
            EXPECT_GE(icon, afterTheIcon) << "the column of a row without an icon is blank";
        }
    }
}

TEST_F(MenuBarRowTest, ShowsHoverAndFocus) {
    panelOf(2);
    const QImage plain = painted(row(0));
    row(0).setAttribute(Qt::WA_UnderMouse);
    const QImage hovered = painted(row(0));
    EXPECT_NE(hovered, plain);
    EXPECT_GE(contrastRatio(CrestTheme::current().text,
                            hovered.pixelColor(hovered.width() / 2, hovered.height() - 2)),
              4.5);
    row(0).setAttribute(Qt::WA_UnderMouse, false);
    row(0).setFocus(Qt::TabFocusReason);
    settle();
    const QImage focused = painted(row(0));
    EXPECT_EQ(focused.pixelColor(focused.width() / 2, 0), CrestTheme::current().accentText);
}

TEST_F(MenuBarRowTest, ArrowKeysGoFromRowToRow) {
    MenuBarPanel& panel = panelOf(3);
    EXPECT_FALSE(row(0).hasFocus());
    QTest::keyClick(&panel, Qt::Key_Down);
    EXPECT_TRUE(row(0).hasFocus());
    QTest::keyClick(&row(0), Qt::Key_Down);
    EXPECT_TRUE(row(1).hasFocus());
    QTest::keyClick(&row(1), Qt::Key_Up);
    EXPECT_TRUE(row(0).hasFocus());
    QTest::keyClick(&row(0), Qt::Key_Up);
    EXPECT_TRUE(row(2).hasFocus());
    QTest::keyClick(&row(2), Qt::Key_Down);
    EXPECT_TRUE(row(0).hasFocus());
}

TEST_F(MenuBarRowTest, ArrowKeysPassTheGraphWhichTheTabKeyReaches) {
    machine.addProcess(700, "/usr/bin/editor", 1.0, 10.0);
    MenuBarPanel& panel = panelOf(2);
    machine.finishSamples();
    settle();
    auto* graph = panel.findChild<QWidget*>(u"menubar.graph"_s);
    ASSERT_TRUE(graph->isVisible());
    QTest::keyClick(&panel, Qt::Key_Down);
    EXPECT_TRUE(row(0).hasFocus());
    QTest::keyClick(&row(0), Qt::Key_Up);
    EXPECT_TRUE(row(1).hasFocus());
    QTest::keyClick(&row(1), Qt::Key_Tab);
    EXPECT_TRUE(graph->hasFocus());
    QTest::keyClick(graph, Qt::Key_Down);
    EXPECT_TRUE(row(0).hasFocus());
}

TEST_F(MenuBarRowTest, AllRowsAreVisibleIfThereIsRoom) {
    MenuBarPanel& panel = panelOf(17);
    EXPECT_TRUE(panel.rect().contains(QRect(row(16).mapTo(&panel, QPoint()), row(16).size())));
    EXPECT_EQ(panel.findChild<QScrollArea*>()->viewport()->height(), 17 * MenuBarRow::rowHeight);
}

TEST_F(MenuBarRowTest, RowsScrollOnALowScreen) {
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    const int count = screen.height() / MenuBarRow::rowHeight + 5;
    MenuBarPanel& panel = panelOf(count);
    EXPECT_TRUE(screen.contains(panel.geometry()));
    const auto isShown = [&panel](MenuBarRow& each) {
        const auto* area = panel.findChild<QScrollArea*>()->viewport();
        return area->rect().contains(QRect(each.mapTo(area, QPoint()), each.size()));
    };
    EXPECT_TRUE(isShown(row(0)));
    EXPECT_FALSE(isShown(row(count - 1)));
    row(0).setFocus(Qt::TabFocusReason);
    QTest::keyClick(&row(0), Qt::Key_Backtab);
    EXPECT_TRUE(row(count - 1).hasFocus());
    EXPECT_TRUE(isShown(row(count - 1)));
    row(0).setFocus(Qt::TabFocusReason);
    QTest::keyClick(&row(0), Qt::Key_Down);
    EXPECT_TRUE(isShown(row(1)));
    QTest::keyClick(&row(1), Qt::Key_Up);
    QTest::keyClick(&row(0), Qt::Key_Up);
    EXPECT_TRUE(isShown(row(count - 1)));
    EXPECT_GE(row(0).width(), row(0).sizeHint().width()) << "the scroll bar covers no text";
}

TEST_F(MenuBarRowTest, TheFocusIsResetWhenThePanelReopens) {
    MenuBarPanel& panel = panelOf(3);
    QTest::mouseClick(&row(1), Qt::LeftButton);
    settle();
    ASSERT_FALSE(panel.isVisible());
    panel.toggleAt({10, 10});
    settle();
    EXPECT_FALSE(row(1).hasFocus());
}

}  // namespace
}  // namespace tallowcrest
