// In the place of what Objective-C++ defines, which no compiler here reads.

#include "platform/trash/finder_trash.h"

namespace tallowcrest {

FinderTrash::Moved moveByFinder(const std::string&) {
    return {};
}

}  // namespace tallowcrest

int main() {}
