#include "presentation/screens/advisor/guidance_card.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/flow_row.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/refusal_line.h"
#include "presentation/widgets/selectable_text.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

GuidanceCard::GuidanceCard(QWidget* parent) : Card(parent) {
    setObjectName(u"ai.guidance"_s);
    setHeader(u"sparkle"_s, u"Guidance"_s);
    contentLayout()->addWidget(makeConnection());
    contentLayout()->addWidget(makeButtons());
    refusal_ = new RefusalLine(u"ai.guidance.refusal"_s, this);
    contentLayout()->addWidget(refusal_);
    progress_ = new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::secondaryText), this);
    progress_->setObjectName(u"ai.progress"_s);
    progress_->setLines(1, 2);
    progress_->hide();
    contentLayout()->addWidget(progress_);
    answer_ = new SelectableText(u"ai.insight"_s, this);
    contentLayout()->addWidget(answer_);
    payloadMode_ = new ElidedLabel(onCard(&CrestFonts::caption, &CrestTheme::secondaryText), this);
    payloadMode_->setObjectName(u"ai.payload-mode"_s);
    payloadMode_->setLines(1, 2);
    contentLayout()->addWidget(payloadMode_);
    payload_ = new SelectableText(u"ai.payload"_s, this);
    payload_->hide();
    contentLayout()->addWidget(payload_);
}

QWidget* GuidanceCard::makeConnection() {
    auto* line = new QWidget(this);
    auto* row = new QHBoxLayout(line);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing::unit);
    connectionIcon_ =
        new IconView(u"desktopcomputer"_s, &CrestTheme::secondaryText, spacing::iconSmall, line);
    connection_ = new ElidedLabel(onCard(&CrestFonts::body), line);
    connection_->setObjectName(u"ai.connection-state"_s);
    row->addWidget(connectionIcon_);
    row->addWidget(connection_, 1);
    return line;
}

QWidget* GuidanceCard::makeButtons() {
    auto* buttons = new FlowRow(spacing::unit, this);
    analyze_ = makeButton(u"Analyze Now"_s, u"sparkle.magnifyingglass"_s, u"ai.analyze"_s,
                          u"Explains the present state of this machine"_s, buttons);
    makePrimary(*analyze_);
    auto* copy =
        makeButton(u"Preview Payload"_s, u"doc.text.magnifyingglass"_s, u"ai.preview-payload"_s,
                   u"Puts the report that would be sent on the clipboard"_s, buttons);
    payloadToggle_ = makeButton(u"Show Payload"_s, QString(), u"ai.show-payload"_s,
                                u"Shows everything that would be sent, below"_s, buttons);
    for (QPushButton* button : {analyze_, copy, payloadToggle_}) {
        buttons->addItem(button);
    }
    connect(analyze_, &QPushButton::clicked, this, &GuidanceCard::analyzeWanted);
    connect(copy, &QPushButton::clicked, this, &GuidanceCard::payloadCopyWanted);
    connect(payloadToggle_, &QPushButton::clicked, this, &GuidanceCard::payloadToggled);
    return buttons;
}

void GuidanceCard::show(const GuidanceState& state) {
    if (state == shown_) {
        return;
    }
    shown_ = state;
    connectionIcon_->setIcon(state.isConnected ? u"checkmark.seal.fill"_s : u"desktopcomputer"_s);
    connectionIcon_->setColor(state.isConnected ? &CrestTheme::good : &CrestTheme::secondaryText);
    connection_->setText(state.connection);
    payloadMode_->setText(state.payloadMode);
    analyze_->setText(state.isBusy ? u"Analyzing"_s : u"Analyze Now"_s);
    analyze_->setIcon(themedIcon(state.isBusy ? u"hourglass"_s : u"sparkle.magnifyingglass"_s));
    setSpokenName(*analyze_, analyze_->text());
    setButtonEnabled(*analyze_, !state.isBusy);
}

void GuidanceCard::showAnswer(const QString& answer) {
    answer_->showText(answer);
}

void GuidanceCard::showProgress(const QString& words) {
    progress_->setText(words);
    progress_->setVisible(!words.isEmpty());
}

bool GuidanceCard::showsPayload() const {
    return !payload_->isHidden();
}

void GuidanceCard::showPayload(const QString& payload) {
    payload_->showText(payload);
    payload_->setVisible(!payload.isEmpty());
    payloadToggle_->setText(payload.isEmpty() ? u"Show Payload"_s : u"Hide Payload"_s);
    setSpokenName(*payloadToggle_, payloadToggle_->text());
}

void GuidanceCard::showRefusal(const QString& words) {
    refusal_->setText(words);
}

}  // namespace tallowcrest
