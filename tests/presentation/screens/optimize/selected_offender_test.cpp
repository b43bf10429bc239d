#include "presentation/screens/optimize/selected_offender.h"

#include <limits>
#include <ostream>
#include <vector>

#include <QLocale>
#include <gtest/gtest.h>

#include "tests/presentation/screens/load/process_rows.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

class SelectedOffenderText : public testing::Test {
protected:
    SelectedOffenderText() { QLocale::setDefault(QLocale(u"en_US"_s)); }
    ~SelectedOffenderText() override { QLocale::setDefault(QLocale::c()); }
};

TEST_F(SelectedOffenderText, TheHintSaysWhatToDoNext) {
    EXPECT_EQ(selected_offender::hint(), u"Select an app or process to see why it matters."_s);
}

TEST_F(SelectedOffenderText, TheHeadingNamesTheTarget) {
    EXPECT_EQ(selected_offender::heading("photo-indexer"), u"Selected Offender: photo-indexer"_s);
    EXPECT_EQ(selected_offender::heading("PID 800"), u"Selected Offender: PID 800"_s);
    EXPECT_EQ(selected_offender::heading(""), u"Selected Offender"_s);
}

// The sentence -----------------------------------------------------------------------------------

struct SentenceCase {
    const char* name;
    const char* command;
    double cpu;
    double rssMB;
    bool isProtected;
    const char* sentence;

    friend std::ostream& operator<<(std::ostream& out, const SentenceCase& tested) {
        return out << tested.name;
    }
};

constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

const SentenceCase sentenceCases[] = {
    {"Manual", "/usr/bin/photo-indexer", 130.04, 412.4, false,
     "photo-indexer is using 130.0% CPU and 412 MB memory. Review before quitting; unsaved work "
     "may be lost if the app does not exit cleanly."},
    {"Protected", "/usr/lib/systemd/systemd", 0.0, 12.6, true,
     "systemd is using 0.0% CPU and 13 MB memory. It is protected from quit actions."},
    {"LargeFiguresAreGrouped", "/usr/bin/builder", 1599.96, 20480.0, true,
     "builder is using 1,600.0% CPU and 20,480 MB memory. It is protected from quit actions."},
    {"WhatIsNotFiniteCountsAsZero", "/usr/bin/odd", noNumber, infinite, true,
     "odd is using 0.0% CPU and 0 MB memory. It is protected from quit actions."},
    {"ACommandThatIsNoPath", "worker", 1.0, 1.0, true,
     "worker is using 1.0% CPU and 1 MB memory. It is protected from quit actions."},
    {"ANameThatLooksLikeAPattern", "/usr/bin/%1 %2", 1.0, 1.0, true,
     "%1 %2 is using 1.0% CPU and 1 MB memory. It is protected from quit actions."},
};

class SelectedOffenderSentence : public SelectedOffenderText,
                                 public testing::WithParamInterface<SentenceCase> {};

TEST_P(SelectedOffenderSentence, TellsTheFiguresAndWhatToMind) {
    const SentenceCase& tested = GetParam();
    EXPECT_EQ(selected_offender::sentence(processRow(800, tested.command, tested.cpu, tested.rssMB),
                                          tested.isProtected)
                  .toStdString(),
              tested.sentence);
}

INSTANTIATE_TEST_SUITE_P(Table, SelectedOffenderSentence, testing::ValuesIn(sentenceCases),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(SelectedOffenderText, FiguresAreInTheFormatOfTheLocale) {
    QLocale::setDefault(QLocale(u"de_DE"_s));
    EXPECT_TRUE(selected_offender::sentence(processRow(800, "/usr/bin/editor", 30.5, 2048.0), false)
                    .startsWith(u"editor is using 30,5% CPU and 2.048 MB memory. "_s));
}

// The group --------------------------------------------------------------------------------------

struct GroupCase {
    const char* name;
    std::optional<std::string> group;
    const char* value;
    const char* detail;

    friend std::ostream& operator<<(std::ostream& out, const GroupCase& tested) {
        return out << tested.name;
    }
};

const GroupCase groupCases[] = {
    {"Several", "Google Chrome", "Google Chrome", "12 processes · 345.7% CPU"},
    {"One", "editor", "editor", "1 process · 30.0% CPU"},
    {"Thousands", "worker", "worker", "1,234 processes · 0.0% CPU"},
    {"NotInTheSample", "photo-indexer", "photo-indexer", "No group summary"},
    {"NamesAreComparedWhole", "Google", "Google", "No group summary"},
    {"NamesAreComparedExactly", "google chrome", "google chrome", "No group summary"},
    {"NoGroup", std::nullopt, "No group summary", ""},
    {"NoName", "", "No group summary", ""},
};

class SelectedOffenderGroup : public SelectedOffenderText,
                              public testing::WithParamInterface<GroupCase> {};

TEST_P(SelectedOffenderGroup, IsSummedUpWhereTheSampleHasIt) {
    const std::vector<AppImpact> groups{{"Google Chrome", 12, 345.67, 2048.0, 701, 0},
                                        {"editor", 1, 30.0, 1024.0, 700, 0},
                                        {"worker", 1234, 0.0, 90.0, 900, 0}};
    const auto card = selected_offender::groupCard(GetParam().group, groups);
    EXPECT_EQ(card.value.toStdString(), GetParam().value);
    EXPECT_EQ(card.detail.toStdString(), GetParam().detail);
}

INSTANTIATE_TEST_SUITE_P(Table, SelectedOffenderGroup, testing::ValuesIn(groupCases),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(SelectedOffenderText, WithoutASampleThereIsNoSummary) {
    EXPECT_EQ(selected_offender::groupCard("editor", {}),
              (selected_offender::GroupCard{u"editor"_s, u"No group summary"_s}));
}

TEST_F(SelectedOffenderText, TheRiskIsOneWord) {
    EXPECT_EQ(selected_offender::risk(true), u"Protected"_s);
    EXPECT_EQ(selected_offender::risk(false), u"Manual"_s);
}

}  // namespace
}  // namespace tallowcrest
