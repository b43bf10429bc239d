#pragma once

#include <string>
#include <vector>

#include "disk/disk_records.h"
#include "presentation/screens/optimization_suggestions/personal_file_row.h"
#include "presentation/widgets/card.h"

class QPushButton;

namespace tallowcrest {

class ProgressRow;
struct PersonalFilesState;

/// "AI Storage Analyzer": the largest personal files, and the analysis and the backup under way.
/// Its rows are made when there are files to show, and stay as they are until there are others.
/// Main thread.
class StorageAnalyzerCard final : public Card {
    Q_OBJECT

public:
    /// `offers` is what the rows offer.
    /// `videos` is what texts call the folder of films.
    StorageAnalyzerCard(const PersonalFileRow::Offers& offers, const std::string& videos,
                        QWidget* parent = nullptr);

    /// `isReplyAwaited` says that an analysis of the advisor is under way.
    void show(const PersonalFilesState& state, bool isReplyAwaited);

signals:
    // The owner pressed the button of that name.
    void analysisWanted();
    void analysisStopWanted();
    void backupStopWanted();
    // The owner pressed a button of this file.
    void revealWanted(const tallowcrest::StorageOptimizationSuggestion& file);
    void backupWanted(const tallowcrest::StorageOptimizationSuggestion& file);
    void trashWanted(const tallowcrest::StorageOptimizationSuggestion& file);

private:
    void addRow();
    void showRows(const std::vector<StorageOptimizationSuggestion>& files);

    PersonalFileRow::Offers offers_;
    QPushButton* analyze_ = nullptr;
    ElidedLabel* status_ = nullptr;
    ElidedLabel* reply_ = nullptr;
    ProgressRow* analysis_ = nullptr;
    ProgressRow* backup_ = nullptr;
    std::vector<PersonalFileRow*> rows_;
    std::vector<StorageOptimizationSuggestion> shown_;
};

}  // namespace tallowcrest
