#pragma once

#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

#include "core/date.h"
#include "core/records_hash.h"
#include "core/uuid.h"

namespace tallowcrest {

/// The files that one reviewed cache clean-up would move.
struct DiskCleanupPlan {
    std::vector<std::string> urls;  ///< absolute paths
    std::int64_t bytes = 0;
    Date createdAt;

    auto fields() const { return std::tie(urls, bytes, createdAt); }
    bool operator==(const DiskCleanupPlan&) const = default;
};

/// One measured storage area. Identity: `path`.
struct DiskStorageOffender {
    std::string name;
    std::string path;
    std::int64_t bytes = 0;

    const std::string& id() const { return path; }
    auto fields() const { return std::tie(name, path, bytes); }
    bool operator==(const DiskStorageOffender&) const = default;
};

/// Identity: `id`.
struct StorageOptimizationSuggestion {
    UUID id;
    std::string title;
    std::string detail;
    std::string path;
    std::int64_t bytes = 0;
    std::string recommendation;
    std::string reason;

    auto fields() const { return std::tie(id, title, detail, path, bytes, recommendation, reason); }
    bool operator==(const StorageOptimizationSuggestion&) const = default;
};

}  // namespace tallowcrest
