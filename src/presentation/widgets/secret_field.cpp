#include "presentation/widgets/secret_field.h"

#include <algorithm>

#include <QAccessibleWidget>
#include <QByteArray>

namespace tallowcrest {
namespace {

/// Qt's own interface of a text field tells each inserted text, that of a password too. This one
/// has no text to read and can only be written to.
class SecretInterface final : public QAccessibleWidget, public QAccessibleEditableTextInterface {
public:
    explicit SecretInterface(SecretField* field)
        : QAccessibleWidget(field, QAccessible::EditableText) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.editable = true;
        state.passwordEdit = true;
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::EditableTextInterface && isValid()) {
            return static_cast<QAccessibleEditableTextInterface*>(this);
        }
        return QAccessibleWidget::interface_cast(type);
    }

    void deleteText(int startOffset, int endOffset) override {
        replaceText(startOffset, endOffset, {});
    }
    void insertText(int offset, const QString& text) override { replaceText(offset, offset, text); }
    void replaceText(int startOffset, int endOffset, const QString& text) override {
        auto* field = qobject_cast<SecretField*>(object());
        if (field == nullptr || !field->isEnabled()) {
            return;
        }
        const auto length = static_cast<int>(field->text().size());
        const int start = std::clamp(startOffset, 0, length);
        field->setSelection(start, std::clamp(endOffset, start, length) - start);
        field->insert(text);
    }
};

QAccessibleInterface* secretInterface(const QString&, QObject* object) {
    auto* field = qobject_cast<SecretField*>(object);
    return field != nullptr ? new SecretInterface(field) : nullptr;
}

void installSecretInterface() {
    static const bool installed = [] {
        QAccessible::installFactory(secretInterface);
        return true;
    }();
    static_cast<void>(installed);
}

/// Overwrites memory that nothing reads afterwards, which a compiler could otherwise leave out.
template <class Unit>
void overwrite(Unit* units, qsizetype count) {
    auto* const bytes = reinterpret_cast<volatile char*>(units);
    std::fill_n(bytes, count * static_cast<qsizetype>(sizeof(Unit)), '\0');
}

}  // namespace

SecretField::SecretField(const QString& identifier, QWidget* parent) : QLineEdit(parent) {
    installSecretInterface();
    setObjectName(identifier);
    setEchoMode(QLineEdit::Password);
    setInputMethodHints(Qt::ImhHiddenText | Qt::ImhSensitiveData | Qt::ImhNoPredictiveText |
                        Qt::ImhNoAutoUppercase);
}

SecretField::~SecretField() {
    wipe();
}

void SecretField::withText(const std::function<void(std::string_view)>& use) const {
    QByteArray bytes = text().toUtf8();
    use({bytes.constData(), static_cast<std::size_t>(bytes.size())});
    overwrite(bytes.data(), bytes.size());
}

void SecretField::wipe() {
    QString held = text();
    // Not `clear`, which keeps the characters to undo it. Afterwards nothing else shares them.
    setText(QString());
    overwrite(held.data(), held.size());
}

}  // namespace tallowcrest
