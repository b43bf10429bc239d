#pragma once

#include <filesystem>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "platform/settings/settings_database.h"

namespace tallowcrest {

/// Stores a threshold in the log of a settings file that has one already, and lets nobody else read
/// the file until its end, which changes no file.
class LockingWriter {
public:
    LockingWriter(const std::filesystem::path& file, double threshold) {
        EXPECT_EQ(connection_.open(file, SqliteConnection::Access::readWrite, {}), SQLITE_OK);
        EXPECT_EQ(connection_.execute(fmt::format("PRAGMA locking_mode = EXCLUSIVE;"
                                                  "UPDATE settings SET value = {:.1f} "
                                                  "WHERE key = 'Tallowcrest.warningThreshold'",
                                                  threshold)),
                  SQLITE_OK);
    }

private:
    SqliteConnection connection_;
};

}  // namespace tallowcrest
