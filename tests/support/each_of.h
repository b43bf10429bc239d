#pragma once

#include <functional>
#include <type_traits>
#include <vector>

namespace tallowcrest {

/// The member of each element, or the result of the function for it.
template <class Range, class Member>
auto eachOf(const Range& range, Member member) {
    std::vector<std::decay_t<std::invoke_result_t<Member, decltype(*range.begin())>>> result;
    for (const auto& element : range) {
        result.push_back(std::invoke(member, element));
    }
    return result;
}

}  // namespace tallowcrest
