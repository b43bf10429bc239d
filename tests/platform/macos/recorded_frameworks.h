#pragma once

#include <map>
#include <string>

namespace tallowcrest {

/// What the recorded frameworks hold, and what they were asked. A test sets it back.
struct RecordedFrameworks {
    /// The attributes of the one item of the Keychain, by the names of the framework; empty when
    /// there is none.
    std::map<std::string, std::string> item = {};
    /// Those of the latest call that got a dictionary.
    std::map<std::string, std::string> asked = {};
    /// What an operation on the Keychain returns in place of doing it; 0 does it.
    int refusal = 0;
    /// The information dictionary. A number is told from a text by being of digits only.
    std::map<std::string, std::string> information = {};
    bool hasBundle = true;
    /// Objects that were made and not yet released.
    int objects = 0;
};

RecordedFrameworks& recordedFrameworks();

}  // namespace tallowcrest
