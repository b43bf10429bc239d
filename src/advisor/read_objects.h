#pragma once

#include "core/json_reader.h"

namespace tallowcrest {

/// Calls `readObject()` in each object of the array that is next. False when it is not an array of
/// objects; what else it holds is skipped.
template <class ReadObject>
bool readObjects(JsonReader& reader, ReadObject readObject) {
    if (!reader.enterArray()) {
        reader.skip();
        return false;
    }
    bool areObjects = true;
    while (reader.nextElement()) {
        if (reader.enterObject()) {
            readObject();
        } else {
            reader.skip();
            areObjects = false;
        }
    }
    return areObjects;
}

}  // namespace tallowcrest
