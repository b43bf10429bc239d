#include <QApplication>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QTest>
#include <QToolTip>
#include <gmock/gmock.h>

#include "presentation/widgets/theme.h"
#include "tests/presentation/shell/announcements.h"
#include "tests/presentation/widgets/graph_formats.h"
#include "tests/presentation/widgets/paint_count.h"
#include "tests/support/numbers.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::HasSubstr;
using testing::Not;

/// Five points: 10, 20, 30, 40 and 50 percent, with a gap before the fourth.
class GraphCursorTest : public testing::Test {
protected:
    GraphCursorTest() {
        graph_.resize(440, 240);
        showPoints(0);
        graph_.show();
        QCoreApplication::processEvents();
    }

    /// `first` is the time of the first point.
    void showPoints(double first) {
        graph_.setSeries({{u"CPU"_s, &CrestTheme::accent, {10, 20, 30, 40, 50}, true},
                          {u"Memory"_s, &CrestTheme::secondSeries, {60, 60, 60, 60, 61}, false}},
                         {{first, first + 4, first + 8, first + 60, first + 64}, {3}});
    }

    void press(Qt::Key key) { QTest::keyClick(&graph_, key); }

    QPoint over(double fraction) const {
        const QRectF canvas = graph_.canvasRect();
        return {qRound(canvas.left() + canvas.width() * fraction), qRound(canvas.center().y())};
    }

    void movePointer(QPoint place) {
        QMouseEvent event(QEvent::MouseMove, place, graph_.mapToGlobal(place), Qt::NoButton,
                          Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&graph_, &event);
    }

    std::string said() const { return graph_.accessibleDescription().toStdString(); }

    std::string tipAt(double fraction) {
        QHelpEvent event(QEvent::ToolTip, over(fraction), graph_.mapToGlobal(over(fraction)));
        QApplication::sendEvent(&graph_, &event);
        return event.isAccepted() ? QToolTip::text().toStdString() : "";
    }

    StableLineGraph graph_{plainGraphFormats()};
};

TEST_F(GraphCursorTest, OmitsASeriesThatWasNotMeasuredAtItsPoint) {
    graph_.setSeries({{u"Air"_s, &CrestTheme::accent, {10, 20}, false},
                      {u"Mini"_s, &CrestTheme::secondSeries, {60, 0}, false, {1}}},
                     {{0, 900}, {}});
    EXPECT_EQ(said(), "Air 20 percent, Mini not measured last, before 60 percent");
    press(Qt::Key_End);
    EXPECT_THAT(said(), HasSubstr("Air 20 percent"));
    EXPECT_THAT(said(), Not(HasSubstr("Mini")));
    press(Qt::Key_Left);
    EXPECT_THAT(said(), HasSubstr("Mini 60 percent"));
}

TEST_F(GraphCursorTest, OnlyKeysHaveTheCursorSaidAloud) {
    const Announcements heard;
    press(Qt::Key_End);
    const std::string last = said();
    press(Qt::Key_Left);
    EXPECT_THAT(heard.said(), testing::ElementsAre(last, said()));
    EXPECT_NE(last, said());
    showPoints(4);
    movePointer(over(0.0));
    press(Qt::Key_Escape);
    EXPECT_EQ(heard.said().size(), 2U);
}

TEST_F(GraphCursorTest, WithoutACursorTheGapsAreSaid) {
    EXPECT_EQ(said(), "CPU 50 percent, Memory 61 percent. Not measured from 8 to 60");
    EXPECT_EQ(graph_.accessibleValue(), u"CPU 50 percent, Memory 61 percent"_s);
    graph_.setSeries({});
    EXPECT_EQ(said(), "Nothing measured yet");
}

TEST_F(GraphCursorTest, OnlyTheNewestGapsAreSaid) {
    graph_.setSeries({{u"CPU"_s, &CrestTheme::accent, {1, 2, 3, 4, 5}, true}},
                     {{0, 100, 200, 300, 400}, {1, 2, 3, 4}});
    EXPECT_THAT(said(), HasSubstr(". Not measured from 100 to 200. Not measured"));
    EXPECT_THAT(said(), Not(HasSubstr("from 0 to 100")));
}

TEST_F(GraphCursorTest, TheKeysMoveItFromPointToPoint) {
    press(Qt::Key_Left);
    EXPECT_EQ(said(), "64: CPU 50 percent, Memory 61 percent");
    press(Qt::Key_Right);
    EXPECT_EQ(said(), "64: CPU 50 percent, Memory 61 percent") << "the newest";
    press(Qt::Key_Home);
    EXPECT_EQ(said(), "0: CPU 10 percent, Memory 60 percent");
    press(Qt::Key_Left);
    EXPECT_EQ(said(), "0: CPU 10 percent, Memory 60 percent");
    press(Qt::Key_Right);
    EXPECT_EQ(said(), "4: CPU 20 percent, Memory 60 percent");
    press(Qt::Key_End);
    EXPECT_EQ(said(), "64: CPU 50 percent, Memory 61 percent");
    press(Qt::Key_Escape);
    EXPECT_THAT(said(), HasSubstr("CPU 50 percent, Memory 61 percent. Not measured"));
}

TEST_F(GraphCursorTest, ItsWordsNameTheMarksBesideThePoint) {
    graph_.setEventFractions({nan, 0.3}, {{u"Unplaced"_s, u""_s, 0}, {u"Warning"_s, u"Full"_s, 5}});
    press(Qt::Key_Home);
    press(Qt::Key_Right);
    EXPECT_EQ(said(), "4: CPU 20 percent, Memory 60 percent. Warning, 5: Full");
    for (int point = 2; point <= 3; ++point) {
        press(Qt::Key_Right);
        EXPECT_THAT(said(), HasSubstr("percent. Not measured from 8 to 60"));
    }
    press(Qt::Key_Right);
    EXPECT_THAT(said(), Not(HasSubstr("Not measured")));
}

TEST_F(GraphCursorTest, KeysThatItDoesNotUseAreLeftToOthers) {
    const auto isUsed = [this](Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QKeyEvent event(QEvent::ShortcutOverride, key, modifiers);
        event.ignore();
        QApplication::sendEvent(&graph_, &event);
        return event.isAccepted();
    };
    EXPECT_TRUE(isUsed(Qt::Key_Home));
    EXPECT_TRUE(isUsed(Qt::Key_Left));
    EXPECT_FALSE(isUsed(Qt::Key_Left, Qt::AltModifier));
    EXPECT_FALSE(isUsed(Qt::Key_PageDown));
    EXPECT_FALSE(isUsed(Qt::Key_Escape)) << "without a cursor";
    press(Qt::Key_End);
    EXPECT_TRUE(isUsed(Qt::Key_Escape));
    graph_.setSeries({});
    EXPECT_FALSE(isUsed(Qt::Key_Home)) << "without points";
}

TEST_F(GraphCursorTest, ANewSampleLeavesItAtItsPoint) {
    press(Qt::Key_End);
    const auto showWith = [this](std::vector<double> seconds) {
        std::vector<double> values(seconds.begin(), seconds.end());
        graph_.setSeries({{u"CPU"_s, &CrestTheme::accent, std::move(values), true}},
                         {std::move(seconds), {}});
    };
    showWith({8, 60, 64, 68});
    EXPECT_EQ(said(), "64: CPU 64 percent");
    showWith({68, 72});
    EXPECT_EQ(said(), "68: CPU 68 percent") << "its point has left the graph";
    graph_.setSeries({{u"CPU"_s, &CrestTheme::accent, {7}, true}});
    EXPECT_EQ(said(), "CPU 7 percent");
    graph_.setSeries({});
    EXPECT_EQ(said(), "Nothing measured yet");
}

TEST_F(GraphCursorTest, ThePointerMovesItAndTakesItAway) {
    movePointer(over(0.3));
    EXPECT_EQ(said(), "4: CPU 20 percent, Memory 60 percent");
    movePointer(over(0.9));
    EXPECT_EQ(said(), "64: CPU 50 percent, Memory 61 percent");
    showPoints(4);
    EXPECT_EQ(said(), "68: CPU 50 percent, Memory 61 percent") << "it stays below the pointer";
    movePointer(QPoint(over(0.9).x(), 2));
    EXPECT_THAT(said(), HasSubstr("Not measured")) << "above the canvas";
    movePointer(over(0.3));
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&graph_, &leave);
    EXPECT_THAT(said(), HasSubstr("Not measured"));
}

TEST_F(GraphCursorTest, ThePointerRepaintsOnlyWhenItReachesAnotherPoint) {
    movePointer(over(0.49));
    PaintCount paints(graph_);
    movePointer(over(0.51));
    EXPECT_EQ(paints.take(), 0);
    movePointer(over(0.8));
    EXPECT_EQ(paints.take(), 1);
}

TEST_F(GraphCursorTest, ItsLineAndItsValuesArePainted) {
    const QImage without = graph_.grab().toImage();
    press(Qt::Key_Home);
    press(Qt::Key_Right);
    const QImage with = graph_.grab().toImage();
    const QRgb line = CrestTheme::current().secondaryText.rgb();
    const QPoint low = over(0.25) + QPoint(0, qRound(graph_.canvasRect().height() * 0.45));
    EXPECT_NE(without.pixel(low), line);
    EXPECT_EQ(with.pixel(low), line);
    press(Qt::Key_Escape);
    EXPECT_EQ(graph_.grab().toImage(), without);
}

TEST_F(GraphCursorTest, TheFocusHasARingAndTakesTheCursorWithIt) {
    const auto isRinged = [this] {
        const QPoint top(over(0.5).x(), qRound(graph_.canvasRect().top()) - 2);
        return graph_.grab().toImage().pixelColor(top) == CrestTheme::current().accentText;
    };
    graph_.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&graph_));
    graph_.clearFocus();
    graph_.setFocus(Qt::TabFocusReason);
    EXPECT_TRUE(isRinged());
    press(Qt::Key_End);
    graph_.clearFocus();
    EXPECT_FALSE(isRinged());
    EXPECT_THAT(said(), HasSubstr("Not measured")) << "the cursor is gone";
    graph_.setFocus(Qt::MouseFocusReason);
    EXPECT_FALSE(isRinged());
}

TEST_F(GraphCursorTest, TheMarksHaveToolTips) {
    graph_.setEventFractions(
        {0.1, 0.8}, {{u"Warning"_s, u"Load is <high>"_s, 2}, {u"Action"_s, u"Selected it"_s, 61}});
    EXPECT_THAT(tipAt(0.1), HasSubstr("Warning, 2: Load is &lt;high&gt;"));
    EXPECT_THAT(tipAt(0.625), HasSubstr("Not measured from 8 to 60"));
    EXPECT_THAT(tipAt(0.8), HasSubstr("Action, 61: Selected it"));
    EXPECT_EQ(tipAt(0.4), "");
}

}  // namespace
}  // namespace tallowcrest
