#include "tests/presentation/chat_gallery.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

#include <QApplication>
#include <QVBoxLayout>

#include "advisor/advisor.h"
#include "core/record_json.h"
#include "core/settings/stored_lists.h"
#include "monitor/system_monitor.h"
#include "platform/desktop/qt_locale.h"
#include "presentation/shell/dashboard_window.h"
#include "presentation/widgets/conversation_view.h"
#include "presentation/widgets/crest_style.h"
#include "tests/support/fake_advisor_ports.h"
#include "tests/support/fake_machine.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

std::string longAnswer(int number, std::size_t characters) {
    std::string text = "Answer " + std::to_string(number) + ".";
    while (text.size() < characters) {
        text +=
            " The indexer has used most of the processor for some minutes; it is reading the "
            "photos that were added today.\n- Review it in Processes.\n- Leave it alone until "
            "it ends.\n\n";
    }
    text.resize(characters);
    return text;
}

/// Owns the machine that its window shows.
class ChatGallery final : public QWidget {
public:
    ChatGallery(const QString& state, const QSize& size) {
        machine_.locale = std::make_shared<QtLocale>(localeNamesOfThisProcess());
        machine_.metrics->memory = {16.0, 9.5, 6.5, 2.3, 0.4, 59.4};
        machine_.metrics->disk = {476.9, 203.8};
        machine_.addProcess(800, "/usr/bin/photo-indexer", 130.0, 2048.0);
        machine_.addProcess(700, "/usr/bin/editor", 30.0, 1024.0);
        if (state == u"long"_s || state == u"measured"_s) {
            storeLongMessages();
        }
        if (state == u"thinking"_s) {
            advisor_.secrets->secret = "sk-key";
            machine_.advisor = advisor_.ports();
        }
        window_ = std::make_unique<DashboardWindow>(machine_.monitor());
        auto* layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(window_.get());
        resize(size);
        show();
        window_->show();
        machine_.finishSamples();
        settle();
        if (state == u"suggestions"_s) {
            go(AppRoute::optimizationSuggestions);
            machine_.monitor().advisor().provider.requestAIAnalysis();
        } else if (state != u"measured"_s) {
            go(AppRoute::chat);
        }
        setState(state);
        for (int turn = 0; turn < 200; ++turn) {
            settle();
        }
    }

    void go(AppRoute route) {
        window_->state().navigation.setSelectedRoute(route);
        machine_.mainQueue.drain();
    }
    void storeLongMessages() {
        std::vector<AIChatMessage> messages;
        for (int i = 0; i < 40; ++i) {
            messages.push_back({UUID::random(), i % 2 == 0 ? "You" : "Tallowcrest",
                                longAnswer(i, 4000), machine_.clock.now()});
        }
        messages[37].text = "<b>bold</b> \x1b[2J left\u202Eright\n" + std::string(4000, 'W');
        machine_.store.write(stored::chatMessages.key,
                             JSONData{record_json::encode(messages).value()});
    }
    bool isLaidOut() const { return window_->findChild<ConversationView*>()->isMeasured(); }

private:
    void settle() {
        machine_.mainQueue.drain();
        QApplication::processEvents();
    }

    void setState(const QString& state) {
        Chat& chat = machine_.monitor().advisor().chat;
        if (state == u"asked"_s || state == u"thinking"_s) {
            chat.askQuickQuestion("What is slowing this Mac down right now?");
            machine_.clock.advance(std::chrono::seconds(7));
        }
        if (state == u"asked"_s) {
            chat.askQuickQuestion("How do I relieve memory pressure on this machine?");
            chat.setAIChatInput("And what about the disk?\nIs there enough space?");
        } else if (state == u"cleared"_s) {
            chat.clearChat();
        }
    }

    FakeAdvisorPorts advisor_;
    FakeMachine machine_;
    std::unique_ptr<DashboardWindow> window_;
};

double milliseconds(std::clock_t from, std::clock_t to) {
    return static_cast<double>(to - from) * 1000 / CLOCKS_PER_SEC;
}

}  // namespace

std::unique_ptr<QWidget> chatGallery(const QString& state, const QSize& size) {
    const QStringList states{u"welcome"_s, u"asked"_s,   u"thinking"_s,
                             u"long"_s,    u"cleared"_s, u"suggestions"_s};
    if (!states.contains(state)) {
        return nullptr;
    }
    QApplication::setStyle(new CrestStyle);
    return std::make_unique<ChatGallery>(state, size);
}

void measureChatPage() {
    QApplication::setStyle(new CrestStyle);
    std::vector<double> openings;
    double longestTurn = 0.0;
    for (int i = 0; i < 9; ++i) {
        ChatGallery gallery(u"measured"_s, {1200, 800});
        const std::clock_t begin = std::clock();
        gallery.go(AppRoute::chat);
        QApplication::processEvents();
        gallery.grab();
        openings.push_back(milliseconds(begin, std::clock()));
        while (!gallery.isLaidOut()) {
            const std::clock_t turn = std::clock();
            QApplication::processEvents();
            longestTurn = std::max(longestTurn, milliseconds(turn, std::clock()));
        }
    }
    std::ranges::sort(openings);
    std::printf(
        "Chat with 40 messages of 4,000 characters: %.1f ms of processor time to its first "
        "painting (%.1f to %.1f), %.1f ms for the longest turn after it\n",
        openings[openings.size() / 2], openings.front(), openings.back(), longestTurn);
}

}  // namespace tallowcrest
