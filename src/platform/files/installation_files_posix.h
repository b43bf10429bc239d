#pragma once

#include "integration/installation_files.h"

namespace tallowcrest {

/// The files on disk. What is written appears whole or not at all; a process killed meanwhile may
/// leave a hidden temporary file.
class PosixInstallationFiles final : public InstallationFiles {
public:
    bool isLink(const std::string& path) const override;
    bool exists(const std::string& path) const override;
    std::string readFile(const std::string& path) const override;
    std::vector<FolderEntry> entriesOf(const std::string& folder) const override;
    Outcome makeFolder(const std::string& path) override;
    std::shared_ptr<const void> reserve(const std::string& folder) override;
    Outcome writeFile(const std::string& path, std::string_view text, LinkedFolder folder) override;
    Outcome makeLink(const std::string& path, const std::string& target) override;
    Outcome removeFile(const std::string& path) override;
};

}  // namespace tallowcrest
