#pragma once

namespace tallowcrest {

inline constexpr double gigabytesPerByte = 9.313225746154785e-10;  // 2^-30
inline constexpr double megabytesPerByte = 9.5367431640625e-07;    // 2^-20
inline constexpr double megabytesPerKibibyte = 0.0009765625;       // 2^-10
inline constexpr double megabytesPerGigabyte = 1024.0;
inline constexpr double bytesPerMegabyte = 1048576.0;
inline constexpr double bytesPerGigabyte = 1073741824.0;

}  // namespace tallowcrest
