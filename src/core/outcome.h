#pragma once

#include <string>
#include <utility>

namespace tallowcrest {

/// The result of an operation. When the owner asked for it, the message is the text that the owner
/// was given, as the last action and, unless the operation says otherwise, in the activity log. The
/// message of a failed port is the system's reason, for its caller to word. Empty when there is
/// nothing to say.
struct Outcome {
    enum class Kind {
        done,
        asked,    ///< a confirmation or a background job decides; the log tells what became of it
        refused,  ///< not allowed, or nothing to do it with; nothing was tried
        ignored,  ///< there was nothing to do, which needs no message
        failed,
    };

    Kind kind = Kind::done;
    std::string message;

    static Outcome done(std::string message = {}) { return {Kind::done, std::move(message)}; }
    static Outcome asked(std::string message = {}) { return {Kind::asked, std::move(message)}; }
    static Outcome refused(std::string message) { return {Kind::refused, std::move(message)}; }
    static Outcome ignored() { return {Kind::ignored, {}}; }
    static Outcome failed(std::string message) { return {Kind::failed, std::move(message)}; }

    /// Done or on its way.
    bool isAccepted() const { return kind == Kind::done || kind == Kind::asked; }

    bool operator==(const Outcome&) const = default;
};

}  // namespace tallowcrest
