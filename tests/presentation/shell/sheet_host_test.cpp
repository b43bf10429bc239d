#include "presentation/shell/sheet_host.h"

#include <QAction>
#include <QApplication>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>
#include <gtest/gtest.h>

#include "tests/support/manual_queues.h"

namespace tallowcrest {
namespace {

class PlainSheet final : public Sheet {
public:
    explicit PlainSheet(QWidget* window) : Sheet(window) {
        auto* layout = new QVBoxLayout(this);
        layout->addWidget(entry = new QWidget);
        layout->addWidget(done = new QPushButton);
        entry->setFocusPolicy(Qt::StrongFocus);
        done->setDefault(true);
        connect(done, &QPushButton::clicked, this, &QDialog::accept);
    }

    QWidget* entry = nullptr;
    QPushButton* done = nullptr;
    int starts = 0;
    int shows = 0;

protected:
    void start() override { ++starts; }
    void showState() override { ++shows; }
    QWidget* firstControl() override { return entry; }
};

class SheetHostTest : public testing::Test {
protected:
    struct Kind {
        explicit Kind(MainQueue& queue) : observable(queue) {}

        Observable observable;
        bool isWanted = false;
        int dismissals = 0;
        PlainSheet* sheet = nullptr;

        bool isOpen() const { return sheet != nullptr && sheet->isVisible(); }
    };

    SheetHostTest() {
        for (Kind* each : {&lower, &upper}) {
            host->add({.shows = {&each->observable},
                       .isWanted = [each] { return each->isWanted; },
                       .dismissed =
                           [each] {
                               each->isWanted = false;
                               ++each->dismissals;
                           },
                       .make = [each](QWidget* on) { return each->sheet = new PlainSheet(on); }});
        }
        window.show();
    }

    void settle() {
        host->refresh();
        QApplication::processEvents();
    }

    void want(Kind& kind, bool isWanted = true) {
        kind.isWanted = isWanted;
        settle();
    }

    ManualMainQueue queue;
    QWidget window;
    QAction action;
    SheetHost* host = new SheetHost(window, action, queue);
    Kind lower{queue};
    Kind upper{queue};
};

TEST_F(SheetHostTest, ASheetIsBuiltAndOpenedWhenItIsWanted) {
    settle();
    EXPECT_EQ(lower.sheet, nullptr);
    lower.isWanted = true;
    host->refresh();
    EXPECT_EQ(lower.sheet, nullptr) << "not before the next turn of the event loop";
    QApplication::processEvents();
    ASSERT_TRUE(lower.isOpen());
    EXPECT_EQ(lower.sheet->parentWidget(), &window);
    EXPECT_TRUE(lower.sheet->actions().contains(&action));
    EXPECT_EQ(lower.sheet->focusWidget(), lower.sheet->entry);
    EXPECT_EQ(upper.sheet, nullptr);
}

TEST_F(SheetHostTest, AnOpenSheetFollowsTheStateAndAClosedOneDoesNoWork) {
    want(lower);
    const int shows = lower.sheet->shows;
    settle();
    EXPECT_EQ(lower.sheet->shows, shows + 1);
    const int last = lower.sheet->shows;
    want(lower, false);
    EXPECT_FALSE(lower.isOpen());
    settle();
    EXPECT_EQ(lower.sheet->shows, last) << "not even to be closed";
    EXPECT_EQ(lower.sheet->starts, 1);
    want(lower);
    EXPECT_TRUE(lower.isOpen());
    EXPECT_EQ(lower.sheet->starts, 2) << "it starts again each time it opens";
}

TEST_F(SheetHostTest, EveryWayToCloseASheetReportsIt) {
    int expected = 0;
    const auto closesBy = [&](auto way) {
        want(lower);
        ASSERT_TRUE(lower.isOpen());
        way();
        settle();
        EXPECT_FALSE(lower.isOpen());
        EXPECT_FALSE(lower.isWanted);
        EXPECT_EQ(lower.dismissals, ++expected);
    };
    closesBy([this] { lower.sheet->done->click(); });
    closesBy([this] { QTest::keyClick(lower.sheet, Qt::Key_Escape); });
    closesBy([this] { lower.sheet->close(); });
    closesBy([this] { host->closeAll(); });
}

TEST_F(SheetHostTest, ReturnClosesASheetOnlyOnItsClosingButton) {
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        want(lower);
        QTest::keyClick(lower.sheet->entry, key);
        EXPECT_TRUE(lower.isOpen());
        lower.sheet->done->setFocus();
        QTest::keyClick(lower.sheet->done, key);
        EXPECT_FALSE(lower.isOpen());
    }
}

TEST_F(SheetHostTest, ASheetWaitsForItsWindow) {
    window.hide();
    want(lower);
    EXPECT_EQ(lower.sheet, nullptr);
    window.showMinimized();
    settle();
    EXPECT_EQ(lower.sheet, nullptr);
    window.showNormal();
    settle();
    EXPECT_TRUE(lower.isOpen());
}

TEST_F(SheetHostTest, AnOpenSheetFollowsWhatItShowsAndNothingElse) {
    want(lower);
    want(upper);
    const int lowerShows = lower.sheet->shows;
    const int upperShows = upper.sheet->shows;
    for (int i = 0; i < 3; ++i) {
        upper.observable.changed();
    }
    queue.drain();
    EXPECT_EQ(lower.sheet->shows, lowerShows);
    EXPECT_EQ(upper.sheet->shows, upperShows + 1);
    upper.isWanted = false;
    upper.observable.changed();
    queue.drain();
    EXPECT_FALSE(upper.isOpen());
    EXPECT_TRUE(lower.isOpen());
}

TEST_F(SheetHostTest, AnOpenSheetOfAMinimisedWindowFollowsNothingUntilTheWindowIsSeen) {
    want(lower);
    window.showMinimized();
    QApplication::processEvents();
    const int shows = lower.sheet->shows;
    lower.observable.changed();
    queue.drain();
    EXPECT_EQ(lower.sheet->shows, shows);
    window.showNormal();
    lower.observable.changed();
    queue.drain();
    EXPECT_EQ(lower.sheet->shows, shows + 1);
}

TEST_F(SheetHostTest, ALaterSheetOpensAboveAnEarlierOne) {
    want(lower);
    want(upper);
    EXPECT_TRUE(lower.isOpen());
    EXPECT_TRUE(upper.isOpen());
    EXPECT_EQ(QApplication::activeModalWidget(), upper.sheet);
    want(upper, false);
    EXPECT_TRUE(lower.isOpen());
    EXPECT_EQ(QApplication::activeModalWidget(), lower.sheet);
}

TEST_F(SheetHostTest, AnEarlierSheetWaitsUntilALaterOneIsClosed) {
    want(upper);
    want(lower);
    EXPECT_EQ(lower.sheet, nullptr);
    upper.sheet->reject();
    settle();
    EXPECT_TRUE(lower.isOpen());
}

}  // namespace
}  // namespace tallowcrest
