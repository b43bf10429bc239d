#pragma once

#include <string>
#include <utility>

namespace tallowcrest {

/// The result of an operation that the owner asked for. The message is the text that was recorded
/// in the activity log; it is empty when nothing was recorded.
struct Outcome {
    enum class Kind {
        done,
        asked,    ///< a confirmation or a background job decides; the log tells what became of it
        refused,  ///< not allowed, or nothing to do it with; nothing was tried
        failed,
    };

    Kind kind = Kind::done;
    std::string message;

    static Outcome done(std::string message = {}) { return {Kind::done, std::move(message)}; }
    static Outcome asked(std::string message = {}) { return {Kind::asked, std::move(message)}; }
    static Outcome refused(std::string message) { return {Kind::refused, std::move(message)}; }
    static Outcome failed(std::string message) { return {Kind::failed, std::move(message)}; }

    /// Done or on its way.
    bool isAccepted() const { return kind == Kind::done || kind == Kind::asked; }

    bool operator==(const Outcome&) const = default;
};

}  // namespace tallowcrest
