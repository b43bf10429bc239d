#include "presentation/widgets/step_slider.h"

#include <cmath>
#include <vector>

#include <QAccessible>
#include <QApplication>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>
#include <gmock/gmock.h>

#include "presentation/widgets/limit_row.h"
#include "presentation/widgets/page_scroll_area.h"
#include "presentation/widgets/theme.h"
#include "tests/support/numbers.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;

TEST(SliderScale, ReachesBothEnds) {
    for (const SliderScale& scale :
         {SliderScale{5, 100, 5}, {7, 90, 1}, {0.5, 10, 0.5}, {65, 95, 1}}) {
        EXPECT_DOUBLE_EQ(scale.valueAt(0), scale.minimum);
        EXPECT_DOUBLE_EQ(scale.valueAt(scale.steps()), scale.maximum);
        EXPECT_DOUBLE_EQ(scale.valueAt(1), scale.minimum + scale.step);
        for (int i = 0; i <= scale.steps(); ++i) {
            EXPECT_EQ(scale.nearestStep(scale.valueAt(i)), i);
        }
    }
}

TEST(SliderScale, NearestStepAcceptsAnyNumber) {
    constexpr SliderScale scale{5, 100, 5};
    EXPECT_EQ(scale.nearestStep(12.4), 1);
    EXPECT_EQ(scale.nearestStep(12.6), 2);
    EXPECT_EQ(scale.nearestStep(-1e300), 0);
    EXPECT_EQ(scale.nearestStep(1e300), scale.steps());
    EXPECT_EQ(scale.nearestStep(infinity), scale.steps());
    EXPECT_EQ(scale.nearestStep(-infinity), 0);
    EXPECT_EQ(scale.nearestStep(std::nan("")), 0);
}

TEST(StepSlider, EmitsOnlyChangesByTheOwner) {
    StepSlider slider({0.5, 10, 0.5});
    std::vector<double> moved;
    QObject::connect(&slider, &StepSlider::moved,
                     [&moved](double value) { moved.push_back(value); });
    slider.show(2.0);
    EXPECT_THAT(moved, ElementsAre());
    QTest::keyClick(&slider, Qt::Key_Right);
    QTest::keyClick(&slider, Qt::Key_Left);
    QTest::keyClick(&slider, Qt::Key_PageUp);
    QTest::keyClick(&slider, Qt::Key_Home);
    QTest::keyClick(&slider, Qt::Key_Home);
    QTest::keyClick(&slider, Qt::Key_End);
    EXPECT_THAT(moved, ElementsAre(2.5, 2.0, 2.5, 0.5, 10.0));
}

TEST(StepSlider, ItsKeysMoveItAndDoNotScrollThePage) {
    auto* content = new QWidget;
    content->setFixedHeight(2000);
    auto* slider = new StepSlider({0, 100, 1}, content);
    QWidget page;
    page.resize(300, 200);
    const QScrollArea* area = scrollOnPage(content, page);
    page.show();
    QApplication::setActiveWindow(&page);
    slider->setFocus();
    slider->show(50);
    std::vector<double> moved;
    QObject::connect(slider, &StepSlider::moved,
                     [&moved](double value) { moved.push_back(value); });
    for (const Qt::Key key : {Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End}) {
        QTest::keyClick(slider, key);
    }
    EXPECT_THAT(moved, ElementsAre(60, 50, 0, 100));
    EXPECT_EQ(area->verticalScrollBar()->value(), 0);
}

TEST(StepSlider, ADragEmitsEachStepOnce) {
    StepSlider slider({0, 10, 1});
    slider.resize(200, slider.sizeHint().height());
    slider.show(0);
    slider.QWidget::show();
    std::vector<double> moved;
    QObject::connect(&slider, &StepSlider::moved,
                     [&moved](double value) { moved.push_back(value); });
    const int y = slider.height() / 2;
    QTest::mousePress(&slider, Qt::LeftButton, Qt::NoModifier, {6, y});
    for (int x = 6; x < 200; ++x) {
        QTest::mouseMove(&slider, {x, y});
    }
    QTest::mouseRelease(&slider, Qt::LeftButton, Qt::NoModifier, {199, y});
    EXPECT_THAT(moved, ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10));
}

TEST(StepSlider, IgnoresTheWheel) {
    StepSlider slider({0, 10, 1});
    slider.show(5);
    QWheelEvent wheel({5, 5}, {5, 5}, {}, {0, 120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                      false);
    QCoreApplication::sendEvent(&slider, &wheel);
    EXPECT_FALSE(wheel.isAccepted());
    EXPECT_EQ(slider.value(), 5);
}

TEST(StepSlider, AccessibleValuesAreThoseOfTheScale) {
    StepSlider slider({0.5, 10, 0.5});
    slider.setAccessibleName(u"Maximum per run"_s);
    slider.show(2.0);
    slider.setValueText(u"2.0 GB"_s);
    QAccessibleInterface* found = QAccessible::queryAccessibleInterface(&slider);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->role(), QAccessible::Slider);
    EXPECT_EQ(found->text(QAccessible::Name), u"Maximum per run"_s);
    EXPECT_EQ(found->text(QAccessible::Value), u"2.0 GB"_s);
    QAccessibleValueInterface* value = found->valueInterface();
    ASSERT_NE(value, nullptr);
    EXPECT_DOUBLE_EQ(value->currentValue().toDouble(), 2.0);
    EXPECT_DOUBLE_EQ(value->minimumValue().toDouble(), 0.5);
    EXPECT_DOUBLE_EQ(value->maximumValue().toDouble(), 10.0);
    EXPECT_DOUBLE_EQ(value->minimumStepSize().toDouble(), 0.5);
    value->setCurrentValue(1.5);
    EXPECT_DOUBLE_EQ(slider.scale().valueAt(slider.value()), 1.5);
}

TEST(StepSlider, TheGrooveStandsOutFromItsCardInBothAppearances) {
    const QPalette before = QApplication::palette();
    for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
        QApplication::setPalette(paletteFor(appearance));
        const CrestTheme& theme = CrestTheme::current();
        StepSlider slider({0, 10, 1});
        slider.resize(200, slider.sizeHint().height());
        slider.show(10);
        const QImage image = slider.grab().toImage();
        // The filled groove left of the knob.
        EXPECT_GE(contrastRatio(image.pixelColor(100, image.height() / 2), theme.cardBackground),
                  4.5);
    }
    QApplication::setPalette(before);
}

// A row ------------------------------------------------------------------------------------------

class LimitRowTest : public testing::Test {
protected:
    LimitRowTest() {
        row.show(1.0);
        // The answer of a field that takes no more than 2.
        QObject::connect(&row, &LimitRow::moved, &row, [this](double value) {
            moves.push_back(value);
            row.show(std::min(value, 2.0));
        });
    }

    std::vector<double> moves;
    LimitRow row{u"Maximum per run"_s, u"GB"_s, u"probe"_s, {0.5, 10, 0.5}, [](double value) {
                     return QString::number(value);
                 }};
    StepSlider& slider = *row.findChild<StepSlider*>();
};

TEST_F(LimitRowTest, SaysItsUnitAndItsRangeInsteadOfItsValue) {
    EXPECT_EQ(slider.accessibleName(), u"Maximum per run, GB"_s);
    EXPECT_EQ(slider.accessibleDescription(), u"From 0.5 to 10"_s);
}

TEST_F(LimitRowTest, EmitsEachStepOnce) {
    slider.setValue(2);
    slider.setValue(2);
    EXPECT_THAT(moves, ElementsAre(1.5));
    EXPECT_EQ(slider.valueText(), u"1.5"_s);
}

TEST_F(LimitRowTest, JumpsBackToTheClampedValue) {
    slider.setValue(slider.maximum());
    EXPECT_THAT(moves, ElementsAre(10.0));
    EXPECT_EQ(slider.value(), 3);
    EXPECT_EQ(slider.valueText(), u"2"_s);
    slider.setValue(slider.maximum() - 1);
    EXPECT_THAT(moves, ElementsAre(10.0, 9.5)) << "every requested value is reported";
    EXPECT_EQ(slider.value(), 3);
}

TEST_F(LimitRowTest, ShowsAValueBetweenTwoStepsUnchanged) {
    row.show(1.2);
    EXPECT_EQ(slider.valueText(), u"1.2"_s);
    EXPECT_EQ(slider.value(), 1);
    EXPECT_THAT(moves, ElementsAre());
}

}  // namespace
}  // namespace tallowcrest
