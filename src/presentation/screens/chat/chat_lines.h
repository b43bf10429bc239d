#pragma once

#include <array>
#include <optional>
#include <vector>

#include <QString>

#include "core/advisor_records.h"
#include "core/local_records.h"
#include "presentation/words/session_lines.h"

/// The texts of Chat. Main thread.
namespace tallowcrest::chat_lines {

/// The questions that are offered to begin with.
inline constexpr std::array starterPrompts{
    "What is slowing this Mac down right now?", "How do I relieve memory pressure on this machine?",
    "What should I review before quitting anything?", "Explain the selected operation target."};

/// What answers are made from.
QString lead(bool hasKey);

/// "Current CPU", "Current Memory" and "Chat Privacy", in this order. Without a snapshot, the first
/// two say that sampling has begun.
std::vector<SummaryTexts> facts(const std::optional<SystemSnapshot>& snapshot, bool isRedacted);
inline constexpr std::size_t factCards = 3;

/// A message as it is drawn.
struct ChatLine {
    QString icon;
    QString role;
    QString time;
    QString text;
    bool isOwn = false;  ///< by the owner

    bool operator==(const ChatLine&) const = default;
};

/// Times of another day than `now` have their date.
ChatLine chatLine(const AIChatMessage& message, Date now);

/// What assistive technology says when these have arrived; empty for none.
QString arrival(const std::vector<ChatLine>& lines);

/// "Thinking · 12 s of at most 30 s", after that many seconds; before that, the key is read.
QString thinking(double seconds, bool isReadingKey);

}  // namespace tallowcrest::chat_lines
