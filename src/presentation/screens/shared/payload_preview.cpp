#include "presentation/screens/shared/payload_preview.h"

#include <utility>

#include <QPushButton>
#include <QVBoxLayout>

#include "advisor/provider.h"
#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/refusal_line.h"
#include "presentation/widgets/selectable_text.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

PayloadPreview::PayloadPreview(const QString& prefix, QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::unit);
    refusal_ = new RefusalLine(prefix + u".payload.refusal"_s, this);
    layout->addWidget(refusal_);
    text_ = new SelectableText(prefix + u".payload"_s, this);
    text_->setShortName(u"Payload"_s);
    text_->hide();
    layout->addWidget(text_);
    buttons_ = {makeButton(u"Preview Payload"_s, u"doc.text.magnifyingglass"_s,
                           prefix + u".preview-payload"_s,
                           u"Puts the report that would be sent on the clipboard"_s, this),
                makeButton(u"Show Payload"_s, QString(), prefix + u".show-payload"_s,
                           u"The whole text that would be sent"_s, this)};
    connect(buttons_[0], &QPushButton::clicked, this, &PayloadPreview::copyWanted);
    connect(buttons_[1], &QPushButton::clicked, this, &PayloadPreview::toggled);
}

void PayloadPreview::show(const QString& payload) {
    text_->showText(payload);
    text_->setVisible(!payload.isEmpty());
    buttons_[1]->setText(payload.isEmpty() ? u"Show Payload"_s : u"Hide Payload"_s);
    setSpokenName(*buttons_[1], buttons_[1]->text());
}

bool PayloadPreview::isShown() const {
    return !text_->isHidden();
}

void PayloadPreview::showRefusal(const QString& words) {
    refusal_->setText(words);
}

void PayloadPreview::follow(const std::function<QString()>& payload, bool isRedacted) {
    const bool wasRedacted = std::exchange(isRedacted_, isRedacted);
    // After another choice the old text would mislead about what is sent.
    if (isShown() && (isRedacted != wasRedacted || !text_->isBeingRead())) {
        text_->showText(payload());
    }
}

void PayloadPreview::setHasSample(bool hasSample) {
    if (hasSample && !hasSample_) {
        refusal_->setText({});
    }
    hasSample_ = hasSample;
}

void connectPayload(PayloadPreview& preview, Provider& provider, std::function<QString()> payload) {
    QObject::connect(&preview, &PayloadPreview::copyWanted, &preview, [&preview, &provider] {
        const Outcome outcome = provider.copyAIPreview();
        preview.showRefusal(outcome.isAccepted() ? QString()
                                                 : dashboard_text::text(outcome.message));
    });
    QObject::connect(&preview, &PayloadPreview::toggled, &preview,
                     [&preview, payload = std::move(payload)] {
                         const bool wasShown = preview.isShown();
                         preview.show(wasShown ? QString() : payload());
                         preview.showRefusal(wasShown || preview.isShown()
                                                 ? QString()
                                                 : u"No AI payload preview is available yet."_s);
                     });
}

}  // namespace tallowcrest
