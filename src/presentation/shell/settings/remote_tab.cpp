#include "presentation/shell/settings/remote_tab.h"

#include <string>

#include <QHBoxLayout>
#include <QLineEdit>
#include <QVBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/icon_view.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// More than any system lets a user's name have, so that a longer one is still refused in words.
constexpr int longestUser = 256;

}  // namespace

RemoteTab::RemoteTab(SystemMonitor& monitor, QWidget* parent)
    : SettingsTab(parent), monitor_(monitor) {
    auto* card = new Card;
    card->setHeader(u"network"_s, u"Remote Access"_s);
    const auto addLabel = [](const QString& text, ElidedLabel::FontRole font,
                             const ThemeColor& color, QWidget* on) {
        auto* label = new ElidedLabel(text, font, color, on);
        label->setGround(&CrestTheme::cardBackground);
        return label;
    };
    card->contentLayout()->addWidget(
        addLabel(u"SSH User"_s, &CrestFonts::body, &CrestTheme::text, card));
    user_ = new QLineEdit(card);
    user_->setObjectName(u"settings.ssh-user"_s);
    user_->setPlaceholderText(u"remote username"_s);
    user_->setAccessibleName(u"SSH User"_s);
    user_->setAccessibleDescription(u"The user's name on the other machines"_s);
    user_->setMaxLength(longestUser);
    user_->setTextMargins(spacing::unit, 0, spacing::unit, 0);
    card->contentLayout()->addWidget(user_);

    refusal_ = new QWidget(card);
    auto* row = new QHBoxLayout(refusal_);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing::unit);
    row->addWidget(
        new IconView(u"exclamationmark.triangle"_s, &CrestTheme::bad, spacing::iconSmall, refusal_),
        0, Qt::AlignTop);
    refusalWords_ = addLabel(QString(), &CrestFonts::body, &CrestTheme::bad, refusal_);
    refusalWords_->setObjectName(u"settings.ssh-user.refusal"_s);
    refusalWords_->setLines(1, 3);
    row->addWidget(refusalWords_, 1);
    refusal_->hide();
    card->contentLayout()->addWidget(refusal_);

    card->contentLayout()->addSpacing(spacing::unit);
    keyStatus_ = addLabel(QString(), &CrestFonts::body, &CrestTheme::secondaryText, card);
    keyStatus_->setObjectName(u"settings.public-key-status"_s);
    keyStatus_->setLines(1, 3);
    card->contentLayout()->addWidget(keyStatus_);
    addCard(card);

    connect(user_, &QLineEdit::editingFinished, this, &RemoteTab::takeUser);
    connect(user_, &QLineEdit::textEdited, this, [this] { showRefusal(QString()); });
}

void RemoteTab::takeUser() {
    if (!user_->isModified() || !refusal_->isHidden()) {
        // Nothing was typed since, and once is enough to be told.
        return;
    }
    const std::string typed = user_->text().toStdString();
    const std::string& user = monitor_.settings().sshUsername;
    if (typed == user || monitor_.connection().setSSHUsername(typed)) {
        user_->setText(dashboard_text::text(user));
    } else {
        // What was typed stays, so that it can be mended.
        showRefusal(dashboard_text::text(monitor_.log().lastAction()));
    }
}

void RemoteTab::showRefusal(const QString& words) {
    refusalWords_->setText(words);
    refusal_->setVisible(!words.isEmpty());
    user_->setAccessibleDescription(words.isEmpty() ? u"The user's name on the other machines"_s
                                                    : words);
}

void RemoteTab::start() {
    showRefusal(QString());
    user_->setText(dashboard_text::text(monitor_.settings().sshUsername));
}

void RemoteTab::refresh() {
    if (!user_->hasFocus() && refusal_->isHidden()) {
        user_->setText(dashboard_text::text(monitor_.settings().sshUsername));
    }
    keyStatus_->setText(dashboard_text::text(monitor_.startup().localPublicKeyStatus));
}

}  // namespace tallowcrest
