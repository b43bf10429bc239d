#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <QString>

/// The texts about updates. Main thread.
namespace tallowcrest {

/// How far a download is, in bytes; `total` is absent when that is unknown. The version may be any
/// text.
QString updateDownloadLine(const std::string& version, std::uint64_t received,
                           std::optional<std::uint64_t> total);

}  // namespace tallowcrest
