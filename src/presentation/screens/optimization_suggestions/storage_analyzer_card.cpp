#include "presentation/screens/optimization_suggestions/storage_analyzer_card.h"

#include <QPushButton>
#include <QVBoxLayout>

#include "disk/personal_files.h"
#include "presentation/screens/optimization_suggestions/optimization_suggestions_lines.h"
#include "presentation/screens/shared/command_button.h"
#include "presentation/screens/shared/list_rows.h"
#include "presentation/screens/shared/progress_row.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/words/dashboard_text.h"
#include "presentation/words/disk_lines.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

StorageAnalyzerCard::StorageAnalyzerCard(const PersonalFileRow::Offers& offers,
                                         const std::string& videos, QWidget* parent)
    : Card(parent), offers_(offers) {
    setObjectName(u"suggestions.storage-analyzer"_s);
    setHeader(u"externaldrive.badge.magnifyingglass"_s, u"AI Storage Analyzer"_s);
    const auto addLabel = [this](const char* part, const LabelStyle& style, int lines) {
        auto* label = makeLabel(objectName() + QString::fromLatin1(part), style, lines, this);
        contentLayout()->addWidget(label);
        return label;
    };
    const auto quiet = onCard(&CrestFonts::caption, &CrestTheme::secondaryText);
    addLabel("-text", onCard(&CrestFonts::body, &CrestTheme::secondaryText), 8)
        ->setText(
            u"The analyzer reviews accessible files in Downloads, Desktop, Documents, %1, and "
            "Pictures. File contents and paths stay on this Mac. OpenAI receives only the existing "
            "redacted system diagnostics when AI Advisor is enabled."_s.arg(
                dashboard_text::text(videos)));
    analyze_ = makeButton({"Analyze Large Personal Files", "folder.badge.gearshape",
                           commands::analyzeStorage.description},
                          u"suggestions.analyze-files"_s, this);
    contentLayout()->addWidget(analyze_, 0, Qt::AlignLeft);
    addLabel("-caption", quiet, 2)->setText(u"100 MB minimum · personal folders only"_s);
    status_ = addLabel("-status", onCard(&CrestFonts::body), 3);
    reply_ = addLabel("-reply", quiet, 2);
    reply_->setText(u"The advisor is writing its analysis; it will appear below."_s);
    analysis_ = new ProgressRow(objectName() + u"-progress"_s, u"the analysis"_s, this);
    backup_ = new ProgressRow(objectName() + u"-backup"_s, u"the backup"_s,
                              {u"Stop"_s, u"Leaves no copy; the file stays"_s}, this);
    contentLayout()->addWidget(analysis_);
    contentLayout()->addWidget(backup_);
    connect(analyze_, &QPushButton::clicked, this, &StorageAnalyzerCard::analysisWanted);
    connect(analysis_, &ProgressRow::stopWanted, this, &StorageAnalyzerCard::analysisStopWanted);
    connect(backup_, &ProgressRow::stopWanted, this, &StorageAnalyzerCard::backupStopWanted);
}

void StorageAnalyzerCard::addRow() {
    const std::size_t index = rows_.size();
    auto* row = new PersonalFileRow(u"suggestions.file-%1"_s.arg(index + 1), offers_, this);
    // A copy, because what follows may change the list.
    const auto file = [this, index] { return StorageOptimizationSuggestion(shown_.at(index)); };
    connect(row, &PersonalFileRow::revealWanted, this, [this, file] { emit revealWanted(file()); });
    connect(row, &PersonalFileRow::backupWanted, this, [this, file] { emit backupWanted(file()); });
    connect(row, &PersonalFileRow::trashWanted, this, [this, file] { emit trashWanted(file()); });
    contentLayout()->addWidget(row);
    // New controls would come after all others of the window.
    row->setTabPlaceAfter(rows_.empty() ? backup_->stopButton() : rows_.back()->lastControl());
    rows_.push_back(row);
}

void StorageAnalyzerCard::show(const PersonalFilesState& state, bool isReplyAwaited) {
    status_->setText(dashboard_text::text(state.storageAnalyzerStatus));
    reply_->setVisible(isReplyAwaited);
    setButtonEnabled(*analyze_, !state.storageAnalyzerBusy);
    analysis_->show(
        state.storageAnalyzerBusy ? searchLine(u"Analyzing"_s, state.progress) : QString(),
        state.isStopping);
    backup_->show(
        state.backup ? optimization_suggestions_lines::backupLine(*state.backup) : QString(),
        state.backup && state.backup->isStopping);
    showRows(state.storageOptimizationSuggestions);
    for (PersonalFileRow* row : rows_) {
        row->setBackupEnabled(!state.backup);
    }
}

void StorageAnalyzerCard::showRows(const std::vector<StorageOptimizationSuggestion>& files) {
    if (files == shown_) {
        return;
    }
    shown_ = files;
    showLines(rows_, optimization_suggestions_lines::personalFileLines(shown_),
              [this] { addRow(); });
}

}  // namespace tallowcrest
