// The AI tab of the sheet, connected with the advisor.

#include <optional>
#include <string>

#include <QLineEdit>

#include "actions/actions.h"
#include "actions/automation.h"
#include "advisor/advisor.h"
#include "core/settings/settings_owner.h"
#include "presentation/widgets/secret_field.h"
#include "tests/presentation/shell/settings/settings_fixture.h"
#include "tests/support/fake_advisor_ports.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

class AIWiringTest : public SettingsFixture {
protected:
    AIWiringTest() { machine.advisor = fakes.ports(); }

    Provider& provider() { return machine.monitor().advisor().provider; }
    std::optional<SettingsValue> stored(std::string_view key) { return machine.store.read(key); }
    QString lastActionText() { return textOf("settings.sheet.last-action"); }
    SecretField& key() { return *visible<SecretField>("settings.ai-key"); }

    void enter(const char* identifier, const QString& text) {
        auto* field = visible<QLineEdit>(identifier);
        field->setFocus();
        field->selectAll();
        QTest::keyClicks(field, text);
        press(Qt::Key_Return);
    }
    void finishWork() {
        machine.finishSamples();
        settle();
    }

    FakeAdvisorPorts fakes;
};

TEST_F(AIWiringTest, AKeyIsStoredAndForgottenByTheField) {
    openSheet(SettingsTabKind::ai);
    EXPECT_EQ(textOf("settings.ai-key-state"), u"No OpenAI key saved"_s);
    enter("settings.ai-key", u"  sk-mine "_s);
    finishWork();
    EXPECT_EQ(fakes.secrets->secret, "sk-mine");
    EXPECT_EQ(textOf("settings.ai-key-state"), u"OpenAI key saved in Keychain"_s);
    EXPECT_EQ(lastActionText(), u"Saved OpenAI API key in Keychain."_s);
    EXPECT_EQ(key().length(), 0);
    EXPECT_TRUE(provider().openAIKeyInput().isEmpty());
    click("settings.ai-key.remove");
    finishWork();
    EXPECT_EQ(fakes.secrets->secret, std::nullopt);
    EXPECT_EQ(textOf("settings.ai-key-state"), u"No OpenAI key saved"_s);
    EXPECT_EQ(lastActionText(), u"Removed OpenAI API key."_s);
}

TEST_F(AIWiringTest, AKeyThatIsNoneIsRefusedInPlace) {
    openSheet(SettingsTabKind::ai);
    for (const QString& wrong : {u"SK-abc"_s, u"abc"_s, u"sk-"_s + QString(5000, u'k')}) {
        key().selectAll();
        key().setFocus();
        key().insert(wrong);
        click("settings.ai-key.save");
        finishWork();
        EXPECT_EQ(textOf("settings.ai-key.refusal"),
                  u"That does not look like an OpenAI API key."_s);
        EXPECT_GT(key().length(), 0);
        EXPECT_EQ(fakes.secrets->secret, std::nullopt);
    }
}

TEST_F(AIWiringTest, AStoreThatRefusesIsToldInPlace) {
    fakes.secrets->refusesToAdd = true;
    openSheet(SettingsTabKind::ai);
    enter("settings.ai-key", u"sk-mine"_s);
    finishWork();
    EXPECT_EQ(textOf("settings.ai-key.refusal"), u"Could not save the key in Keychain."_s);
    EXPECT_EQ(provider().openAIKeyInput().view(), "sk-mine");
    EXPECT_EQ(key().length(), 7);
    fakes.secrets->refusesToAdd = false;
    click("settings.ai-key.save");
    finishWork();
    EXPECT_EQ(fakes.secrets->secret, "sk-mine");
    fakes.secrets->refusesToRemove = true;
    click("settings.ai-key.remove");
    finishWork();
    EXPECT_EQ(textOf("settings.ai-key.refusal"), u"Could not remove the key from Keychain."_s);
}

TEST_F(AIWiringTest, ATypedKeyIsForgottenWhenTheSheetCloses) {
    openSheet(SettingsTabKind::ai);
    enter("settings.ai-key", u"wrong"_s);
    EXPECT_FALSE(provider().openAIKeyInput().isEmpty());
    click("settings.tab.safety");
    click("settings.tab.ai");
    EXPECT_EQ(key().length(), 5);
    auto* field = &key();
    for (const bool byWindow : {false, true}) {
        openSheet(SettingsTabKind::ai);
        field->selectAll();
        field->insert(u"sk-typed"_s);
        EXPECT_EQ(provider().openAIKeyInput().view(), "sk-typed");
        if (byWindow) {
            window().close();
        } else {
            click("settings.sheet.done");
        }
        settle();
        EXPECT_EQ(field->length(), 0);
        EXPECT_TRUE(provider().openAIKeyInput().isEmpty());
    }
}

TEST_F(AIWiringTest, ACrashLeavesNoDumpFromTheFirstCharacterOn) {
    openSheet(SettingsTabKind::ai);
    EXPECT_FALSE(fakes.secrets->forbidsDumps);
    key().setFocus();
    QTest::keyClicks(&key(), u"s"_s);
    EXPECT_TRUE(fakes.secrets->forbidsDumps);
}

TEST_F(AIWiringTest, WhatIsTypedWhileAKeyIsStoredStays) {
    openSheet(SettingsTabKind::ai);
    enter("settings.ai-key", u"sk-mine"_s);
    key().insert(u"x"_s);
    finishWork();
    EXPECT_EQ(fakes.secrets->secret, "sk-mine");
    EXPECT_EQ(provider().openAIKeyInput().view(), "sk-minex");
    EXPECT_EQ(key().length(), 8);
    EXPECT_EQ(textOf("settings.ai-key.refusal"), u"(not shown)"_s);
}

TEST_F(AIWiringTest, TheModelIsStoredTrimmed) {
    openSheet(SettingsTabKind::ai);
    EXPECT_EQ(visible<QLineEdit>("settings.ai-model")->text(), u"gpt-5.6-luna"_s);
    enter("settings.ai-model", u"  a \"quoted\" model "_s);
    EXPECT_EQ(stored(settings_keys::openAIModelKey),
              SettingsValue(std::string("a \"quoted\" model")));
    EXPECT_EQ(visible<QLineEdit>("settings.ai-model")->text(), u"a \"quoted\" model"_s);
    enter("settings.ai-model", u" "_s);
    EXPECT_EQ(settings().openAIModel, "");
}

TEST_F(AIWiringTest, AModelThatIsTooLongIsRefusedInPlaceAndAStoredOneStays) {
    const std::string stored(300, 'm');
    machine.monitor().settingsOwner().set(&Settings::openAIModel, stored);
    openSheet(SettingsTabKind::ai);
    EXPECT_EQ(visible<QLineEdit>("settings.ai-model")->text().size(), 300);
    click("settings.tab.safety");
    EXPECT_EQ(settings().openAIModel, stored) << "the field was left as it was";
    click("settings.tab.ai");
    auto* field = visible<QLineEdit>("settings.ai-model");
    field->setText(QString(400, u' ') + QString(256, u'n'));
    field->setFocus();
    press(Qt::Key_Return);
    EXPECT_EQ(settings().openAIModel, std::string(256, 'n')) << "without the white space";
    field->setText(QString(257, u'n'));
    press(Qt::Key_Return);
    EXPECT_EQ(textOf("settings.ai-model.refusal"),
              u"The name of a model may have at most 256 characters."_s);
    EXPECT_EQ(settings().openAIModel, std::string(256, 'n'));
}

TEST_F(AIWiringTest, AnEndpointIsStoredOrRefusedInPlace) {
    openSheet(SettingsTabKind::ai);
    enter("settings.ai-endpoint", u"http://example.org"_s);
    EXPECT_EQ(textOf("settings.ai-endpoint.refusal"),
              u"An endpoint is an https address, or http on this machine alone, without a user "
              "name or a query."_s);
    EXPECT_EQ(settings().aiEndpoint, "");
    EXPECT_EQ(textOf("settings.ai-endpoint.line"),
              u"A saved key is sent to this server as its key."_s);
    enter("settings.ai-endpoint", u" http://localhost:8080 "_s);
    EXPECT_EQ(textOf("settings.ai-endpoint.refusal"), u"(not shown)"_s);
    EXPECT_EQ(stored(settings_keys::aiEndpointKey),
              SettingsValue(std::string("http://localhost:8080")));
    EXPECT_EQ(visible<QLineEdit>("settings.ai-endpoint")->text(), u"http://localhost:8080"_s);
    enter("settings.ai-endpoint", u" "_s);
    EXPECT_EQ(settings().aiEndpoint, "");
}

TEST_F(AIWiringTest, TheSwitchesAndTheModeAreStored) {
    openSheet(SettingsTabKind::ai);
    EXPECT_EQ(textOf("settings.ai-safe-actions.title"), u"Allow AI safe actions"_s);
    click("settings.ai-safe-actions");
    EXPECT_TRUE(settings().aiSafeActionsEnabled);
    EXPECT_EQ(lastActionText(), u"AI safe actions enabled."_s);
    click("settings.ai-redact");
    EXPECT_FALSE(settings().aiRedactProcessDetails);
    EXPECT_EQ(textOf("settings.ai-redact.state"), u"Off"_s);
    click("settings.ai-preview");
    EXPECT_FALSE(settings().aiRequirePreview);
    click("settings.autonomy.trusted");
    EXPECT_EQ(settings().aiAutonomyMode, AIAutonomyMode::trusted);
    EXPECT_EQ(textOf("settings.autonomy.line"),
              u"AI may auto-approve trusted low-risk actions, but you still run them."_s);
    machine.monitor().actions().automation.engageEmergencyStop();
    settle();
    click("settings.autonomy.autopilot");
    EXPECT_EQ(textOf("settings.autonomy.refusal"),
              u"AI remains in Apprentice mode while Emergency Stop is engaged."_s);
    EXPECT_EQ(settings().aiAutonomyMode, AIAutonomyMode::apprentice);
    machine.monitor().actions().automation.resumeFromEmergencyStop();
    settle();
    EXPECT_EQ(textOf("settings.autonomy.refusal"), u"(not shown)"_s);
}

TEST_F(AIWiringTest, ThePayloadIsCopied) {
    std::vector<std::string> copied;
    machine.storeOnPasteboard = [&copied](const std::string& text) { copied.push_back(text); };
    openSheet(SettingsTabKind::ai);
    click("settings.ai-copy-payload");
    EXPECT_EQ(copied.size(), 1U);
    EXPECT_EQ(lastActionText(), u"Copied the AI diagnostics preview."_s);
}

TEST_F(AIWiringTest, BeforeTheFirstSampleTheSheetSaysThatThereIsNoPayload) {
    show();
    openSheet(SettingsTabKind::ai);
    click("settings.ai-copy-payload");
    EXPECT_EQ(lastActionText(), u"No AI payload preview is available yet."_s);
}

}  // namespace
}  // namespace tallowcrest
