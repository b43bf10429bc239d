#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "core/date.h"
#include "core/settings/settings.h"
#include "disk/disk_records.h"
#include "disk/file_identity.h"
#include "disk/file_walks.h"

/// What a clean-up of old cache files may touch. Pure; any thread.
namespace tallowcrest::DiskAutopilotSafetyPolicy {

/// The most files in one plan and in one run.
inline constexpr std::size_t maxFilesPerRun = 500;
/// A plan of this age or older must not be carried out.
inline constexpr double planExpirySeconds = 1800.0;

// The limits of the settings are applied again wherever their values are used.
using tallowcrest::clampedAgeDays;
using tallowcrest::clampedMaxGB;

/// Whether a file is inside the folder of the user's caches; the folder itself is not. Both paths
/// are absolute, normal and without links.
bool isInsideUserCaches(const std::string& file, const std::string& caches);

/// Whether the folder of the caches is the home directory or contains it. Both paths as above.
bool containsHome(const std::string& caches, const std::string& home);

/// Whether the folder of the caches is a folder of other files, contains it or is inside it. Both
/// paths as above.
bool overlaps(const std::string& caches, const std::string& kept);

/// The most bytes that one run may move.
std::int64_t byteCap(double maxGB);

/// A file's date must be before this one.
Date cutOffDate(Date now, double ageDays);

/// Whether the file is old enough and not empty.
bool isEligible(const FoundFile& file, Date cutOff);

/// Whether `bytes` more fit below `cap` after `taken`. None is negative.
bool fits(std::int64_t taken, std::int64_t bytes, std::int64_t cap);

/// The plan without some files.
DiskCleanupPlan planWithout(DiskCleanupPlan plan, const std::vector<FileIdentity>& files);

/// Whether a plan must not be carried out any more. When the clock was set back by as much as the
/// limit, its age is unknown.
bool isExpired(Date createdAt, Date now);

}  // namespace tallowcrest::DiskAutopilotSafetyPolicy
