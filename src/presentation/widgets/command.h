#pragma once

namespace tallowcrest {

/// What a button offers: its title, its line icon, and what it does in the words of assistive
/// technology and of the tool tip. UTF-8.
struct Command {
    const char* title;
    const char* icon;  ///< empty for none
    const char* description;

    /// The same where it goes by another title.
    constexpr Command titled(const char* other) const { return {other, icon, description}; }
};

}  // namespace tallowcrest
