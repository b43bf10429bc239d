#include "disk/personal_file_texts.h"

#include <fmt/format.h>

#include "core/number_text.h"
#include "sampling/binary_units.h"

namespace tallowcrest::personal_file_texts {
namespace {

double gigabytes(std::int64_t bytes) {
    return static_cast<double>(bytes) * gigabytesPerByte;
}

}  // namespace

std::string found(std::size_t count) {
    return count == 0 ? "No accessible personal files larger than 100 MB were found."
                      : fmt::format(
                            "Found {} large personal files. Review each recommendation "
                            "before acting.",
                            count);
}

std::string stopped(std::size_t count) {
    return fmt::format("Analysis stopped. It had found {} large personal file{}.", count,
                       pluralEnding(count));
}

std::string backingUp(std::string_view title) {
    return fmt::format("Backing up {}…", title);
}

std::string checkingCopy(std::string_view title) {
    return fmt::format("Checking the copy of {}…", title);
}

std::string backedUp(std::string_view fileName) {
    return fmt::format("Backup complete: {}", fileName);
}

std::string backupReceipt(std::string_view title, std::string_view destination) {
    return fmt::format("Copied {} to {}. The original remains in place.", title, destination);
}

std::string backupFailed(std::string_view error) {
    return fmt::format("Backup failed: {}", error);
}

std::string backupFailedMessage(std::string_view title, std::string_view error) {
    return fmt::format("Could not back up {}: {}", title, error);
}

std::string backupStopped(std::string_view title) {
    return fmt::format("Backup of {} stopped. No copy was left.", title);
}

std::string stoppingBackup(std::string_view title) {
    return fmt::format("Stopping the backup of {}…", title);
}

std::string backupGivenUp(std::string_view title) {
    return fmt::format("Backup of {} stopped. The disk did not answer.", title);
}

std::string backupGivenUpReceipt(std::string_view title) {
    return fmt::format(
        "Stopped the copy of {} and did not wait for its end, because the disk did not answer. A "
        "hidden part of it, or the whole copy, may be left there. The next backup into that folder "
        "removes a hidden part. The original remains in place.",
        title);
}

std::string backupStoppedReceipt(std::string_view title) {
    return fmt::format(
        "Stopped the copy of {} before its end. No part of it was left. The "
        "original remains in place.",
        title);
}

ConfirmationRequest trashRequest(const StorageOptimizationSuggestion& suggestion) {
    return {.id = UUID::random(),
            .title = fmt::format("Move {} to Trash?", suggestion.title),
            .message = fmt::format("This moves the selected {:.2f} GB file to Trash. Back it up "
                                   "first if it may be important.",
                                   gigabytes(suggestion.bytes)),
            .confirmTitle = "Move to Trash",
            .kind = std::string(confirmationKind),
            .hostName = {},
            .pid = {}};
}

std::string trashFailed(std::string_view title, std::string_view error) {
    return fmt::format("Could not move {} to Trash: {}", title, error);
}

std::string trashUnansweredReceipt(std::string_view title) {
    return fmt::format(
        "Began to move {} to Trash after confirmation. The disk did not answer in time. The file "
        "may have been moved: it is in its folder or in Trash.",
        title);
}

std::string trashed(std::string_view title) {
    return fmt::format("Moved {} to Trash.", title);
}

std::string trashReceipt(const StorageOptimizationSuggestion& suggestion) {
    return fmt::format("Moved {} ({:.2f} GB) to Trash after confirmation.", suggestion.title,
                       gigabytes(suggestion.bytes));
}

}  // namespace tallowcrest::personal_file_texts
