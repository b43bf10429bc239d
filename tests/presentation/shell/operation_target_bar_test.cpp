#include "presentation/shell/operation_target_bar.h"

#include <QAccessible>
#include <QPushButton>

#include "actions/actions.h"
#include "core/settings/settings_owner.h"
#include "presentation/widgets/icon.h"
#include "tests/presentation/shell/announcements.h"
#include "tests/presentation/widgets/paint_count.h"
#include "tests/presentation/window_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

class OperationTargetBarTest : public WindowFixture {
protected:
    OperationTargetBar& bar() { return *window().findChild<OperationTargetBar*>(); }
    ReviewTarget& review() { return machine.monitor().actions().review; }

    void select(std::size_t row) {
        review().selectProcess(machine.metrics->processes.at(row));
        settle();
    }

    /// The content of the bar, from left to right.
    std::string shown() {
        QStringList parts{visible<IconView>("target.icon")->icon(), textOf("target.title"),
                          textOf("target.detail")};
        for (const char* mark : {"target.automatic", "target.protected"}) {
            if (visible(mark) != nullptr) {
                parts.append(visible(mark)->accessibleName());
            }
        }
        for (const auto* button : bar().findChildren<QPushButton*>()) {
            if (button->isVisible()) {
                parts.append(u'[' + button->text() + u']');
            }
        }
        return parts.join(u'|').toStdString();
    }
};

constexpr const char* withoutTarget =
    "scope|Operation Target|No operation target selected|[Choose Process]";

TEST_F(OperationTargetBarTest, WithoutATargetOffersToChooseOneOnEveryRoute) {
    show();
    EXPECT_EQ(shown(), withoutTarget) << "before the first sample";
    machine.finishSamples();
    settle();
    for (const AppRoute each : allAppRoutes) {
        goTo(each);
        ASSERT_NE(visible("target"), nullptr) << rawValue(each);
        EXPECT_EQ(shown(), withoutTarget);
    }
    click("target.choose");
    EXPECT_EQ(route(), AppRoute::load);
}

TEST_F(OperationTargetBarTest, IsBetweenTheStatusStripAndThePage) {
    showWithSample();
    const auto top = [this](const char* identifier) {
        return visible(identifier)->mapTo(&window(), QPoint()).y();
    };
    EXPECT_GT(top("target"), top("status.session"));
    EXPECT_LT(top("target"), top("overview.gauges"));
}

TEST_F(OperationTargetBarTest, ShowsTheTargetOnEveryRoute) {
    showWithSample();
    select(0);
    for (const AppRoute each : allAppRoutes) {
        goTo(each);
        EXPECT_EQ(shown(),
                  "scope|photo-indexer|photo-indexer · PID 800 · 130.0% CPU · 2048 MB|[Review]"
                  "|[Clear]");
    }
    goTo(AppRoute::overview);
    click("target.review");
    EXPECT_EQ(route(), AppRoute::optimize);
}

TEST_F(OperationTargetBarTest, ClearReturnsToNoTarget) {
    showWithSample();
    select(0);
    click("target.clear");
    EXPECT_EQ(shown(), withoutTarget);
    EXPECT_EQ(selectedPID(), std::nullopt);
    EXPECT_EQ(lastAction(), "Cleared selected operation target.");
}

TEST_F(OperationTargetBarTest, AProtectedTargetHasALock) {
    showWithSample();
    select(2);
    EXPECT_EQ(shown(),
              "lock.fill|systemd|systemd · PID 1 · 0.0% CPU · 12 MB|Protected|[Review]"
              "|[Clear]");
    select(1);
    EXPECT_EQ(shown(), "scope|editor|editor · PID 700 · 30.0% CPU · 1024 MB|[Review]|[Clear]");
    machine.monitor().actions().local.toggleNeverQuit("editor");
    settle();
    EXPECT_EQ(visible<IconView>("target.icon")->icon(), u"lock.fill"_s);
    EXPECT_NE(visible("target.protected"), nullptr);
    click("target.clear");
    EXPECT_EQ(shown(), withoutTarget);
}

TEST_F(OperationTargetBarTest, ATargetSelectedByARuleSaysSo) {
    showWithSample();
    select(1);
    machine.ticks->ticks.reset();
    machine.monitor().settingsOwner().set(&Settings::warningThreshold, 50.0);
    for (ProcessSample& row : machine.metrics->processes) {
        row.cpu *= 4;
    }
    tick();
    EXPECT_EQ(textOf("target.title"), u"photo-indexer"_s);
    ASSERT_NE(visible("target.automatic"), nullptr);
    EXPECT_EQ(visible("target.automatic")->accessibleName(), u"Auto-selected"_s);
    EXPECT_TRUE(bar().accessibleValue().endsWith(u", Auto-selected"_s));
    EXPECT_EQ(visible("target.protected"), nullptr);
    select(1);
    EXPECT_EQ(visible("target.automatic"), nullptr);
    EXPECT_FALSE(bar().accessibleValue().contains(u"Auto-selected"_s));
}

TEST_F(OperationTargetBarTest, ATargetThatLeftTheTableStays) {
    showWithSample();
    select(0);
    const ProcessSample gone = machine.metrics->processes[0];
    machine.metrics->processes.erase(machine.metrics->processes.begin());
    tick();
    EXPECT_EQ(shown(),
              "scope|PID 800|Selected for review. Process details are not in the latest sample."
              "|[Review]|[Clear]");
    machine.metrics->processes.push_back(gone);
    tick();
    EXPECT_EQ(textOf("target.title"), u"photo-indexer"_s);
}

TEST_F(OperationTargetBarTest, NewFiguresOfTheTargetMoveNothing) {
    for (const int width : {640, 900, 1080, 1600}) {
        window().resize(width, 700);
        showWithSample();
        select(0);
        std::vector<std::pair<QWidget*, QRect>> before;
        for (auto* each : bar().findChildren<QWidget*>()) {
            if (each->isVisible() && each->objectName() != u"target.detail"_s) {
                before.emplace_back(each, each->geometry());
            }
        }
        for (const double cpu : {9.5, 99.9, 130.0}) {
            machine.metrics->processes[0].cpu = cpu;
            tick();
            EXPECT_TRUE(textOf("target.detail").contains(u"· %1% CPU"_s.arg(cpu, 0, 'f', 1)));
            for (const auto& [widget, geometry] : before) {
                EXPECT_EQ(widget->geometry(), geometry) << widget->objectName().toStdString();
            }
        }
        click("target.clear");
    }
}

TEST_F(OperationTargetBarTest, HasTheSameHeightAtEveryWidth) {
    showWithSample();
    const int height = bar().height();
    for (const int width : {640, 859, 900, 1080, 1600}) {
        window().resize(width, 700);
        settle();
        EXPECT_EQ(bar().height(), height) << width;
        for (const std::size_t row : {0U, 2U}) {
            select(row);
            EXPECT_EQ(bar().height(), height) << width;
        }
        click("target.clear");
    }
}

TEST_F(OperationTargetBarTest, TheDetailIsBesideTheTitleOrBelowItInANarrowWindow) {
    showWithSample();
    select(0);
    const QWidget* heading = visible("target.title");
    const QWidget* detail = visible("target.detail");
    for (const int width : {1600, 640, 1080}) {
        window().resize(width, 700);
        settle();
        const bool isBeside = width >= 1080;
        EXPECT_EQ(detail->x() > heading->geometry().right(), isBeside) << width;
        EXPECT_EQ(detail->y() > heading->geometry().bottom(), !isBeside) << width;
    }
}

TEST_F(OperationTargetBarTest, WithoutATargetEverythingIsInOneLine) {
    showWithSample();
    for (const int width : {640, 700, 859, 900, 1600}) {
        window().resize(width, 480);
        settle();
        const QRect title = visible("target.title")->geometry();
        const QRect detail = visible("target.detail")->geometry();
        EXPECT_EQ(title.center().y(), detail.center().y()) << width;
        EXPECT_GT(detail.x(), title.right()) << width;
        EXPECT_EQ(visible<ElidedLabel>("target.detail")->shownLines(),
                  QStringList(u"No operation target selected"_s))
            << width;
    }
    window().resize(640, 480);
    select(0);
    EXPECT_GT(visible("target.detail")->y(), visible("target.title")->y());
    click("target.clear");
    EXPECT_GT(visible("target.detail")->x(), visible("target.title")->x());
}

TEST_F(OperationTargetBarTest, NoTextIsElidedInAUsualWindow) {
    for (const int width : {900, 1080, 1600}) {
        window().resize(width, 700);
        showWithSample();
        for (const std::size_t row : {0U, 2U}) {
            select(row);
            for (const char* label : {"target.title", "target.detail"}) {
                EXPECT_EQ(visible<ElidedLabel>(label)->shownLines(), QStringList(textOf(label)))
                    << width;
            }
        }
    }
}

TEST_F(OperationTargetBarTest, AnUnchangedSamplePaintsNothing) {
    showWithSample();
    goTo(AppRoute::history);
    select(2);
    settle();
    PaintCount onBar(bar());
    tick();
    EXPECT_EQ(onBar.take(), 0);
    machine.metrics->processes[2].rssMB = 40.0;
    tick();
    EXPECT_TRUE(textOf("target.detail").endsWith(u"40 MB"_s));
}

TEST_F(OperationTargetBarTest, HostileNamesAreShownLiterallyAndKeepTheLayout) {
    machine.addProcess(900, "/opt/<b>bold</b>", 1.0, 1.0);
    machine.addProcess(901, "/opt/" + std::string(10000, 'W'), 1.0, 1.0);
    machine.addProcess(902, "/opt/two\nlines", 1.0, 1.0);
    window().resize(640, 480);
    showWithSample();
    for (const std::size_t row : {3U, 4U, 5U}) {
        select(row);
        EXPECT_EQ(window().width(), 640);
        EXPECT_LE(bar().geometry().right(), bar().parentWidget()->width());
        for (const char* button : {"target.review", "target.clear"}) {
            EXPECT_EQ(visible(button)->size(), visible(button)->sizeHint());
            EXPECT_TRUE(bar().rect().contains(visible(button)->geometry()));
        }
        EXPECT_EQ(visible<ElidedLabel>("target.title")->shownLines().size(), 1);
    }
    select(3);
    EXPECT_EQ(textOf("target.title"), u"b>"_s);
}

TEST_F(OperationTargetBarTest, IsAnAccessibleGroupWithItsContentAsValue) {
    showWithSample();
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&bar());
    ASSERT_NE(spoken, nullptr);
    EXPECT_EQ(spoken->role(), QAccessible::Grouping);
    EXPECT_EQ(spoken->text(QAccessible::Name), u"Operation Target"_s);
    EXPECT_EQ(spoken->text(QAccessible::Value),
              u"Operation Target, No operation target selected"_s);
    select(2);
    EXPECT_EQ(spoken->text(QAccessible::Value),
              u"systemd, systemd · PID 1 · 0.0% CPU · 12 MB, Protected"_s);
}

TEST_F(OperationTargetBarTest, SaysWhoseReviewItsButtonsAreFor) {
    showWithSample();
    const QWidget& title = *visible("target.title");
    EXPECT_EQ(title.accessibleName(), u"Operation Target"_s);
    select(2);
    EXPECT_EQ(title.accessibleName(), u"Under review: systemd, Protected"_s);
    EXPECT_EQ(visible("target.detail")->accessibleName(), u"systemd, PID 1, 0.0% CPU, 12 MB"_s);
    EXPECT_EQ(visible("target.review")->accessibleName(), u"Review systemd"_s);
    EXPECT_EQ(visible("target.clear")->accessibleName(), u"Clear systemd"_s);
    click("target.clear");
    EXPECT_EQ(title.accessibleName(), u"Operation Target"_s);
}

TEST_F(OperationTargetBarTest, OnlyASelectionByARuleIsSaid) {
    showWithSample();
    const Announcements heard;
    select(2);
    EXPECT_THAT(heard.said(), testing::IsEmpty());
    review().setTarget(700, "editor", ReviewTarget::ChosenBy::rule);
    settle();
    tick();
    EXPECT_THAT(heard.said(), testing::ElementsAre("Auto-selected: editor"));
}

TEST_F(OperationTargetBarTest, TheFocusStaysInTheBarWhenItsButtonIsHidden) {
    showWithSample();
    select(0);
    visible("target.clear")->setFocus();
    press(Qt::Key_Space);
    EXPECT_EQ(QApplication::focusWidget(), visible("target.choose"));
    select(0);
    EXPECT_EQ(QApplication::focusWidget(), visible("target.review"));
    click("target.clear");
    visible("page.refresh")->setFocus();
    select(0);
    EXPECT_EQ(QApplication::focusWidget(), visible("page.refresh"))
        << "a selection does not move a focus outside the bar";
}

}  // namespace
}  // namespace tallowcrest
