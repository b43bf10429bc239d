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

namespace tallowcrest {
namespace {

/// More than any system lets a user's name have, so that a longer one is still refused in words.
constexpr int longestUser = 256;

}  // namespace

RemoteTab::RemoteTab(SystemMonitor& monitor, QWidget* parent)
    : SettingsTab(parent), monitor_(monitor) {
    auto* card = new Card;
    card->setHeader(QStringLiteral("network"), QStringLiteral("Remote Access"));
    const auto addLabel = [](const QString& text, ElidedLabel::FontRole font,
                             const ThemeColor& color, QWidget* on) {
        auto* label = new ElidedLabel(text, font, color, on);
        label->setGround(&CrestTheme::cardBackground);
        return label;
    };
    card->contentLayout()->addWidget(
        addLabel(QStringLiteral("SSH User"), &CrestFonts::body, &CrestTheme::text, card));
    user_ = new QLineEdit(card);
    user_->setObjectName(QStringLiteral("settings.ssh-user"));
    user_->setPlaceholderText(QStringLiteral("remote username"));
    user_->setAccessibleName(QStringLiteral("SSH User"));
    user_->setAccessibleDescription(QStringLiteral("The user's name on the other machines"));
    user_->setMaxLength(longestUser);
    user_->setTextMargins(spacing::unit, 0, spacing::unit, 0);
    card->contentLayout()->addWidget(user_);

    refusal_ = new QWidget(card);
    auto* row = new QHBoxLayout(refusal_);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing::unit);
    row->addWidget(new IconView(QStringLiteral("exclamationmark.triangle"), &CrestTheme::bad,
                                spacing::iconSmall, refusal_),
                   0, Qt::AlignTop);
    refusalWords_ = addLabel(QString(), &CrestFonts::body, &CrestTheme::bad, refusal_);
    refusalWords_->setObjectName(QStringLiteral("settings.ssh-user.refusal"));
    refusalWords_->setLines(1, 3);
    row->addWidget(refusalWords_, 1);
    refusal_->hide();
    card->contentLayout()->addWidget(refusal_);

    card->contentLayout()->addSpacing(spacing::unit);
    keyStatus_ = addLabel(QString(), &CrestFonts::body, &CrestTheme::secondaryText, card);
    keyStatus_->setObjectName(QStringLiteral("settings.public-key-status"));
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
    user_->setAccessibleDescription(
        words.isEmpty() ? QStringLiteral("The user's name on the other machines") : words);
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
