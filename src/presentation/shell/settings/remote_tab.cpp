#include "presentation/shell/settings/remote_tab.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "presentation/screens/shared/command_button.h"
#include "presentation/widgets/announcer.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// More than any system allows in a user name, so that a name that is too long is refused with a
/// message and not silently cut.
constexpr int longestUser = 256;

}  // namespace

RemoteTab::RemoteTab(QWidget* parent) : SettingsTab(parent) {
    auto* card = new Card;
    card->setHeader(u"network"_s, u"Remote Access"_s);
    card->contentLayout()->addWidget(
        new ElidedLabel(u"SSH User"_s, onCard(&CrestFonts::body), card));
    user_ = new QLineEdit(card);
    user_->setObjectName(u"settings.ssh-user"_s);
    user_->setPlaceholderText(u"remote username"_s);
    user_->setAccessibleName(u"SSH User"_s);
    user_->setMaxLength(longestUser);
    user_->setTextMargins(spacing::unit, 0, spacing::unit, 0);
    card->contentLayout()->addWidget(user_);
    card->contentLayout()->addWidget(makeRefusal());
    showRefusal(QString());

    card->contentLayout()->addSpacing(spacing::unit);
    keyStatus_ = new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::secondaryText), card);
    keyStatus_->setObjectName(u"settings.public-key-status"_s);
    keyStatus_->setLines(1, 3);
    card->contentLayout()->addWidget(keyStatus_);
    auto* copy = makeButton(commands::copyPublicKey, u"settings.copy-public-key"_s, card);
    connect(copy, &QPushButton::clicked, this, &RemoteTab::publicKeyCopyWanted);
    card->contentLayout()->addWidget(copy, 0, Qt::AlignLeft);
    addCard(card);

    connect(user_, &QLineEdit::editingFinished, this, &RemoteTab::enter);
    connect(user_, &QLineEdit::textChanged, this, [this] { showRefusal(QString()); });
    // A name that has been refused is not asked for again.
    connect(user_, &QLineEdit::returnPressed, this,
            [this] { announce(*this, refusalWords_->text()); });
}

RemoteTab::~RemoteTab() {
    // The base class takes the focus out of the field, which then reports that editing finished.
    user_->disconnect(this);
}

void RemoteTab::enter() {
    // Not `isModified`: assistive technology sets a text without editing it.
    if (user_->text() != shown_ && refusal_->isHidden()) {
        emit usernameEntered(user_->text());
    }
}

void RemoteTab::hideEvent(QHideEvent* event) {
    SettingsTab::hideEvent(event);
    // A field whose text assistive technology set without the focus is never left.
    enter();
}

QWidget* RemoteTab::makeRefusal() {
    refusal_ = new QWidget;
    auto* row = new QHBoxLayout(refusal_);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing::unit);
    row->addWidget(
        new IconView(u"exclamationmark.triangle"_s, &CrestTheme::bad, spacing::iconSmall, refusal_),
        0, Qt::AlignTop);
    refusalWords_ = new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::bad), refusal_);
    refusalWords_->setObjectName(u"settings.ssh-user.refusal"_s);
    refusalWords_->setLines(1, 3);
    row->addWidget(refusalWords_, 1);
    return refusal_;
}

void RemoteTab::showRefusal(const QString& words) {
    refusalWords_->setText(words);
    refusal_->setVisible(!words.isEmpty());
    user_->setAccessibleDescription(words.isEmpty() ? u"The user's name on the other machines"_s
                                                    : words);
}

void RemoteTab::setUsername(const QString& username) {
    showRefusal(QString());
    shown_ = username;
    user_->setText(username);
}

void RemoteTab::show(const QString& username, const QString& keyStatus) {
    if (user_->text() == shown_ && username != shown_) {
        setUsername(username);
    }
    keyStatus_->setText(keyStatus);
}

}  // namespace tallowcrest
