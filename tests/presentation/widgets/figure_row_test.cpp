#include "presentation/widgets/figure_row.h"

#include <QAccessible>
#include <gmock/gmock.h>

namespace tallowcrest {
namespace {

QStringList spokenWithin(QWidget& widget) {
    QStringList names;
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&widget);
    for (int i = 0; spoken != nullptr && i < spoken->childCount(); ++i) {
        names.append(spoken->child(i)->text(QAccessible::Name));
    }
    return names;
}

TEST(FigureRow, SaysEachFigureTogetherWithItsName) {
    FigureRow row({QStringLiteral("CPU now"), QStringLiteral("Memory now")});
    row.setFigures({QStringLiteral("34%"), QStringLiteral("12.3 GB")});
    EXPECT_EQ(spokenWithin(row),
              QStringList({QStringLiteral("CPU now: 34%"), QStringLiteral("Memory now: 12.3 GB")}));
    row.setFigures({QStringLiteral("35%"), QStringLiteral("12.3 GB")});
    EXPECT_EQ(spokenWithin(row).first(), QStringLiteral("CPU now: 35%"));
}

TEST(FigureRow, ADashForNoFigureIsNotSpoken) {
    FigureRow row({QStringLiteral("CPU now")});
    EXPECT_EQ(spokenWithin(row), QStringList{QStringLiteral("CPU now")});
    row.setFigures({QStringLiteral("–")});
    EXPECT_EQ(spokenWithin(row), QStringList{QStringLiteral("CPU now")});
}

TEST(FigureRow, APairIsOneThing) {
    FigureRow row({QStringLiteral("CPU now")});
    row.setFigures({QStringLiteral("34%")});
    auto* pair = row.findChild<NamedFigure*>();
    ASSERT_NE(pair, nullptr);
    EXPECT_THAT(spokenWithin(*pair), testing::IsEmpty());
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(pair);
    EXPECT_EQ(spoken->role(), QAccessible::StaticText);
    EXPECT_EQ(spoken->child(0), nullptr);
}

TEST(FigureRow, FiguresMoveNothing) {
    FigureRow row({QStringLiteral("CPU now"), QStringLiteral("Memory now")});
    row.resize(300, row.sizeHint().height());
    row.setFigures({QStringLiteral("4%"), QStringLiteral("5%")});
    const QSize before = row.minimumSizeHint();
    row.setFigures({QStringLiteral("100%"), QStringLiteral("100%")});
    EXPECT_EQ(row.minimumSizeHint().height(), before.height());
}

}  // namespace
}  // namespace tallowcrest
