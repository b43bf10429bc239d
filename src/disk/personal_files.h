#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/confirmation_desk.h"
#include "core/date.h"
#include "core/jobs/jobs.h"
#include "core/outcome.h"
#include "core/services.h"
#include "disk/disk_ports.h"
#include "disk/disk_records.h"
#include "disk/file_copy.h"
#include "disk/file_walks.h"
#include "disk/personal_file_texts.h"
#include "disk/shared_result.h"
#include "disk/stoppable_run.h"
#include "disk/trash.h"

namespace tallowcrest {

class Observable;
class Provider;

/// A copy under way.
struct BackupProgress {
    std::string title;            ///< of the file
    std::int64_t copied = 0;      ///< bytes; while the copy is checked, those compared
    std::int64_t all = 0;         ///< bytes; 0 until the copy has begun
    double bytesPerSecond = 0.0;  ///< the mean so far; 0 while unknown
    bool isStopping = false;
    bool isChecking = false;  ///< the copy is there and is compared with the file

    bool operator==(const BackupProgress&) const = default;
};

struct PersonalFilesState {
    /// Largest first. Empty before the first analysis.
    std::vector<StorageOptimizationSuggestion> storageOptimizationSuggestions;
    bool storageAnalyzerBusy = false;
    std::string storageAnalyzerStatus{personal_file_texts::atStart};
    std::string storageAnalysisRootName = "Personal folders";
    /// What the last request to move a file to the Trash was about, until it is confirmed.
    std::optional<StorageOptimizationSuggestion> pendingStorageSuggestion;
    SearchProgress progress;               ///< meaningless while not busy
    bool isStopping = false;               ///< the analysis was asked to stop
    std::optional<BackupProgress> backup;  ///< absent while no copy is under way
};

/// Finds the largest personal files, and reveals, copies or moves one of them to the Trash when the
/// owner says so. Opens no file but to copy it, and sends no path anywhere. Main thread.
class PersonalFiles {
public:
    /// The references must outlive the object. `refresh` takes a new sample.
    struct Dependencies {
        Services services;
        Provider& provider;
        std::function<void()> refresh;
        DiskPorts ports;
    };

    explicit PersonalFiles(Dependencies dependencies);
    ~PersonalFiles();
    PersonalFiles(const PersonalFiles&) = delete;
    PersonalFiles& operator=(const PersonalFiles&) = delete;

    const PersonalFilesState& state() const { return state_; }

    /// Begins an analysis, and asks for one of the advisor if it has a key and is idle. Ignored
    /// while one is under way.
    Outcome analyzePersonalFiles();
    /// The same: the personal folders are always those of the platform.
    Outcome chooseStorageFolder() { return analyzePersonalFiles(); }
    /// Ends the analysis with what it has found. Ignored while none is under way.
    Outcome stopAnalysis();

    /// What texts call the folder of films.
    const std::string& videos() const { return dependencies_.ports.places.videos; }

    /// Whether there is a file manager to show files in, and a chooser for the folder of a backup.
    bool canReveal() const;
    bool canBackUp() const;

    /// Shows the file in the file manager. Whether it still exists is not tested.
    Outcome revealSuggestion(const StorageOptimizationSuggestion& suggestion);

    /// Asks for a folder and copies the file there, beside a file that has its name already.
    /// Refused while a copy is under way.
    Outcome backUpSuggestion(const StorageOptimizationSuggestion& suggestion);
    /// Ends the copy under way, of which nothing is left. It is not waited for longer than ten
    /// seconds; of one that a volume without an answer keeps, a hidden part or the whole can
    /// remain. Ignored while there is none.
    Outcome stopBackup();

    /// Asks whether to move the file to the Trash.
    Outcome requestTrashSuggestion(const StorageOptimizationSuggestion& suggestion);
    /// Moves the file that was asked about, unless it is another one by now.
    Outcome trashPendingSuggestion();

    /// For the end of the program, after `Jobs::stopAll`: writes the receipts of moves and of a
    /// copy that are over and have not been told yet, and what became of moves that never began. Of
    /// a file that is still on its way the receipt says that it may have been moved. A
    /// copy may get its name later than this, so that it is to be called again when no job runs any
    /// more.
    void recordUnfinished();

    /// Notifies of a changed state.
    Observable& observable() { return *observable_; }

private:
    /// A copy that is over.
    struct Copied {
        std::string destination;
        std::optional<std::string> error;
    };

    /// What its job tells of a move.
    struct Move {
        std::atomic<bool> hasBegun = false;
        SharedResult<TrashOutcome> outcome;
    };
    /// An analysis that is over.
    struct Analyzed {
        std::vector<FoundFile> files;
        bool isComplete = false;  ///< it has ended before it was asked to stop
    };
    /// A file on its way to the Trash.
    struct Trashing {
        StorageOptimizationSuggestion suggestion;
        std::shared_ptr<Move> move;
    };
    /// A copy under way.
    struct Backup {
        StorageOptimizationSuggestion suggestion;
        std::shared_ptr<SharedResult<Copied>> copied;
    };

    void finishAnalysis(const Analyzed& analyzed);
    /// For one that has not ended long after it was stopped, as far as is known.
    void giveUpAnalysis();
    void showFound(const std::vector<FoundFile>& files);
    void endAnalysis(std::string status, std::string_view event);
    void beginBackup(const StorageOptimizationSuggestion& suggestion, std::string folder);
    void showBackup(const CopyProgress& progress);
    /// Writes the receipt of `backupUnderWay_`.
    void recordBackup(const Copied& copied);
    void finishBackup(const Copied& copied);
    /// What has become of it is not known.
    void giveUpBackup();
    /// Writes the receipt of a move. True when the file was moved.
    bool recordTrash(const StorageOptimizationSuggestion& suggestion, const TrashOutcome& outcome);
    void finishTrash(const StorageOptimizationSuggestion& suggestion, const TrashOutcome& outcome);
    /// Before an operation on a file.
    void readBookmark() const;
    void setStatus(std::string status);
    Outcome refuse(std::string message) const;

    Dependencies dependencies_;
    std::unique_ptr<Observable> observable_;
    PersonalFilesState state_;
    std::unique_ptr<FolderQuestion> folderQuestion_;
    std::vector<Trashing> trashing_;                    ///< those whose end was not told yet
    std::shared_ptr<SharedResult<Analyzed>> analyzed_;  ///< of the latest analysis
    std::optional<Backup> backupUnderWay_;
    Date backupBegan_;  ///< or the check of the copy
    JobScope jobs_;
    StoppableRun analysis_;
    StoppableRun backup_;
    ConfirmationDesk::Registration handler_;
};

}  // namespace tallowcrest
