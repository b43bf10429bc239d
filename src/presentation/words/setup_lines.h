#pragma once

#include <string>
#include <vector>

#include <QString>

/// The texts of the setup wizard. Main thread.
namespace tallowcrest {

struct SetupLine {
    QString title;
    QString text;

    bool operator==(const SetupLine&) const = default;
};

/// `installTarget` is where the program is installed, as texts name it.
std::vector<SetupLine> setupLines(const std::string& installTarget, const std::string& sshUsername);

}  // namespace tallowcrest
