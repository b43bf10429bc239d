#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "integration/installation_files.h"

namespace tallowcrest {

/// Files and links in memory. Each change is recorded, with its path.
class FakeInstallationFiles final : public InstallationFiles {
public:
    bool isLink(const std::string& path) const override { return links.contains(path); }
    bool exists(const std::string& path) const override {
        return files.contains(path) || folders.contains(path);
    }
    std::string readFile(const std::string& path) const override {
        const auto found = files.find(path);
        return found == files.end() ? std::string() : found->second;
    }
    std::vector<FolderEntry> entriesOf(const std::string& folder) const override {
        std::vector<FolderEntry> entries;
        for (const auto& [path, text] : files) {
            if (path.starts_with(folder + '/')) {
                entries.push_back({path.substr(folder.size() + 1), true});
            }
        }
        return entries;
    }
    Outcome makeFolder(const std::string& path) override {
        return change("makeFolder", path, [&] { folders.insert(path); });
    }
    std::shared_ptr<const void> reserve(const std::string& folder) override {
        return folder == reservedByAnother ? nullptr : std::make_shared<const int>();
    }
    Outcome writeFile(const std::string& path, std::string_view text, LinkedFolder) override {
        return change("writeFile", path, [&] { files[path] = text; });
    }
    Outcome makeLink(const std::string& path, const std::string& target) override {
        return change("makeLink", path, [&] { links[path] = target; });
    }
    Outcome removeFile(const std::string& path) override {
        return change("removeFile", path, [&] { files.erase(path); });
    }

    std::map<std::string, std::string> files;
    std::set<std::string> folders;
    std::map<std::string, std::string> links;
    std::string reservedByAnother;
    /// Paths at which every change fails, and the reason.
    std::map<std::string, std::string> failures;
    std::vector<std::string> changes;

private:
    template <class Change>
    Outcome change(const char* name, const std::string& path, Change change) {
        changes.push_back(std::string(name) + ' ' + path);
        if (const auto failure = failures.find(path); failure != failures.end()) {
            return Outcome::failed(failure->second);
        }
        change();
        return Outcome::done();
    }
};

}  // namespace tallowcrest
