#include "platform/settings/settings_log.h"

#include <cstdint>

#include "platform/settings/big_endian.h"

namespace tallowcrest::settings_log {
namespace {

using Bytes = std::span<const unsigned char>;

constexpr std::size_t headerSize = 32;
constexpr std::size_t recordHeaderSize = 24;
constexpr std::size_t sumSize = 8;

enum class WordOrder { little, big };

/// SQLite's own: two sums over pairs of words, carried on from one part of the log to the next.
class Checksum {
public:
    explicit Checksum(WordOrder order) : order_(order) {}

    /// `bytes` is a whole number of pairs.
    void add(Bytes bytes) {
        for (std::size_t at = 0; at + sumSize <= bytes.size(); at += sumSize) {
            first_ += word(bytes, at) + second_;
            second_ += word(bytes, at + 4) + first_;
        }
    }

    /// Stored sums are big-endian, whatever the order of the words that they are made of.
    bool isStoredAt(Bytes bytes, std::size_t at) const;

private:
    std::uint32_t word(Bytes bytes, std::size_t at) const;

    WordOrder order_;
    std::uint32_t first_ = 0;
    std::uint32_t second_ = 0;
};

std::uint32_t littleEndian(Bytes bytes, std::size_t at) {
    return std::uint32_t{bytes[at]} | (std::uint32_t{bytes[at + 1]} << 8U) |
           (std::uint32_t{bytes[at + 2]} << 16U) | (std::uint32_t{bytes[at + 3]} << 24U);
}

bool Checksum::isStoredAt(Bytes bytes, std::size_t at) const {
    return bigEndian(bytes, at) == first_ && bigEndian(bytes, at + 4) == second_;
}

std::uint32_t Checksum::word(Bytes bytes, std::size_t at) const {
    return order_ == WordOrder::big ? bigEndian(bytes, at) : littleEndian(bytes, at);
}

bool isPageSize(std::uint32_t size) {
    return size >= 512 && size <= 65536 && (size & (size - 1)) == 0;
}

/// Each beginning of the log has a mark of its own, by which its records are told from older ones.
bool isOfThisBeginning(Bytes log, std::size_t recordAt) {
    constexpr std::size_t mark = 16;
    constexpr std::size_t recordMark = 8;
    return bigEndian(log, recordAt + recordMark) == bigEndian(log, mark) &&
           bigEndian(log, recordAt + recordMark + 4) == bigEndian(log, mark + 4);
}

}  // namespace

bool isSound(Bytes start) {
    constexpr std::uint32_t magic = 0x377f0682;  // the last bit tells the order of words
    constexpr std::uint32_t version = 3007000;
    constexpr std::size_t versionAt = 4;
    constexpr std::size_t pageSizeAt = 8;
    constexpr std::size_t timesBegunAnewAt = 12;
    constexpr std::size_t sumAt = headerSize - sumSize;
    if (start.size() < headerSize) {
        return start.empty();
    }
    const std::uint32_t pageSize = bigEndian(start, pageSizeAt);
    if ((bigEndian(start, 0) & ~1U) != magic || bigEndian(start, versionAt) != version ||
        !isPageSize(pageSize)) {
        return false;
    }
    Checksum sum((bigEndian(start, 0) & 1U) != 0 ? WordOrder::big : WordOrder::little);
    sum.add(start.first(sumAt));
    if (!sum.isStoredAt(start, sumAt)) {
        return false;
    }
    const std::size_t secondAt = headerSize + recordHeaderSize + pageSize;
    if (start.size() < secondAt) {
        return true;
    }
    sum.add(start.subspan(headerSize, sumSize));
    sum.add(start.subspan(headerSize + recordHeaderSize, pageSize));
    constexpr std::size_t recordSumAt = headerSize + recordHeaderSize - sumSize;
    if (isOfThisBeginning(start, headerSize) && sum.isStoredAt(start, recordSumAt)) {
        return true;
    }
    // A log that was never begun anew has no older record in that place, and records are written
    // in turn, so that a second one of this beginning has followed a whole first one.
    const bool hasSecond =
        start.size() >= secondAt + recordHeaderSize && isOfThisBeginning(start, secondAt);
    return bigEndian(start, timesBegunAnewAt) != 0 && !hasSecond;
}

}  // namespace tallowcrest::settings_log
