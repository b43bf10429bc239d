#include "presentation/screens/chat/chat_composer.h"

#include <QHBoxLayout>
#include <QPushButton>

#include "presentation/widgets/button.h"
#include "presentation/widgets/message_field.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

ChatComposer::ChatComposer(QWidget* parent) : QWidget(parent) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::unit);
    field_ = new MessageField(
        u"chat.input"_s, u"Question"_s,
        u"Ask about memory pressure, CPU spikes, top apps, or safer next actions"_s, this);
    connect(field_, &MessageField::textEdited, this, &ChatComposer::textEdited);
    connect(field_, &MessageField::sendWanted, this, &ChatComposer::sendWanted);
    layout->addWidget(field_, 1);
    send_ = makeButton(u"Send"_s, u"message"_s, u"chat.send"_s, u"Asks the question"_s, this);
    makePrimary(*send_);
    connect(send_, &QPushButton::clicked, this, &ChatComposer::sendWanted);
    layout->addWidget(send_, 0, Qt::AlignBottom);
    auto* settings = makeButton(u"Settings"_s, u"gearshape"_s, u"chat.settings"_s,
                                u"Opens the settings sheet"_s, this);
    connect(settings, &QPushButton::clicked, this, &ChatComposer::settingsWanted);
    layout->addWidget(settings, 0, Qt::AlignBottom);
}

void ChatComposer::show(const QString& text, bool isBusy) {
    field_->setText(text);
    setButtonEnabled(*send_, !isBusy && !text.trimmed().isEmpty());
}

void ChatComposer::takeFocus() {
    field_->takeFocus();
}

}  // namespace tallowcrest
