#pragma once

namespace tallowcrest {

/// A button's title, line icon, and description for assistive technology and the tool tip. UTF-8.
struct Command {
    const char* title;
    const char* icon;  ///< empty for none
    const char* description;

    /// The same command under another title.
    constexpr Command titled(const char* other) const { return {other, icon, description}; }
};

}  // namespace tallowcrest
