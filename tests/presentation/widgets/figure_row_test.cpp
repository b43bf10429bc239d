#include "presentation/widgets/figure_row.h"

#include <QAccessible>
#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

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
    FigureRow row({u"CPU now"_s, u"Memory now"_s});
    row.setFigures({u"34%"_s, u"12.3 GB"_s});
    EXPECT_EQ(spokenWithin(row), QStringList({u"CPU now: 34%"_s, u"Memory now: 12.3 GB"_s}));
    row.setFigures({u"35%"_s, u"12.3 GB"_s});
    EXPECT_EQ(spokenWithin(row).first(), u"CPU now: 35%"_s);
}

TEST(FigureRow, ADashForNoFigureIsNotSpoken) {
    FigureRow row({u"CPU now"_s});
    EXPECT_EQ(spokenWithin(row), QStringList{u"CPU now"_s});
    row.setFigures({u"–"_s});
    EXPECT_EQ(spokenWithin(row), QStringList{u"CPU now"_s});
}

TEST(FigureRow, AFigureAndItsNameAreOneElement) {
    FigureRow row({u"CPU now"_s});
    row.setFigures({u"34%"_s});
    auto* pair = row.findChild<NamedFigure*>();
    ASSERT_NE(pair, nullptr);
    EXPECT_THAT(spokenWithin(*pair), testing::IsEmpty());
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(pair);
    EXPECT_EQ(spoken->role(), QAccessible::StaticText);
    EXPECT_EQ(spoken->child(0), nullptr);
}

TEST(FigureRow, KeepsItsMinimumHeight) {
    FigureRow row({u"CPU now"_s, u"Memory now"_s});
    row.resize(300, row.sizeHint().height());
    row.setFigures({u"4%"_s, u"5%"_s});
    const QSize before = row.minimumSizeHint();
    row.setFigures({u"100%"_s, u"100%"_s});
    EXPECT_EQ(row.minimumSizeHint().height(), before.height());
}

}  // namespace
}  // namespace tallowcrest
