#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/remote_records.h"

namespace tallowcrest {

class Observable;
struct Services;

/// What the local client of the tailnet has told.
struct TailnetState {
    /// Online peers first, then by name. Empty when there are none or the last reading failed.
    std::vector<TailDevice> tailDevices;
    /// What is wrong with the client of this machine, one line each.
    std::vector<std::string> tailscaleHealthIssues;

    bool operator==(const TailnetState&) const = default;
};

/// The other machines of the tailnet. Main thread.
class Tailnet {
public:
    /// The references must outlive the object.
    explicit Tailnet(const Services& services);
    ~Tailnet();
    Tailnet(const Tailnet&) = delete;
    Tailnet& operator=(const Tailnet&) = delete;

    const TailnetState& state() const { return state_; }

    /// Replaces the whole state.
    void publish(TailnetState state);

    /// Notifies of a changed state.
    Observable& observable() { return *observable_; }

private:
    std::unique_ptr<Observable> observable_;
    TailnetState state_;
};

}  // namespace tallowcrest
