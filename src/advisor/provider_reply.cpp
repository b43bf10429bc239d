#include "advisor/provider_reply.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "advisor/advisor_ports.h"
#include "advisor/read_objects.h"
#include "core/text.h"

namespace tallowcrest {
namespace {

constexpr std::size_t shownBodyCharacters = 240;
constexpr std::size_t maximumAnswerLines = 1000;

/// The first lines of a text, at most that many.
std::string_view firstLines(std::string_view text, std::size_t most) {
    std::size_t end = 0;
    for (std::size_t lines = 0; lines < most && end != std::string_view::npos; ++lines) {
        end = text.find('\n', lines == 0 ? 0 : end + 1);
    }
    return text.substr(0, end);
}

using Texts = std::vector<std::string>;

/// The texts of the parts of one message. Empty when its content is not an array of objects.
Texts readContent(JsonReader& reader) {
    Texts texts;
    const bool isContent = readObjects(reader, [&] {
        std::optional<std::string> text;
        while (const auto key = reader.nextMember()) {
            if (*key == "text") {
                text = reader.text();
            } else {
                reader.skip();
            }
        }
        if (text) {
            texts.push_back(*std::move(text));
        }
    });
    return isContent ? texts : Texts();
}

/// Absent when the output is not an array of objects.
std::optional<Texts> readOutput(JsonReader& reader) {
    Texts all;
    const bool isOutput = readObjects(reader, [&] {
        Texts content;
        while (const auto key = reader.nextMember()) {
            if (*key == "content") {
                content = readContent(reader);
            } else {
                reader.skip();
            }
        }
        std::ranges::move(content, std::back_inserter(all));
    });
    return isOutput ? std::optional(std::move(all)) : std::nullopt;
}

}  // namespace

std::string boundedAnswer(std::string text) {
    if (firstCharacters(text, maximumAnswerCharacters).size() == text.size() &&
        firstLines(text, maximumAnswerLines).size() == text.size()) {
        return text;
    }
    constexpr std::size_t roomForNote = 100;
    const std::string_view kept = firstLines(
        firstCharacters(text, maximumAnswerCharacters - roomForNote), maximumAnswerLines - 2);
    const auto isFirstByte = [](char c) { return (c & '\xC0') != '\x80'; };
    const auto cut = std::ranges::count_if(text.substr(kept.size()), isFirstByte);
    return fmt::format("{}…\n\n{} more characters were left out.", kept, cut);
}

std::optional<std::string> extractResponseText(std::string_view data) {
    constexpr std::string_view byteOrderMark = "\uFEFF";
    JsonReader reader(data.starts_with(byteOrderMark) ? data.substr(byteOrderMark.size()) : data);
    if (!reader.enterObject()) {
        return std::nullopt;
    }
    std::optional<std::string> outputText;
    std::optional<Texts> output;
    while (const auto key = reader.nextMember()) {
        if (*key == "output_text") {
            outputText = reader.text();
        } else if (*key == "output") {
            output = readOutput(reader);
        } else {
            reader.skip();
        }
    }
    if (!reader.isComplete()) {
        return std::nullopt;
    }
    if (outputText || !output) {
        return outputText;
    }
    return fmt::format("{}", fmt::join(*output, "\n"));
}

ProviderResult interpretProviderReply(const HttpReply& reply, std::string_view service) {
    const auto error = [service](std::string_view words) {
        return AIError{fmt::format("{} {}", service, words)};
    };
    if (reply.transportError) {
        return error("request failed: " + replacingInvalidUTF8(*reply.transportError));
    }
    if (!reply.data || reply.data->empty()) {
        return error("returned no data.");
    }
    if (reply.status >= 200 && reply.status <= 299) {
        std::optional<std::string> text = extractResponseText(*reply.data);
        if (!text || text->empty()) {
            return error("response did not include readable text.");
        }
        return *std::move(text);
    }
    const std::string code = fmt::format("HTTP {}", reply.status);
    const std::string_view body = isValidUTF8(*reply.data) ? *reply.data : std::string_view(code);
    return error(
        fmt::format("error {}: {}", reply.status, firstCharacters(body, shownBodyCharacters)));
}

}  // namespace tallowcrest
