#include "platform/settings/settings_log.h"

#include <algorithm>
#include <span>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/platform/settings/settings_log_bytes.h"

namespace tallowcrest {
namespace {

using settings_log_bytes::headerSize;
using settings_log_bytes::recordHeaderSize;
using settings_log_bytes::setBigEndian;
using settings_log_bytes::setChecksums;
using settings_log_bytes::WordOrder;

constexpr std::size_t pageSizeAt = 8;
constexpr std::size_t timesBegunAnewAt = 12;
constexpr std::size_t markAt = 16;

bool isSound(const std::string& log) {
    const std::vector<unsigned char> bytes(log.begin(), log.end());
    return settings_log::isSound(
        std::span(bytes).first(std::min(bytes.size(), settings_log::longestStart)));
}

/// A whole log of some records, of a file with pages of `page` bytes.
std::string logOf(std::size_t records, std::size_t page = 512, std::uint32_t timesBegunAnew = 0,
                  WordOrder order = WordOrder::little) {
    std::string log(headerSize + records * (recordHeaderSize + page), '\x5A');
    setBigEndian(log, 4, 3007000);
    setBigEndian(log, pageSizeAt, static_cast<std::uint32_t>(page));
    setBigEndian(log, timesBegunAnewAt, timesBegunAnew);
    setBigEndian(log, markAt, 0x01020304);
    setBigEndian(log, markAt + 4, 0x05060708);
    for (std::size_t i = 0; i < records; ++i) {
        const std::size_t at = headerSize + i * (recordHeaderSize + page);
        setBigEndian(log, at, static_cast<std::uint32_t>(i + 1));
        log.replace(at + 8, 8, log, markAt, 8);
    }
    setChecksums(log, order);
    return log;
}

TEST(SettingsLog, AWholeOneIsSoundInBothOrdersOfBytesAndAllSizesOfPages) {
    for (const WordOrder order : {WordOrder::little, WordOrder::big}) {
        for (std::size_t page = 512; page <= 65536; page *= 2) {
            for (const std::size_t records : {0U, 1U, 2U, 3U}) {
                EXPECT_TRUE(isSound(logOf(records, page, 0, order))) << page << ' ' << records;
            }
        }
    }
}

TEST(SettingsLog, AnyByteOfTheHeaderAndOfTheFirstRecordCounts) {
    for (const WordOrder order : {WordOrder::little, WordOrder::big}) {
        for (const std::size_t records : {1U, 2U}) {
            const std::string whole = logOf(records, 512, 0, order);
            for (std::size_t at = 0; at < headerSize + recordHeaderSize + 512; ++at) {
                std::string log = whole;
                log[at] = static_cast<char>(log[at] ^ 0x10);
                EXPECT_FALSE(isSound(log)) << at << " of " << records;
            }
        }
    }
}

TEST(SettingsLog, FieldsOfNoSenseAreNoneWhateverTheirChecksum) {
    struct Case {
        std::size_t at;
        std::uint32_t value;
    };
    for (const Case& c : {Case{4, 3007001}, Case{4, 0}, Case{pageSizeAt, 0}, Case{pageSizeAt, 256},
                          Case{pageSizeAt, 513}, Case{pageSizeAt, 131072}}) {
        std::string log = logOf(0);
        setBigEndian(log, c.at, c.value);
        setChecksums(log, WordOrder::little);
        EXPECT_FALSE(isSound(log)) << c.at << ' ' << c.value;
    }
}

TEST(SettingsLog, OnesThatEndTooEarly) {
    const std::string whole = logOf(2);
    EXPECT_TRUE(isSound(""));
    for (std::size_t size = 1; size < headerSize; ++size) {
        EXPECT_FALSE(isSound(whole.substr(0, size))) << size;
    }
    for (std::size_t size = headerSize; size <= whole.size(); ++size) {
        EXPECT_TRUE(isSound(whole.substr(0, size))) << size;
    }
}

TEST(SettingsLog, OneThatWasBegunAnewMayHoldOlderRecords) {
    std::string log = logOf(3, 512, 1);
    // The header is the first thing to be written.
    setBigEndian(log, markAt, 0x01020305);
    setBigEndian(log, markAt + 4, 0x55555555);
    const std::string records = log.substr(headerSize);
    setChecksums(log, WordOrder::little);
    log.replace(headerSize, records.size(), records);
    EXPECT_TRUE(isSound(log));
    // Then comes the first record's header, and a kill before its page.
    log.replace(headerSize + 8, 8, log, markAt, 8);
    EXPECT_TRUE(isSound(log));
    // A log that never was begun anew has no older records.
    const std::string newer = log.substr(headerSize);
    setBigEndian(log, timesBegunAnewAt, 0);
    setChecksums(log, WordOrder::little);
    log.replace(headerSize, newer.size(), newer);
    EXPECT_FALSE(isSound(log));
}

TEST(SettingsLog, OneThatWasBegunAnewHasNoSecondRecordWithoutAFirst) {
    for (const std::size_t at :
         {std::size_t{0}, std::size_t{8}, std::size_t{16}, std::size_t{24}}) {
        std::string log = logOf(2, 512, 1);
        ASSERT_TRUE(isSound(log));
        log[headerSize + at] = static_cast<char>(log[headerSize + at] ^ 1);
        EXPECT_FALSE(isSound(log)) << at;
    }
}

}  // namespace
}  // namespace tallowcrest
