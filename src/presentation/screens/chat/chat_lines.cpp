#include "presentation/screens/chat/chat_lines.h"

#include <algorithm>
#include <cmath>

#include <QStringList>

#include "advisor/provider_exchange.h"
#include "presentation/words/advisor_words.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest::chat_lines {

QString lead(bool hasKey) {
    return hasKey ? u"Enhanced AI answers use the latest CPU, memory, process, remote, and action "
                    "history signals."_s
                  : u"On-device guidance works without paid AI. Connect paid AI for deeper "
                    "explanations and follow-up reasoning."_s;
}

std::vector<SummaryTexts> facts(const std::optional<SystemSnapshot>& snapshot, bool isRedacted) {
    SummaryTexts cpu{u"Current CPU"_s, dashboard_text::noFigure(), u"Sampling this Mac..."_s};
    SummaryTexts memory{u"Current Memory"_s, dashboard_text::noFigure(), u"Sampling this Mac..."_s};
    if (snapshot) {
        cpu.value = dashboard_text::percentText(snapshot->cpuPercent);
        cpu.detail = snapshot->appImpacts.empty()
                         ? u"No top app yet"_s
                         : u"Top app: "_s + dashboard_text::text(snapshot->appImpacts.front().name);
        memory.value = dashboard_text::percentText(snapshot->memory.pressure);
        memory.detail = dashboard_text::memoryDetail(snapshot->memory);
    }
    return {std::move(cpu),
            std::move(memory),
            {u"Chat Privacy"_s, isRedacted ? u"Redacted"_s : u"Detailed"_s,
             u"Uses your AI payload privacy setting."_s}};
}

ChatLine chatLine(const AIChatMessage& message, Date now) {
    // A stored role can be any text.
    constexpr qsizetype longestRole = 40;
    const bool isOwn = message.role == "You";
    return {isOwn ? u"person.crop.circle"_s : u"sparkle"_s,
            dashboard_text::shortText(message.role, longestRole),
            dashboard_text::shortTimeText(message.date, now), advisor_words::longText(message.text),
            isOwn};
}

QString arrival(const std::vector<ChatLine>& lines) {
    QStringList said;
    for (const ChatLine& line : lines) {
        said.append(line.role + u": "_s + line.text);
    }
    return said.join(u'\n');
}

QString thinking(double seconds, bool isReadingKey) {
    constexpr double most = exchangeWait.count();
    const double shown = std::isfinite(seconds) ? std::max(0.0, std::floor(seconds)) : 0.0;
    const QString passed = u" · %1 s"_s.arg(dashboard_text::decimal(shown, 0));
    if (isReadingKey) {
        return u"Thinking · reading the key"_s + passed;
    }
    // Beyond the limit, the clock was set.
    return u"Thinking"_s + passed +
           (shown > most ? QString() : u" of at most %1 s"_s.arg(dashboard_text::decimal(most, 0)));
}

}  // namespace tallowcrest::chat_lines
