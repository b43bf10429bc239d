#pragma once

#include <string>
#include <utility>

#include "core/observable.h"
#include "core/routes.h"

namespace tallowcrest {

/// Where the owner is in the window: state of the shell that outlives a closed window.
/// Main thread.
class Navigation {
public:
    Navigation(Observable& observable, bool showSetupWizard)
        : observable_(observable), showSetupWizard_(showSetupWizard) {}

    AppRoute selectedRoute() const { return selectedRoute_; }
    void setSelectedRoute(AppRoute route) { set(selectedRoute_, route); }

    /// The text in the filter field of the process list, as typed.
    const std::string& processFilter() const { return processFilter_; }
    void setProcessFilter(std::string text) { set(processFilter_, std::move(text)); }

    bool showSetupWizard() const { return showSetupWizard_; }

private:
    template <class Field, class Value>
    void set(Field& field, Value&& value) {
        if (field != value) {
            field = std::forward<Value>(value);
            observable_.changed();
        }
    }

    Observable& observable_;
    AppRoute selectedRoute_ = AppRoute::overview;
    std::string processFilter_;
    bool showSetupWizard_;
};

}  // namespace tallowcrest
