#include "presentation/widgets/secret_field.h"

#include <algorithm>

#include <QAccessibleWidget>
#include <QByteArray>
#include <QDropEvent>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>
#include <QPixmap>
#include <QScreen>

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr QChar dot = u'\u2022';

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

/// How many characters a text has: the second halves of surrogate pairs are none.
qsizetype characterCount(const QString& text) {
    return std::ranges::count_if(text, [](QChar unit) { return !unit.isLowSurrogate(); });
}

/// Whether the key gives a character, and is no command.
bool isTyped(const QKeyEvent& event) {
    const Qt::KeyboardModifiers commands = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    const QString text = event.text();
    return !text.isEmpty() && (text.front().isPrint() || text.front().isSurrogate()) &&
           (event.modifiers() & commands) == Qt::NoModifier;
}

/// Has the library of an X display receive something else. It leaves the last bytes that it has
/// received, which may be those of the clipboard, in a buffer of 4 KB.
void overwriteReceived(const QWidget& field) {
    // Replies of 4 KB, header included, and less. What is longer, or what the server happens to
    // send in pieces, goes past the buffer for the most part; the shorter, the less likely are
    // pieces.
    constexpr QSize pictures[] = {{127, 8}, {63, 8}, {63, 4}, {63, 2}};
    if (QGuiApplication::platformName() != u"xcb"_s) {
        return;
    }
    for (const QSize& picture : pictures) {
        field.screen()->grabWindow(field.window()->winId(), 0, 0, picture.width(),
                                   picture.height());
    }
}

}  // namespace

SecretField::SecretField(const QString& identifier, int most, QWidget* parent)
    : QLineEdit(parent), most_(most) {
    installSecretInterface();
    setObjectName(identifier);
    setEchoMode(QLineEdit::Password);
    setMaxLength(most);
    setInputMethodHints(Qt::ImhHiddenText | Qt::ImhSensitiveData | Qt::ImhNoPredictiveText |
                        Qt::ImhNoAutoUppercase);
    connect(this, &QLineEdit::textChanged, this, &SecretField::reportRemoval);
}

void SecretField::setLength(int characters) {
    if (characters != length()) {
        reported_ = characters;
        // Forgets what could be undone, too.
        setText(QString(characters, dot));
    }
}

void SecretField::insert(const QString& text) {
    const int removed = static_cast<int>(selectedText().size());
    const int first = removed > 0 ? selectionStart() : cursorPosition();
    const qsizetype added = characterCount(text);
    if (length() - removed + added > most_) {
        emit overfilled();
        return;
    }
    reported_ = length() - removed + static_cast<int>(added);
    QLineEdit::insert(QString(added, dot));
    QByteArray bytes = text.toUtf8();
    emit edited(first, removed, {bytes.constData(), static_cast<std::size_t>(bytes.size())});
    overwrite(bytes.data(), bytes.size());
}

void SecretField::reportRemoval() {
    // The cursor is where the removed characters were, whichever key removed them.
    const int removed = reported_ - length();
    if (removed > 0) {
        reported_ = length();
        emit edited(cursorPosition(), removed, {});
    }
}

void SecretField::pasteFrom(QClipboard::Mode mode) {
    QString pasted = QGuiApplication::clipboard()->text(mode);
    insert(pasted);
    overwrite(pasted.data(), pasted.size());
    overwriteReceived(*this);
}

void SecretField::keyPressEvent(QKeyEvent* event) {
    event->accept();
    if (event->matches(QKeySequence::Paste)) {
        const bool isSelection = event->modifiers().testFlag(Qt::ControlModifier) &&
                                 event->modifiers().testFlag(Qt::ShiftModifier) &&
                                 event->key() == Qt::Key_Insert;
        pasteFrom(isSelection ? QClipboard::Selection : QClipboard::Clipboard);
    } else if (isTyped(*event)) {
        insert(event->text());
    } else if (!event->matches(QKeySequence::Undo) && !event->matches(QKeySequence::Redo)) {
        QLineEdit::keyPressEvent(event);
    }
}

void SecretField::inputMethodEvent(QInputMethodEvent* event) {
    // What is being composed is not shown.
    if (!event->commitString().isEmpty()) {
        insert(event->commitString());
    }
    event->accept();
}

void SecretField::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::MiddleButton && QGuiApplication::clipboard()->supportsSelection()) {
        deselect();
        pasteFrom(QClipboard::Selection);
    } else {
        QLineEdit::mouseReleaseEvent(event);
    }
}

void SecretField::dropEvent(QDropEvent* event) {
    QString dropped = event->mimeData()->text();
    insert(dropped);
    overwrite(dropped.data(), dropped.size());
    overwriteReceived(*this);
    event->acceptProposedAction();
}

void SecretField::contextMenuEvent(QContextMenuEvent* event) {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(u"Paste"_s, this, [this] { pasteFrom(QClipboard::Clipboard); });
    menu->addAction(u"Delete"_s, this, [this] { insert({}); })->setEnabled(hasSelectedText());
    menu->addAction(u"Select All"_s, this, &QLineEdit::selectAll)->setEnabled(length() > 0);
    menu->popup(event->globalPos());
}

}  // namespace tallowcrest
