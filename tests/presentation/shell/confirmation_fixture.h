#pragma once

#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include <QPushButton>

#include "presentation/shell/confirmation_dialog.h"
#include "tests/presentation/window_fixture.h"

namespace tallowcrest {

/// A window, and confirmation requests whose answers are recorded.
class ConfirmationFixture : public WindowFixture {
protected:
    ConfirmationDesk& desk() { return machine.monitor().confirmations(); }

    /// A request whose answers are recorded in `confirmed` and `canceled`.
    ConfirmationRequest probe(const std::string& title = "Go on?") {
        if (!handler_) {
            handler_ = desk().registerKind(
                "probe",
                {[this](const ConfirmationRequest& asked, void*) {
                     confirmed.push_back(asked.title);
                     return Outcome::done();
                 },
                 [this](const ConfirmationRequest& asked) { canceled.push_back(asked.title); }});
        }
        return {UUID::random(), title, "It changes something.", "Go On", "probe", {}, {}};
    }

    void ask(const ConfirmationRequest& request, std::vector<std::string> paths = {},
             std::vector<std::int64_t> pids = {}) {
        desk().requestConfirmation(request, {std::move(paths), std::move(pids)});
        settle();
        ASSERT_TRUE(isOpen());
        ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog()));
        if (!std::exchange(isSettled_, true)) {
            setSettlingTime(std::chrono::milliseconds(0));
        }
        settle();
    }

    void showAndAsk(const std::string& title = "Go on?") {
        showWithSample();
        ask(probe(title));
    }

    void setSettlingTime(std::chrono::milliseconds time) {
        tallowcrest::setSettlingTime(dialog(), time);
    }

    bool isOpen() {
        const auto* found = window().findChild<ConfirmationDialog*>();
        return found != nullptr && found->isVisible();
    }
    ConfirmationDialog& dialog() { return *window().findChild<ConfirmationDialog*>(); }
    QPushButton& cancel() { return *visible<QPushButton>("confirmation.cancel"); }
    QPushButton& confirm() { return *visible<QPushButton>("confirmation.confirm"); }

    std::vector<std::string> confirmed;
    std::vector<std::string> canceled;

private:
    ConfirmationDesk::Registration handler_;
    bool isSettled_ = false;  ///< whether the settling time has been set to zero
};

}  // namespace tallowcrest
