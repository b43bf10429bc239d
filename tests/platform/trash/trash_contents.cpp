#include "tests/platform/trash/trash_contents.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <sstream>
#include <utility>

#include "tests/support/file_text.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;

std::vector<fs::path> entriesOf(const fs::path& folder) {
    std::error_code error;
    std::vector<fs::path> entries;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        entries.push_back(entry.path());
    }
    return entries;
}

std::string percentDecoded(const std::string& text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size()) {
            bytes += static_cast<char>(std::strtol(text.substr(i + 1, 2).c_str(), nullptr, 16));
            i += 2;
        } else {
            bytes += text[i];
        }
    }
    return bytes;
}

void readInfo(const std::string& text, TrashedFile& file) {
    constexpr const char* pathKey = "Path=";
    constexpr const char* dateKey = "DeletionDate=";
    std::istringstream lines(text);
    std::string line;
    if (!std::getline(lines, line) || line != "[Trash Info]") {
        return;
    }
    while (std::getline(lines, line)) {
        if (line.starts_with(pathKey)) {
            file.restorePath = percentDecoded(line.substr(std::string(pathKey).size()));
        } else if (line.starts_with(dateKey)) {
            file.deletionDate = line.substr(std::string(dateKey).size());
        }
    }
}

}  // namespace

std::vector<TrashedFile> trashContents(const fs::path& trash) {
    std::map<std::string, TrashedFile> files;
    for (const fs::path& path : entriesOf(trash / "files")) {
        TrashedFile& file = files[path.filename()];
        file.isThere = true;
        file.isRegular = fs::is_regular_file(fs::symlink_status(path));
        file.content = file.isRegular ? fileText(path) : "";
    }
    for (const fs::path& path : entriesOf(trash / "info")) {
        readInfo(fileText(path), files[path.stem()]);
    }
    std::vector<TrashedFile> result;
    for (auto& [name, file] : files) {
        file.storedName = name;
        result.push_back(std::move(file));
    }
    return result;
}

}  // namespace tallowcrest
