#include "presentation/widgets/crest_style.h"

#include <QImage>
#include <QPainter>
#include <QPushButton>
#include <QStyleOptionButton>
#include <gtest/gtest.h>

#include "presentation/widgets/button.h"
#include "presentation/widgets/theme.h"

namespace tallowcrest {
namespace {

TEST(FocusRing, DependsOnTheFocusReason) {
    struct Case {
        Qt::FocusReason reason;
        bool withoutOne;  ///< the result if there was no ring before
        bool withOne;     ///< the result if there was one
    };
    for (const Case& each :
         {Case{Qt::MouseFocusReason, false, false}, Case{Qt::TabFocusReason, true, true},
          Case{Qt::BacktabFocusReason, true, true}, Case{Qt::ActiveWindowFocusReason, false, true},
          Case{Qt::PopupFocusReason, false, true}, Case{Qt::ShortcutFocusReason, true, true},
          Case{Qt::MenuBarFocusReason, true, true}, Case{Qt::OtherFocusReason, true, true}}) {
        EXPECT_EQ(showsFocusRing(each.reason, false), each.withoutOne) << each.reason;
        EXPECT_EQ(showsFocusRing(each.reason, true), each.withOne) << each.reason;
    }
}

TEST(PushButton, AFlatOneHasAFrameOnlyUnderThePointerWhilePressedAndWithTheFocus) {
    const CrestStyle style;
    const QColor untouched = Qt::magenta;
    const auto edge = [&](QStyleOptionButton::ButtonFeature feature, QStyle::State state) {
        QImage image(80, 32, QImage::Format_RGB32);
        image.fill(untouched);
        QPainter painter(&image);
        QStyleOptionButton option;
        option.rect = image.rect();
        option.features = feature;
        option.state = QStyle::State_Enabled | state;
        style.drawControl(QStyle::CE_PushButtonBevel, &option, &painter, nullptr);
        return image.pixelColor(image.width() / 2, 0);
    };
    const CrestTheme& theme = CrestTheme::current();
    EXPECT_EQ(edge(QStyleOptionButton::None, QStyle::State_None), theme.hairline);
    EXPECT_EQ(edge(QStyleOptionButton::Flat, QStyle::State_None), untouched);
    for (const QStyle::StateFlag state : {QStyle::State_MouseOver, QStyle::State_Sunken}) {
        EXPECT_EQ(edge(QStyleOptionButton::Flat, state), theme.hairline);
    }
    EXPECT_EQ(edge(QStyleOptionButton::Flat, QStyle::State_HasFocus), theme.accentText);
}

TEST(PushButton, APrimaryOneHasTheAccentAndLegibleWordsUnlessItIsDisabled) {
    const CrestStyle style;
    const CrestTheme& theme = CrestTheme::current();
    const auto ground = [&](bool primary, QStyle::State state) {
        QPushButton button;
        if (primary) {
            makePrimary(button);
        }
        QImage image(80, 32, QImage::Format_RGB32);
        QPainter painter(&image);
        QStyleOptionButton option;
        option.rect = image.rect();
        option.state = state;
        style.drawControl(QStyle::CE_PushButtonBevel, &option, &painter, &button);
        return image.pixelColor(image.rect().center());
    };
    for (const QStyle::StateFlag state :
         {QStyle::State_None, QStyle::State_MouseOver, QStyle::State_Sunken}) {
        const QColor primary = ground(true, QStyle::State_Enabled | state);
        EXPECT_NE(primary, ground(false, QStyle::State_Enabled | state));
        EXPECT_GE(contrastRatio(theme.text, primary), 4.5);
    }
    EXPECT_EQ(ground(true, QStyle::State_None), ground(false, QStyle::State_None));
}

}  // namespace
}  // namespace tallowcrest
