#include "remote/tailnet.h"

#include <utility>

#include "core/jobs/jobs.h"
#include "core/observable.h"
#include "core/services.h"

namespace tallowcrest {

Tailnet::Tailnet(const Services& services)
    : observable_(std::make_unique<Observable>(services.jobs.mainQueue())) {}

Tailnet::~Tailnet() = default;

void Tailnet::publish(TailnetState state) {
    if (state == state_) {
        return;
    }
    state_ = std::move(state);
    observable_->changed();
}

}  // namespace tallowcrest
