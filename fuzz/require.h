#pragma once

/// Ends the program, which the fuzzer reports together with the input, unless `condition` holds.
inline void require(bool condition) {
    if (!condition) {
        __builtin_trap();
    }
}
