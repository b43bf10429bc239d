#pragma once

#include <string>
#include <vector>

#include <QPlainTextEdit>
#include <QPushButton>

#include "advisor/advisor.h"
#include "core/record_json.h"
#include "core/settings/stored_lists.h"
#include "presentation/widgets/conversation_view.h"
#include "presentation/widgets/page_scroll_area.h"
#include "presentation/widgets/selectable_text.h"
#include "tests/presentation/window_fixture.h"
#include "tests/support/fake_advisor_ports.h"

namespace tallowcrest {

/// The window on Chat.
class ChatFixture : public WindowFixture {
protected:
    /// With a key from the start; the provider then answers what a test sets.
    void storeKey() {
        advisor.secrets->secret = "sk-key";
        machine.advisor = advisor.ports();
    }

    void storeMessages(const std::vector<AIChatMessage>& messages) {
        machine.store.write(stored::chatMessages.key,
                            JSONData{record_json::encode(messages).value()});
    }

    void showChat() {
        window().state().navigation.setSelectedRoute(AppRoute::chat);
        showWithSample();
        settleAll();
    }

    /// Runs all background work, also what follows from it.
    void finishWork() {
        while (machine.workQueue.pendingCount() > 0) {
            machine.finishSamples();
        }
        settle();
    }

    /// Runs the turns in which messages are laid out.
    void settleAll() {
        for (int turn = 0; turn < 200; ++turn) {
            settle();
            const auto* view = visible<ConversationView>("chat.messages");
            if (view == nullptr || view->isMeasured()) {
                break;
            }
        }
        settle();
    }

    Chat& chat() { return machine.monitor().advisor().chat; }
    QPlainTextEdit& input() { return *visible<QPlainTextEdit>("chat.input"); }
    QPushButton& sendButton() { return *visible<QPushButton>("chat.send"); }

    void type(const char* text) {
        input().setFocus();
        QTest::keyClicks(&input(), QString::fromUtf8(text));
        settle();
    }

    /// The messages on screen, as "ROLE: TEXT".
    std::vector<std::string> bubbles() {
        std::vector<std::string> found;
        for (const auto* bubble : window().findChildren<ConversationBubble*>()) {
            const auto* text = bubble->findChild<SelectableText*>();
            if (bubble->isVisible() && text != nullptr) {
                found.push_back(
                    bubble->findChild<ElidedLabel*>(u"conversation.role"_s)->text().toStdString() +
                    ": " + text->toPlainText().toStdString());
            }
        }
        return found;
    }

    PageScrollArea& area() {
        return dynamic_cast<PageScrollArea&>(scrollAreaAround(*visible("chat.messages")));
    }

    FakeAdvisorPorts advisor;
};

}  // namespace tallowcrest
