#pragma once

#include <functional>
#include <vector>

#include <QString>

#include "core/routes.h"
#include "tests/presentation/shell/rig.h"

namespace tallowcrest {

/// A state of the window in which controls are looked for.
struct Place {
    QString name;
    AppRoute route;
    std::function<void(Rig&)> open;
};

/// Makes one process of a group of two the target. It is not the first one, so that reviewing the
/// group is a change.
void selectTarget(Rig& rig);
void engageStop(Rig& rig);

/// All that together have every control of the program.
std::vector<Place> places();

}  // namespace tallowcrest
