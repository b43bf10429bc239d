#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/app/private_data.h"
#include "tests/support/scoped_variable.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {

/// While this object exists, this process and its children look for caches, personal folders and
/// the Trash in a folder of their own.
class OwnDiskPlaces {
public:
    OwnDiskPlaces() {
        namespace fs = std::filesystem;
        for (const char* made : {"caches", "config", "Herunterladen", "Filme", "backups"}) {
            fs::create_directory(folder_.path(made));
        }
        std::ofstream entries(folder_.path("config/user-dirs.dirs"));
        entries << "XDG_DOWNLOAD_DIR=\"" << downloads().string() << "\"\n";
        entries << "XDG_VIDEOS_DIR=\"" << videos().string() << "\"\n";
        for (const char* none : {"DESKTOP", "DOCUMENTS", "PICTURES", "MUSIC"}) {
            entries << "XDG_" << none << "_DIR=\"" << folder_.path("none") << "\"\n";
        }
    }

    std::filesystem::path caches() const { return folder_.path("caches"); }
    std::filesystem::path downloads() const { return folder_.path("Herunterladen"); }
    std::filesystem::path videos() const { return folder_.path("Filme"); }
    std::filesystem::path backups() const { return folder_.path("backups"); }
    std::filesystem::path trash() const { return data_.folder() / "Trash"; }

private:
    TemporaryFolder folder_;
    PrivateData data_;
    ScopedVariable caches_{"XDG_CACHE_HOME", folder_.path("caches")};
    ScopedVariable config_{"XDG_CONFIG_HOME", folder_.path("config")};
};

}  // namespace tallowcrest
