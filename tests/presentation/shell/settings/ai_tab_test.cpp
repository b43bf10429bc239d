#include "presentation/shell/settings/ai_tab.h"

#include <string>

#include <QPushButton>
#include <QSignalSpy>

#include "presentation/screens/shared/autonomy_picker.h"
#include "presentation/shell/settings/stored_field.h"
#include "presentation/widgets/secret_field.h"
#include "tests/presentation/shell/announcements.h"
#include "tests/presentation/shell/settings/tab_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AITabTest : public TabFixture<AITab> {
protected:
    AITabTest() : TabFixture(new QWidget) {
        tab.show(state);
        QObject::connect(&tab, &AITab::keyEdited,
                         [this](int first, int removed, std::string_view inserted) {
                             typed.replace(static_cast<std::size_t>(first),
                                           static_cast<std::size_t>(removed), inserted);
                             state.keyLength = static_cast<int>(typed.size());
                         });
        QObject::connect(&tab, &AITab::keySaveWanted, [this] { saved.push_back(typed); });
    }

    SecretField& key() { return *visible<SecretField>("settings.ai-key"); }
    QPushButton& button(const char* identifier) { return *visible<QPushButton>(identifier); }
    void type(const char* text) {
        key().setFocus();
        QTest::keyClicks(&key(), QString::fromLatin1(text));
    }
    void show() {
        tab.show(state);
        settle();
    }

    AITabState state;
    std::string typed;  ///< what the field has told
    std::vector<std::string> saved;
};

TEST_F(AITabTest, SaysWhatItIsForWordForWord) {
    EXPECT_EQ(headings().join(u'|'), u"AI Intelligence|What AI Sees And Does|Advisor Autonomy"_s);
    EXPECT_EQ(textOf("settings.ai-key-state"), u"No OpenAI key saved"_s);
    EXPECT_EQ(key().placeholderText(), u"Paste OpenAI API key"_s);
    EXPECT_EQ(button("settings.ai-key.save").text(), u"Save Key"_s);
    EXPECT_EQ(button("settings.ai-key.remove").text(), u"Remove Key"_s);
    EXPECT_EQ(textOf("settings.ai.line"),
              u"Default model is gpt-5.6-luna for efficient analysis. The key is stored in macOS "
              "Keychain and is never included in reports."_s);
    EXPECT_EQ(textOf("settings.ai-redact.title"), u"Redact process details before AI analysis"_s);
    EXPECT_EQ(textOf("settings.ai-preview.title"),
              u"Require preview confirmation before AI analysis"_s);
    EXPECT_EQ(button("settings.ai-copy-payload").text(), u"Copy AI Payload Preview"_s);
    EXPECT_EQ(textOf("settings.autonomy.line"),
              u"AI suggests actions. You approve and run them."_s);
    EXPECT_EQ(visible<QLineEdit>("settings.ai-model")->accessibleName(), u"Model"_s);
    EXPECT_EQ(visible<QLineEdit>("settings.ai-endpoint")->accessibleName(), u"Endpoint"_s);
    EXPECT_EQ(visible<QLineEdit>("settings.ai-endpoint")->text(), QString());
    state.isKeySaved = true;
    show();
    EXPECT_EQ(textOf("settings.ai-key-state"), u"OpenAI key saved in Keychain"_s);
}

TEST_F(AITabTest, AKeyIsSavedByTheButtonAndByReturn) {
    type(" sk-abc ");
    click("settings.ai-key.save");
    EXPECT_THAT(saved, ElementsAre(" sk-abc "));
    EXPECT_EQ(key().length(), 8) << "until it is stored";
    state.isKeyBusy = true;
    show();
    EXPECT_FALSE(button("settings.ai-key.save").isEnabled());
    EXPECT_EQ(textOf("settings.ai-key-state"),
              u"Waiting for the key store, which may be locked…"_s);
    key().setFocus();
    press(Qt::Key_Return);
    EXPECT_EQ(saved.size(), 1U) << "one at a time";
    state.isKeySaved = true;
    state.isKeyBusy = false;
    state.keyLength = 0;
    typed.clear();
    show();
    EXPECT_EQ(key().length(), 0);
    type("sk-next");
    press(Qt::Key_Return);
    EXPECT_THAT(saved, ElementsAre(" sk-abc ", "sk-next"));
}

TEST_F(AITabTest, ARefusedKeyStaysWithItsReasonUntilItIsEdited) {
    type("wrong");
    const Announcements heard;
    tab.showKeyRefusal(u"No."_s);
    EXPECT_EQ(textOf("settings.ai-key.refusal"), u"No."_s);
    EXPECT_THAT(heard.said(), ElementsAre("No."));
    show();
    EXPECT_EQ(key().length(), 5);
    EXPECT_EQ(textOf("settings.ai-key.refusal"), u"No."_s);
    EXPECT_EQ(heard.said().size(), 1U);
    type("d");
    EXPECT_EQ(textOf("settings.ai-key.refusal"), u"(not shown)"_s);
}

TEST_F(AITabTest, AKeyThatIsTooLongIsNotTakenOver) {
    type("sk-");
    key().insert(QString(10'000, u'k'));
    EXPECT_EQ(typed, "sk-");
    EXPECT_EQ(
        textOf("settings.ai-key.refusal"),
        u"That does not look like an OpenAI API key. It is too long, and nothing was put in."_s);
}

TEST_F(AITabTest, TheKeyIsRemoved) {
    const QSignalSpy removals(&tab, &AITab::keyRemovalWanted);
    for (const bool isSaved : {false, true}) {
        state.isKeySaved = isSaved;
        state.isKeyBusy = false;
        show();
        click("settings.ai-key.remove");
        EXPECT_EQ(removals.count(), isSaved ? 2 : 1) << "also when the belief may be wrong";
        state.isKeyBusy = true;
        show();
        EXPECT_FALSE(button("settings.ai-key.remove").isEnabled());
    }
}

TEST_F(AITabTest, TheSwitchesAskAndStay) {
    std::vector<std::string> wanted;
    QObject::connect(&tab, &AITab::redactionWanted,
                     [&](bool on) { wanted.push_back(on ? "redact" : "include"); });
    QObject::connect(&tab, &AITab::previewWanted,
                     [&](bool on) { wanted.push_back(on ? "ask" : "send"); });
    click("settings.ai-redact");
    click("settings.ai-preview");
    EXPECT_THAT(wanted, ElementsAre("include", "send"));
    EXPECT_TRUE(visible<QAbstractButton>("settings.ai-redact")->isChecked());
    state.isRedacted = false;
    show();
    EXPECT_FALSE(visible<QAbstractButton>("settings.ai-redact")->isChecked());
    click("settings.ai-redact");
    EXPECT_EQ(wanted.back(), "redact");
}

TEST_F(AITabTest, TheModelAndTheEndpointAreEntered) {
    std::vector<QString> entered;
    const QObject listener;  // ends before the tab, which reports a typed text when it ends
    for (StoredField* field : {&tab.model(), &tab.endpoint()}) {
        QObject::connect(field, &StoredField::entered, &listener,
                         [&](const QString& typed) { entered.push_back(typed); });
    }
    state.model = u"a-model"_s;
    show();
    auto* model = visible<QLineEdit>("settings.ai-model");
    EXPECT_EQ(model->text(), u"a-model"_s);
    model->setFocus();
    QTest::keyClicks(model, u"-2"_s);
    EXPECT_THAT(entered, IsEmpty());
    press(Qt::Key_Return);
    auto* endpoint = visible<QLineEdit>("settings.ai-endpoint");
    endpoint->setFocus();
    QTest::keyClicks(endpoint, u"ftp://x"_s);
    endpoint->clearFocus();
    EXPECT_THAT(entered, ElementsAre(u"a-model-2"_s, u"ftp://x"_s));
    tab.endpoint().showRefusal(u"No."_s);
    EXPECT_EQ(textOf("settings.ai-endpoint.refusal"), u"No."_s);
    show();
    EXPECT_EQ(endpoint->text(), u"ftp://x"_s);
}

TEST_F(AITabTest, AllItsWordsAreReadableByAssistiveTechnologyButTheKey) {
    type("sk-secret");
    for (const QWidget* each : tab.findChildren<QWidget*>()) {
        EXPECT_FALSE(each->accessibleName().contains(u"sk-secret"_s));
        EXPECT_FALSE(each->accessibleDescription().contains(u"sk-secret"_s));
    }
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&key())->text(QAccessible::Value), QString());
}

}  // namespace
}  // namespace tallowcrest
