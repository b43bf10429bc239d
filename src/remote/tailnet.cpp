#include "remote/tailnet.h"

#include <utility>

#include "actions/desktop_actions.h"
#include "core/observable.h"
#include "core/services.h"

namespace tallowcrest {

Tailnet::Tailnet(const Services& services, TailnetSources sources, Pasteboard& pasteboard)
    : sources_(std::move(sources)),
      pasteboard_(pasteboard),
      observable_(std::make_unique<Observable>(services.jobs.mainQueue())),
      jobs_(services.jobs) {}

Tailnet::~Tailnet() = default;

void Tailnet::beginReading() {
    if (isReading_ || sources_.cli.empty()) {
        return;
    }
    isReading_ = true;
    jobs_.run(
        Lane::tailnet,
        [sources = sources_](const Stop& stop) { return readTailnet(sources, stop.stopToken()); },
        [this](TailnetState state) {
            isReading_ = false;
            unpublished_ = std::move(state);
        });
}

void Tailnet::publishReading() {
    if (unpublished_) {
        publish(*std::exchange(unpublished_, std::nullopt));
    }
}

void Tailnet::publish(TailnetState state) {
    if (state == state_) {
        return;
    }
    state_ = std::move(state);
    observable_->changed();
}

Outcome Tailnet::copyTailscaleHealthCommand() {
    return pasteboard_.copyWithoutEvent("tailscale status && tailscale netcheck",
                                        "Copied Tailscale health command.");
}

}  // namespace tallowcrest
