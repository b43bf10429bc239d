#include "presentation/shell/navigation.h"

#include "core/observable.h"

namespace tallowcrest {

Navigation::Navigation(MainQueue& mainQueue, bool showSetupWizard)
    : observable_(std::make_unique<Observable>(mainQueue)), showSetupWizard_(showSetupWizard) {}

Navigation::~Navigation() = default;

void Navigation::tellObservers() {
    observable_->changed();
}

}  // namespace tallowcrest
