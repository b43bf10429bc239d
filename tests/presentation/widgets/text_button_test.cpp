#include "presentation/widgets/text_button.h"

#include <QImage>
#include <QSignalSpy>

#include "tests/presentation/is_ringed.h"
#include "tests/presentation/widget_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

class TextButtonTest : public testing::Test {
protected:
    TextButtonTest() {
        button.setText(u"Impact order"_s);
        button.resize(200, TextButton::buttonHeight);
    }

    /// The first and the last column that the text covers.
    std::pair<int, int> inked() {
        const QImage image = button.grab().toImage();
        std::pair<int, int> columns{-1, -1};
        for (int x = 0; x < image.width(); ++x) {
            for (int y = 0; y < image.height(); ++y) {
                if (image.pixelColor(x, y) != image.pixelColor(0, 0)) {
                    columns = {columns.first < 0 ? x : columns.first, x};
                }
            }
        }
        return columns;
    }

    TextButton button{u"order"_s, &CrestTheme::text};
};

TEST_F(TextButtonTest, TheTextStandsAtTheChosenSide) {
    EXPECT_LT(inked().first, 12);
    EXPECT_LT(inked().second, 110);
    button.setAlignment(Qt::AlignRight);
    EXPECT_GT(inked().first, 90);
    EXPECT_GE(inked().second, 185);
    EXPECT_LT(inked().second, 200 - spacing::unit + 1);
}

TEST_F(TextButtonTest, SpaceClicksItAndTheFocusShows) {
    const QSignalSpy clicks(&button, &TextButton::clicked);
    button.show();
    button.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&button));
    button.setFocus(Qt::TabFocusReason);
    EXPECT_TRUE(isRinged(button, CrestTheme::current().accentText));
    QTest::keyClick(&button, Qt::Key_Space);
    EXPECT_EQ(clicks.count(), 1);
}

TEST_F(TextButtonTest, ItsSizeFitsItsText) {
    const int width = button.sizeHint().width();
    button.setText(u"Impact order, and more"_s);
    EXPECT_GT(button.sizeHint().width(), width);
    EXPECT_EQ(button.sizeHint().height(), TextButton::buttonHeight);
}

}  // namespace
}  // namespace tallowcrest
