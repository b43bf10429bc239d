#include "remote/tailnet.h"

#include <cmath>
#include <utility>

#include "actions/desktop_actions.h"
#include "core/clock.h"
#include "core/observable.h"
#include "core/services.h"

namespace tallowcrest {
namespace {

/// The deadlines of a reading add up to less.
constexpr double longestReading = 12;

}  // namespace

Tailnet::Tailnet(const Services& services, TailnetSources sources, Pasteboard& pasteboard)
    : sources_(std::move(sources)),
      pasteboard_(pasteboard),
      observable_(std::make_unique<Observable>(services.jobs.mainQueue())),
      clock_(services.clock),
      jobs_(services.jobs) {}

Tailnet::~Tailnet() = default;

void Tailnet::beginReading() {
    if (sources_.cli.empty()) {
        return;
    }
    if (reading_) {
        if (std::abs(secondsBetween(readingSince_, clock_.now())) < longestReading) {
            return;
        }
        // A tool that ignores the signal at its deadline would keep the old figures in view.
        reading_.reset();
        unpublished_ = TailnetState{};
    }
    readingSince_ = clock_.now();
    reading_.emplace(jobs_).run(
        Lane::tailnet,
        [sources = sources_](const Stop& stop) { return readTailnet(sources, stop.stopToken()); },
        [this](TailnetState state) {
            unpublished_ = std::move(state);
            reading_.reset();
        });
}

void Tailnet::publishReading() {
    if (unpublished_) {
        if (!std::exchange(isRead_, true)) {
            observable_->changed();
        }
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
