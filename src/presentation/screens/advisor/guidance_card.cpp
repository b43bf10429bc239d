#include "presentation/screens/advisor/guidance_card.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "presentation/screens/shared/payload_preview.h"
#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/flow_row.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/selectable_text.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

GuidanceCard::GuidanceCard(QWidget* parent) : Card(parent) {
    setObjectName(u"ai.guidance"_s);
    setHeader(u"sparkle"_s, u"Guidance"_s);
    payload_ = new PayloadPreview(u"ai"_s, this);
    contentLayout()->addWidget(makeConnection());
    contentLayout()->addWidget(makeButtons());
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
    contentLayout()->addWidget(payload_);
    // The visual order.
    setTabOrder(analyze_, payload_->buttons()[0]);
    setTabOrder(payload_->buttons()[0], payload_->buttons()[1]);
    setTabOrder(payload_->buttons()[1], answer_);
    setTabOrder(answer_, payload_->text());
}

QWidget* GuidanceCard::makeConnection() {
    auto* line = new QWidget(this);
    auto* row = new QHBoxLayout(line);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing::unit);
    connectionIcon_ =
        new IconView(u"desktopcomputer"_s, &CrestTheme::secondaryText, spacing::iconSmall, line);
    connectionIcon_->setObjectName(u"ai.connection-icon"_s);
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
    buttons->addItem(analyze_);
    for (QPushButton* button : payload_->buttons()) {
        buttons->addItem(button);
    }
    connect(analyze_, &QPushButton::clicked, this, &GuidanceCard::analyzeWanted);
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

}  // namespace tallowcrest
