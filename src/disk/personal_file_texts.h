#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "core/local_records.h"
#include "disk/disk_records.h"

/// What the analysis of personal files says. Titles and paths are as texts show them; `error` is in
/// the system's words. Pure; any thread.
namespace tallowcrest::personal_file_texts {

inline constexpr std::string_view confirmationKind = "storage_suggestion_trash";

/// The error of a move to the Trash that the end of the program has kept from beginning.
inline constexpr const char* canceled = "canceled";

inline constexpr std::string_view atStart =
    "Run the analyzer to find large personal files worth backing up or reviewing.";
inline constexpr std::string_view analyzing = "Analyzing large personal files locally…";
inline constexpr std::string_view analyzedEvent =
    "Analyzed personal files locally; no file contents or paths were sent to AI and no files were "
    "changed.";
inline constexpr std::string_view stoppedEvent =
    "Stopped the analysis of personal files before its end; no file contents or paths were sent "
    "to AI and no files were changed.";

std::string found(std::size_t count);
/// After the owner has stopped an analysis with `count` files in its list.
std::string stopped(std::size_t count);

std::string backingUp(std::string_view title);
std::string checkingCopy(std::string_view title);
std::string backedUp(std::string_view fileName);
std::string backupReceipt(std::string_view title, std::string_view destination);
std::string backupFailed(std::string_view error);
std::string backupFailedMessage(std::string_view title, std::string_view error);
std::string stoppingBackup(std::string_view title);
std::string backupStopped(std::string_view title);
std::string backupStoppedReceipt(std::string_view title);
/// For a copy that has not ended long after it was stopped.
std::string backupGivenUp(std::string_view title);
std::string backupGivenUpReceipt(std::string_view title);

/// The question to the owner, with a new identifier.
ConfirmationRequest trashRequest(const StorageOptimizationSuggestion& suggestion);
std::string trashFailed(std::string_view title, std::string_view error);
/// For a move whose end is not known.
std::string trashUnansweredReceipt(std::string_view title);
std::string trashed(std::string_view title);
std::string trashReceipt(const StorageOptimizationSuggestion& suggestion);

}  // namespace tallowcrest::personal_file_texts
