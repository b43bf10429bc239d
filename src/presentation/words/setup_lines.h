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

/// `installTarget` is where an installation copies the program, as texts name it; empty when it
/// copies nothing.
std::vector<SetupLine> setupLines(const std::string& installTarget, const std::string& sshUsername);

}  // namespace tallowcrest
