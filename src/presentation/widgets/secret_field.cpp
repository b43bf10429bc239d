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
#include <QRect>
#include <QScreen>

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr QChar dot = u'\u2022';

/// Qt's own interface of a text field would put what is written through it into the field. By this
/// one the secret is written, and dots are read. Qt's bridge asks each text that can be written for
/// what can be read of it.
class SecretInterface final : public QAccessibleWidget,
                              public QAccessibleTextInterface,
                              public QAccessibleEditableTextInterface {
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
        if (type == QAccessible::TextInterface && isValid()) {
            return static_cast<QAccessibleTextInterface*>(this);
        }
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
        if (field().isEnabled()) {
            setSelection(0, startOffset, endOffset);
            field().insert(text);
        }
    }

    QString text(int startOffset, int endOffset) const override {
        return field().text().mid(startOffset, endOffset - startOffset);
    }
    using QAccessibleWidget::text;
    int characterCount() const override { return field().length(); }
    int cursorPosition() const override { return field().cursorPosition(); }
    void setCursorPosition(int position) override { field().setCursorPosition(position); }
    int selectionCount() const override { return field().hasSelectedText() ? 1 : 0; }
    void selection(int, int* startOffset, int* endOffset) const override {
        *startOffset = std::max(field().selectionStart(), 0);
        *endOffset = *startOffset + static_cast<int>(field().selectedText().size());
    }
    void addSelection(int startOffset, int endOffset) override {
        setSelection(0, startOffset, endOffset);
    }
    void removeSelection(int) override { field().deselect(); }
    void setSelection(int, int startOffset, int endOffset) override {
        const int start = std::clamp(startOffset, 0, characterCount());
        field().setSelection(start, std::clamp(endOffset, start, characterCount()) - start);
    }
    QRect characterRect(int) const override { return {}; }
    int offsetAtPoint(const QPoint& point) const override {
        return field().cursorPositionAt(field().mapFromGlobal(point));
    }
    void scrollToSubstring(int startIndex, int) override { setCursorPosition(startIndex); }
    QString attributes(int, int* startOffset, int* endOffset) const override {
        *startOffset = 0;
        *endOffset = characterCount();
        return {};
    }

private:
    SecretField& field() const { return *static_cast<SecretField*>(object()); }
};

QAccessibleInterface* secretInterface(const QString&, QObject* object) {
    auto* field = qobject_cast<SecretField*>(object);
    return field != nullptr ? new SecretInterface(field) : nullptr;
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
    return !text.isEmpty() && text.front().category() != QChar::Other_Control &&
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
    QAccessible::installFactory(secretInterface);  // which Qt keeps once
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
        // Without its text, which the line edit would put in for some commands and characters.
        QKeyEvent command(event->type(), event->key(), event->modifiers());
        QLineEdit::keyPressEvent(&command);
        event->setAccepted(command.isAccepted());
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
