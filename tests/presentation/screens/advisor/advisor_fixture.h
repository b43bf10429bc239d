#pragma once

#include <string>
#include <utility>
#include <vector>

#include <QPushButton>

#include "advisor/advisor.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/selectable_text.h"
#include "tests/presentation/window_fixture.h"
#include "tests/support/fake_advisor_ports.h"

namespace tallowcrest {

/// AI Advisor over a machine whose secret store and provider a test sets.
class AdvisorFixture : public WindowFixture {
protected:
    AdvisorFixture() { machine.advisor = fakes.ports(); }

    Advisor& advisor() { return machine.monitor().advisor(); }

    void showAdvisor() {
        window().state().navigation.setSelectedRoute(AppRoute::aiAdvisor);
        showWithSample();
    }
    /// With a stored key and, unless `asks`, without a question before each analysis.
    void showConnected(bool asks = false) {
        fakes.secrets->secret = "sk-secret";
        advisor().provider.setAIRequirePreview(asks);
        machine.finishSamples();
        showAdvisor();
    }
    /// Runs all background work, and what follows from it.
    void finishWork() {
        machine.finishSamples();
        settle();
        machine.finishSamples();
        settle();
    }

    static AIActionSuggestion suggestionOf(const std::string& type,
                                           const std::string& risk = "low") {
        return {UUID::random(), type, "Do " + type, "Because of " + type, risk};
    }
    void publish(std::vector<AIActionSuggestion> suggestions) {
        advisor().suggestions.setAIActions(std::move(suggestions));
        settle();
    }

    QString answer() { return visible<SelectableText>("ai.insight")->shownText(); }
    /// The icon of a card or, by its own name, of a line.
    QString iconOf(const char* identifier) {
        QWidget* const widget = visible(identifier);
        const auto* icon = qobject_cast<IconView*>(widget);
        // The heading of a card comes first.
        return (icon != nullptr ? icon : widget->findChild<IconView*>())->icon();
    }
    QPushButton& button(const char* identifier) { return *visible<QPushButton>(identifier); }

    FakeAdvisorPorts fakes;
};

}  // namespace tallowcrest
