#include "presentation/shell/settings/remote_tab.h"

#include <QPushButton>
#include <QVBoxLayout>

#include "presentation/screens/shared/command_button.h"
#include "presentation/shell/settings/stored_field.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

RemoteTab::RemoteTab(QWidget* parent) : SettingsTab(parent) {
    auto* card = new Card;
    card->setHeader(u"network"_s, u"Remote Access"_s);
    user_ = new StoredField(u"SSH User"_s, u"remote username"_s, u"settings.ssh-user"_s,
                            u"The user's name on the other machines"_s, card);
    card->contentLayout()->addWidget(user_);

    card->contentLayout()->addSpacing(spacing::unit);
    keyStatus_ = new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::secondaryText), card);
    keyStatus_->setObjectName(u"settings.public-key-status"_s);
    keyStatus_->setLines(1, 3);
    card->contentLayout()->addWidget(keyStatus_);
    auto* copy = makeButton(commands::copyPublicKey, u"settings.copy-public-key"_s, card);
    connect(copy, &QPushButton::clicked, this, &RemoteTab::publicKeyCopyWanted);
    card->contentLayout()->addWidget(copy, 0, Qt::AlignLeft);
    addCard(card);
}

void RemoteTab::show(const QString& username, const QString& keyStatus) {
    user_->show(username);
    keyStatus_->setText(keyStatus);
}

}  // namespace tallowcrest
