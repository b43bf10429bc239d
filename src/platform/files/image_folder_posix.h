#pragma once

#include <filesystem>
#include <utility>

#include "integration/update_ports.h"

namespace tallowcrest {

/// A folder of the file system for images of updates, which other users may write to as well, as
/// they may to /tmp.
class PosixImageFolder final : public ImageFolder {
public:
    /// Where `place` is not absolute, no image can be begun.
    explicit PosixImageFolder(std::filesystem::path place) : place_(std::move(place)) {}

    std::variant<std::unique_ptr<DownloadedImage>, UpdateError> begin() override;
    void remove(const std::string& path) override;

private:
    std::filesystem::path place_;
};

}  // namespace tallowcrest
