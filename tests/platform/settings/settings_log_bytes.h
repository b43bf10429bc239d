#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace tallowcrest::settings_log_bytes {

enum class WordOrder { little, big };

inline constexpr std::size_t headerSize = 32;
inline constexpr std::size_t recordHeaderSize = 24;

inline std::uint32_t bigEndian(const std::string& bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        value = value << 8U | static_cast<unsigned char>(bytes.at(at + i));
    }
    return value;
}

inline void setBigEndian(std::string& bytes, std::size_t at, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i) {
        bytes.at(at + i) = static_cast<char>(static_cast<unsigned char>(value >> (24U - 8U * i)));
    }
}

/// Gives a log the checksums that belong to its content, with `order` as that of the words summed.
/// Its header says how long a record is; one that was cut off gets none.
inline void setChecksums(std::string& log, WordOrder order) {
    setBigEndian(log, 0, order == WordOrder::big ? 0x377f0683U : 0x377f0682U);
    std::uint32_t first = 0;
    std::uint32_t second = 0;
    const auto add = [&](std::size_t from, std::size_t size) {
        for (std::size_t at = from; at < from + size; at += 8) {
            for (std::uint32_t* sum : {&first, &second}) {
                std::uint32_t word = bigEndian(log, at + (sum == &first ? 0 : 4));
                if (order == WordOrder::little) {
                    word =
                        word << 24U | (word & 0xFF00U) << 8U | (word >> 8U & 0xFF00U) | word >> 24U;
                }
                *sum += word + (sum == &first ? second : first);
            }
        }
    };
    const auto store = [&](std::size_t at) {
        setBigEndian(log, at, first);
        setBigEndian(log, at + 4, second);
    };
    add(0, 24);
    store(24);
    const std::size_t page = bigEndian(log, 8);
    const std::size_t record = recordHeaderSize + page;
    for (std::size_t at = headerSize; at + record <= log.size(); at += record) {
        add(at, 8);
        add(at + recordHeaderSize, page);
        store(at + 16);
    }
}

}  // namespace tallowcrest::settings_log_bytes
