#include "presentation/shell/settings/stored_field.h"

#include <QLineEdit>
#include <QVBoxLayout>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/announcer.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/refusal_line.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

StoredField::StoredField(const QString& title, const QString& placeholder,
                         const QString& identifier, const QString& description, QWidget* parent)
    : QWidget(parent), description_(description) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::unit);
    layout->addWidget(new ElidedLabel(title, onCard(&CrestFonts::body), this));
    field_ = new QLineEdit(this);
    field_->setObjectName(identifier);
    field_->setPlaceholderText(placeholder);
    field_->setAccessibleName(title);
    field_->setTextMargins(spacing::unit, 0, spacing::unit, 0);
    layout->addWidget(field_);
    refusal_ = new RefusalLine(identifier + u".refusal"_s, this);
    layout->addWidget(refusal_);
    showRefusal(QString());

    connect(field_, &QLineEdit::editingFinished, this, &StoredField::enter);
    connect(field_, &QLineEdit::textChanged, this, [this] { showRefusal(QString()); });
    // A text that has been refused is not asked for again.
    connect(field_, &QLineEdit::returnPressed, this, [this] { announce(*this, refusal_->text()); });
}

StoredField::~StoredField() {
    // The base class takes the focus out of the field, which then reports that editing finished.
    field_->disconnect(this);
}

void StoredField::enter() {
    // Not `isModified`: assistive technology sets a text without editing it.
    if (field_->text() != shown_ && refusal_->text().isEmpty()) {
        emit entered(field_->text());
    }
}

void StoredField::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    // A field whose text assistive technology set without the focus is never left.
    enter();
}

void StoredField::showRefusal(const QString& words) {
    refusal_->setText(words);
    setSpokenDescription(*field_, words.isEmpty() ? description_ : words);
}

void StoredField::setStored(const QString& stored) {
    showRefusal(QString());
    field_->setText(stored);
    shown_ = field_->text();  // without what it cannot hold
}

void StoredField::show(const QString& stored) {
    if (field_->text() == shown_ && stored != shown_) {
        setStored(stored);
    }
}

}  // namespace tallowcrest
