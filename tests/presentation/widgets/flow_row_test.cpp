#include "presentation/widgets/flow_row.h"

#include <tuple>
#include <vector>

#include <QCoreApplication>
#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

/// A widget with the given size hint.
class Item final : public QWidget {
public:
    explicit Item(QSize size) : size_(size) {}

    void setWanted(QSize size) {
        size_ = size;
        updateGeometry();
    }
    QSize sizeHint() const override { return size_; }

private:
    QSize size_;
};

class FlowRowTest : public testing::Test {
protected:
    Item* add(int width, int height) {
        auto* item = new Item({width, height});
        row.addItem(item);
        items.push_back(item);
        return item;
    }

    void resizeTo(int width) {
        row.setAttribute(Qt::WA_DontShowOnScreen);
        row.resize(width, row.heightForWidth(width));
        row.show();
        QCoreApplication::processEvents();
    }

    FlowRow row{8};
    std::vector<Item*> items;
};

TEST_F(FlowRowTest, AnEmptyRowTakesNoRoom) {
    EXPECT_EQ(row.heightForWidth(300), 0);
    EXPECT_EQ(row.sizeHint(), QSize(0, 0));
    EXPECT_EQ(row.minimumSizeHint(), QSize(0, 0));
}

TEST_F(FlowRowTest, ItemsThatFitAreOnOneLineAndWrapWhenOnePixelTooNarrow) {
    add(100, 32);
    add(60, 32);
    EXPECT_EQ(row.sizeHint(), QSize(168, 32));
    for (const auto& [width, height, second] :
         {std::tuple{168, 32, QRect(108, 0, 60, 32)}, {167, 72, QRect(0, 40, 60, 32)}}) {
        resizeTo(width);
        EXPECT_EQ(row.heightForWidth(width), height);
        EXPECT_EQ(items[0]->geometry(), QRect(0, 0, 100, 32));
        EXPECT_EQ(items[1]->geometry(), second);
    }
}

TEST_F(FlowRowTest, AnItemWiderThanTheRowStillGetsALine) {
    add(100, 32);
    EXPECT_EQ(row.heightForWidth(50), 32);
    EXPECT_EQ(row.minimumSizeHint(), QSize(100, 32));
}

TEST_F(FlowRowTest, ItemsOfALineAreCentredVertically) {
    add(100, 16);
    add(60, 32);
    resizeTo(200);
    EXPECT_EQ(items[0]->geometry(), QRect(0, 8, 100, 16));
    EXPECT_EQ(items[1]->geometry(), QRect(108, 0, 60, 32));
}

TEST_F(FlowRowTest, AnItemThatGrowsMovesThoseAfterIt) {
    Item* first = add(100, 32);
    add(60, 32);
    resizeTo(300);
    first->setWanted({120, 32});
    QCoreApplication::processEvents();
    EXPECT_EQ(items[0]->geometry(), QRect(0, 0, 120, 32));
    EXPECT_EQ(items[1]->geometry(), QRect(128, 0, 60, 32));
    first->setMinimumWidth(140);
    QCoreApplication::processEvents();
    EXPECT_EQ(items[0]->width(), 140) << "a minimum width is kept";
    EXPECT_EQ(items[1]->x(), 148);
}

}  // namespace
}  // namespace tallowcrest
