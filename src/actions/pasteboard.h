#pragma once

#include <functional>
#include <string>
#include <utility>

#include "core/activity_log.h"

namespace tallowcrest {

/// Puts texts where the owner can paste them from. Main thread.
class Pasteboard {
public:
    /// Replaces what the desktop's clipboard holds by one plain text.
    using Store = std::function<void(const std::string& text)>;

    /// An absent `store` means that there is no desktop to paste in.
    Pasteboard(ActivityLog& log, Store store) : log_(log), store_(std::move(store)) {}

    /// Stores `text` and records `message`.
    Outcome copyToPasteboard(const std::string& text, const std::string& message) {
        if (!store_) {
            return log_.record(Outcome::failed("There is no clipboard here."));
        }
        store_(text);
        return log_.record(Outcome::done(message));
    }

private:
    ActivityLog& log_;
    Store store_;
};

}  // namespace tallowcrest
