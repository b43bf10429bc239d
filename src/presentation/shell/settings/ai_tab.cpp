#include "presentation/shell/settings/ai_tab.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "advisor/openai_key.h"
#include "presentation/screens/shared/automation_toggles.h"
#include "presentation/screens/shared/autonomy_picker.h"
#include "presentation/screens/shared/command_button.h"
#include "presentation/shell/settings/stored_field.h"
#include "presentation/widgets/announcer.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/danger_button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/refusal_line.h"
#include "presentation/widgets/secret_field.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// White space around a key is not part of it.
constexpr auto longestKey = static_cast<int>(2 * maximumKeyLength);

AutomationLine switchLine(const QString& title, bool isOn) {
    return {.title = title,
            .explanation = {},
            .isOn = isOn,
            .state = isOn ? SwitchState::on : SwitchState::off,
            .lastActed = {}};
}

}  // namespace

AITab::AITab(QWidget* safeActions, QWidget* parent) : SettingsTab(parent) {
    addCard(makeIntelligence());
    addCard(makePayload(safeActions));
    addCard(makeAutonomy());
}

QWidget* AITab::makeIntelligence() {
    auto* card = new Card;
    card->setObjectName(u"settings.ai"_s);
    card->setHeader(u"sparkle"_s, u"AI Intelligence"_s);
    card->contentLayout()->addWidget(makeKey(card));
    keyRefusal_ = new RefusalLine(u"settings.ai-key.refusal"_s, card);
    card->contentLayout()->addWidget(keyRefusal_);
    card->contentLayout()->addSpacing(spacing::unit);
    model_ = new StoredField(u"Model"_s, {}, u"settings.ai-model"_s,
                             u"The model that is asked; the default one when it is empty"_s, card);
    card->contentLayout()->addWidget(model_);
    const LabelStyle caption = onCard(&CrestFonts::caption, &CrestTheme::secondaryText);
    auto* line = makeLabel(u"settings.ai.line"_s, caption, 3, card);
    line->setText(
        u"Default model is gpt-5.6-luna for efficient analysis. The key is stored in macOS "
        "Keychain and is never included in reports."_s);
    card->contentLayout()->addWidget(line);
    card->contentLayout()->addSpacing(spacing::unit);
    endpoint_ =
        new StoredField(u"Endpoint"_s, u"https://…"_s, u"settings.ai-endpoint"_s,
                        u"The address of another server to ask; OpenAI's when it is empty"_s, card);
    card->contentLayout()->addWidget(endpoint_);
    auto* keyLine = makeLabel(u"settings.ai-endpoint.line"_s, caption, 2, card);
    keyLine->setText(u"A saved key is sent to this server as its key."_s);
    card->contentLayout()->addWidget(keyLine);
    return card;
}

QWidget* AITab::makeKey(QWidget* card) {
    auto* part = new QWidget(card);
    auto* layout = new QVBoxLayout(part);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::unit);
    auto* state = new QHBoxLayout;
    state->setSpacing(spacing::unit);
    keyState_ = makeLabel(u"settings.ai-key-state"_s, onCard(&CrestFonts::body), 1, part);
    remove_ = makeDangerButton({"Remove Key", "", "Removes the stored key from the key store"},
                               u"settings.ai-key.remove"_s, part);
    state->addWidget(keyState_, 1);
    state->addWidget(remove_);
    layout->addLayout(state);
    auto* entry = new QHBoxLayout;
    entry->setSpacing(spacing::unit);
    key_ = new SecretField(u"settings.ai-key"_s, longestKey, part);
    key_->setPlaceholderText(u"Paste OpenAI API key"_s);
    key_->setAccessibleName(u"OpenAI API key"_s);
    key_->setAccessibleDescription(u"What is typed here is neither shown nor read out"_s);
    key_->setTextMargins(spacing::unit, 0, spacing::unit, 0);
    save_ = makeButton(u"Save Key"_s, QString(), u"settings.ai-key.save"_s,
                       u"Stores the typed key in place of an older one"_s, part);
    entry->addWidget(key_, 1);
    entry->addWidget(save_);
    layout->addLayout(entry);
    // The visual order.
    setTabOrder(remove_, key_);
    connect(remove_, &QPushButton::clicked, this, &AITab::keyRemovalWanted);
    connect(save_, &QPushButton::clicked, this, &AITab::saveKey);
    connect(key_, &QLineEdit::returnPressed, this, &AITab::saveKey);
    connect(key_, &SecretField::edited, this,
            [this](int first, int removed, std::string_view inserted) {
                showKeyRefusal({});
                emit keyEdited(first, removed, inserted);
            });
    connect(key_, &SecretField::overfilled, this, [this] {
        showKeyRefusal(
            u"That does not look like an OpenAI API key. It is too long, and nothing was put in."_s);
    });
    return part;
}

QWidget* AITab::makePayload(QWidget* safeActions) {
    auto* card = new Card;
    card->setObjectName(u"settings.ai-payload"_s);
    card->setHeader(u"lock.shield"_s, u"What AI Sees And Does"_s);
    card->contentLayout()->setSpacing(spacing::gap);
    card->contentLayout()->addWidget(safeActions);
    redaction_ = new AutomationToggle(u"settings.ai-redact"_s, card);
    connect(redaction_, &AutomationToggle::wanted, this, &AITab::redactionWanted);
    card->contentLayout()->addWidget(redaction_);
    preview_ = new AutomationToggle(u"settings.ai-preview"_s, card);
    connect(preview_, &AutomationToggle::wanted, this, &AITab::previewWanted);
    card->contentLayout()->addWidget(preview_);
    auto* copy = makeButton(u"Copy AI Payload Preview"_s, u"doc.text.magnifyingglass"_s,
                            u"settings.ai-copy-payload"_s,
                            u"Puts the report that would be sent on the clipboard"_s, card);
    connect(copy, &QPushButton::clicked, this, &AITab::payloadCopyWanted);
    card->contentLayout()->addWidget(copy, 0, Qt::AlignLeft);
    return card;
}

QWidget* AITab::makeAutonomy() {
    auto* card = new Card;
    card->setObjectName(u"settings.ai-autonomy"_s);
    card->setHeader(u"checkmark.shield"_s, u"Advisor Autonomy"_s);
    picker_ = new AutonomyPicker(u"settings.autonomy"_s, card);
    card->contentLayout()->addWidget(picker_);
    return card;
}

void AITab::saveKey() {
    if (save_->isEnabled()) {
        emit keySaveWanted();
    }
}

void AITab::showKeyRefusal(const QString& words) {
    keyRefusal_->setText(words);
    announce(*this, words);
}

void AITab::showKey(const AITabState& state) {
    keyState_->setText(state.isKeyBusy    ? u"Waiting for the key store, which may be locked…"_s
                       : state.isKeySaved ? u"OpenAI key saved in Keychain"_s
                                          : u"No OpenAI key saved"_s);
    // Also without a key as far as is known: another program may have stored one meanwhile.
    setButtonEnabled(*remove_, !state.isKeyBusy);
    setButtonEnabled(*save_, !state.isKeyBusy);
    key_->setLength(state.keyLength);
}

void AITab::show(const AITabState& state) {
    showKey(state);
    model_->show(state.model);
    endpoint_->show(state.endpoint);
    redaction_->setLine(
        switchLine(u"Redact process details before AI analysis"_s, state.isRedacted));
    preview_->setLine(
        switchLine(u"Require preview confirmation before AI analysis"_s, state.requiresPreview));
    picker_->setMode(state.mode, state.isStopEngaged);
}

}  // namespace tallowcrest
