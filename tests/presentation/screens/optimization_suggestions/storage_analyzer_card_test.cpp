#include "presentation/screens/optimization_suggestions/storage_analyzer_card.h"

#include <QPushButton>
#include <QSignalSpy>

#include "disk/personal_files.h"
#include "tests/presentation/screens/shared/block_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::StartsWith;

class StorageAnalyzerCardTest : public OverviewBlockTest {
protected:
    void show(bool isReplyAwaited = false) {
        card.show(state, isReplyAwaited);
        settle();
    }
    QPushButton& button(const char* name) { return *visible<QPushButton>(name); }

    static StorageOptimizationSuggestion file(const std::string& title, std::int64_t bytes,
                                              const std::string& recommendation) {
        return {UUID::random(), title,          "~/Downloads", "/home/owner/Downloads/" + title,
                bytes,          recommendation, "Because."};
    }

    PersonalFilesState state;
    StorageAnalyzerCard& card = place(new StorageAnalyzerCard({}, "Videos"));
};

TEST_F(StorageAnalyzerCardTest, SaysWhatIsAnalyzedAndWhatLeavesTheMachine) {
    show();
    EXPECT_EQ(card.accessibleName(), u"AI Storage Analyzer"_s);
    EXPECT_EQ(
        textOf("suggestions.storage-analyzer-text"),
        u"The analyzer reviews accessible files in Downloads, Desktop, Documents, Videos, and "
        "Pictures. File contents and paths stay on this Mac. OpenAI receives only the "
        "existing redacted system diagnostics when AI Advisor is enabled."_s);
    EXPECT_EQ(button("suggestions.analyze-files").text(), u"Analyze Large Personal Files"_s);
    EXPECT_EQ(textOf("suggestions.storage-analyzer-caption"),
              u"100 MB minimum · personal folders only"_s);
    EXPECT_THAT(textOf("suggestions.storage-analyzer-status").toStdString(),
                StartsWith("Run the analyzer to find large personal files"));
    EXPECT_EQ(visible("suggestions.storage-analyzer-progress"), nullptr);
    EXPECT_EQ(visible("suggestions.storage-analyzer-reply"), nullptr);
    show(true);
    EXPECT_NE(visible("suggestions.storage-analyzer-reply"), nullptr);
}

TEST_F(StorageAnalyzerCardTest, TheStopOfABackupSaysThatNoCopyIsLeft) {
    state.storageAnalyzerBusy = true;
    state.backup.emplace();
    show();
    const QPushButton& stop = button("suggestions.storage-analyzer-backup-stop");
    EXPECT_EQ(stop.toolTip(), u"Leaves no copy; the file stays"_s);
    EXPECT_EQ(stop.accessibleDescription(), stop.toolTip());
    EXPECT_EQ(button("suggestions.storage-analyzer-progress-stop").toolTip(),
              u"Keeps what is done so far"_s);
}

TEST_F(StorageAnalyzerCardTest, AnAnalysisCanBeFollowedAndStopped) {
    const QSignalSpy begun(&card, &StorageAnalyzerCard::analysisWanted);
    const QSignalSpy stops(&card, &StorageAnalyzerCard::analysisStopWanted);
    show();
    click("suggestions.analyze-files");
    EXPECT_EQ(begun.count(), 1);
    state.storageAnalyzerBusy = true;
    state.progress = {1234, 5, "/home/owner/Down\nloads"};
    show();
    EXPECT_FALSE(button("suggestions.analyze-files").isEnabled());
    EXPECT_EQ(textOf("suggestions.storage-analyzer-progress"),
              u"Analyzing · 1,234 files in 5 folders · /home/owner/Down\uFFFDloads"_s);
    click("suggestions.storage-analyzer-progress-stop");
    EXPECT_EQ(stops.count(), 1);
    state.isStopping = true;
    show();
    EXPECT_EQ(textOf("suggestions.storage-analyzer-progress"), u"Stopping…"_s);
    state.storageAnalyzerBusy = state.isStopping = false;
    show();
    EXPECT_EQ(visible("suggestions.storage-analyzer-progress"), nullptr);
    EXPECT_TRUE(button("suggestions.analyze-files").isEnabled());
}

TEST_F(StorageAnalyzerCardTest, ABackupCanBeFollowedAndStopped) {
    const QSignalSpy stops(&card, &StorageAnalyzerCard::backupStopWanted);
    state.storageOptimizationSuggestions = {file("film.mkv", 1610612736, "Back up or archive")};
    show();
    EXPECT_TRUE(button("suggestions.file-1.back-up").isEnabled());
    state.backup = BackupProgress{"film.mkv", 125829120, 1610612736, 83886080.0};
    show();
    EXPECT_EQ(textOf("suggestions.storage-analyzer-backup"),
              u"Backing up film.mkv · 120 MB of 1.5 GB · 80 MB/s"_s);
    EXPECT_FALSE(button("suggestions.file-1.back-up").isEnabled()) << "one at a time";
    click("suggestions.storage-analyzer-backup-stop");
    EXPECT_EQ(stops.count(), 1);
    state.backup.reset();
    show();
    EXPECT_TRUE(button("suggestions.file-1.back-up").isEnabled());
}

TEST_F(StorageAnalyzerCardTest, EachFileHasItsFiguresAndItsButtons) {
    state.storageOptimizationSuggestions = {
        file("<b>film</b>\u202e.mkv", 1610612736, "Back up or archive"),
        file("old.iso", 805306368, "Review for removal")};
    show();
    EXPECT_EQ(textOf("suggestions.file-1.title"), u"<b>film</b>\uFFFD.mkv"_s);
    EXPECT_EQ(textOf("suggestions.file-1.size"), u"1.5 GB"_s);
    EXPECT_EQ(textOf("suggestions.file-1.detail"), u"~/Downloads"_s);
    EXPECT_EQ(textOf("suggestions.file-1.recommendation"), u"Back up or archive"_s);
    EXPECT_EQ(textOf("suggestions.file-2.recommendation"), u"Review for removal"_s);
    EXPECT_EQ(textOf("suggestions.file-2.reason"), u"Because."_s);
    EXPECT_EQ(button("suggestions.file-2.trash").accessibleName(), u"Trash old.iso"_s);
    std::vector<std::string> wanted;
    const auto note = [&wanted](const char* what) {
        return [&wanted, what](const StorageOptimizationSuggestion& each) {
            wanted.push_back(what + each.title);
        };
    };
    QObject::connect(&card, &StorageAnalyzerCard::revealWanted, &card, note("reveal "));
    QObject::connect(&card, &StorageAnalyzerCard::backupWanted, &card, note("back up "));
    QObject::connect(&card, &StorageAnalyzerCard::trashWanted, &card, note("trash "));
    for (const char* each : {"reveal", "back-up", "trash"}) {
        click((std::string("suggestions.file-2.") + each).c_str());
    }
    EXPECT_THAT(wanted, testing::ElementsAre("reveal old.iso", "back up old.iso", "trash old.iso"));
}

TEST_F(StorageAnalyzerCardTest, TheRowsStayUntilThereAreOthers) {
    state.storageOptimizationSuggestions = {file("a.zip", 2 * 104857600, "Review for removal"),
                                            file("b.zip", 104857600, "Review for removal")};
    show();
    PaintCount paints(*visible("suggestions.file-1"));
    state.storageAnalyzerStatus = "Another status.";
    show();
    EXPECT_EQ(paints.take(), 0);
    state.storageOptimizationSuggestions.erase(state.storageOptimizationSuggestions.begin());
    show();
    EXPECT_EQ(textOf("suggestions.file-1.title"), u"b.zip"_s);
    EXPECT_EQ(visible("suggestions.file-2"), nullptr);
}

}  // namespace
}  // namespace tallowcrest
