#pragma once

#include <filesystem>
#include <functional>

#include "integration/update_ports.h"

namespace tallowcrest {

/// A folder of the file system for images of updates, which other users may write to as well, as
/// they may to /tmp.
class PosixImageFolder final : public ImageFolder {
public:
    /// The absolute path of the folder, asked for each image.
    using Place = std::function<std::filesystem::path()>;

    explicit PosixImageFolder(Place place) : place_(std::move(place)) {}

    std::variant<std::unique_ptr<DownloadedImage>, std::string> begin() override;
    void remove(const std::string& path) override;

private:
    Place place_;
};

}  // namespace tallowcrest
