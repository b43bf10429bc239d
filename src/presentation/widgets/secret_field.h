#pragma once

#include <string_view>

#include <QClipboard>
#include <QLineEdit>

namespace tallowcrest {

/// A field for a secret. It does not have the secret, only a dot for each character of it: what the
/// owner changes is told by `edited`, and whoever keeps the secret can overwrite it. Nothing can be
/// copied out of the field or undone, and input methods are not to complete it. Assistive
/// technology can write into it as into other fields, but never learns what it has. Main thread.
class SecretField final : public QLineEdit {
    Q_OBJECT

public:
    /// At most `most` characters (code points) fit in.
    SecretField(const QString& identifier, int most, QWidget* parent = nullptr);

    /// Shows a secret of that many characters. Emits nothing.
    void setLength(int characters);
    int length() const { return static_cast<int>(text().size()); }

    /// Replaces the selection, or inserts at the cursor, as the owner does. All of it or, when it
    /// does not fit, nothing.
    void insert(const QString& text);

signals:
    /// The owner put `inserted`, which is UTF-8 and overwritten afterwards, in place of `removed`
    /// characters from the one at `first` on.
    void edited(int first, int removed, std::string_view inserted);
    /// The owner tried to insert more than fits in.
    void overfilled();

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void pasteFrom(QClipboard::Mode mode);
    /// Reports characters that the base class has removed.
    void reportRemoval();

    int most_;
    int reported_ = 0;  ///< the length that whoever keeps the secret knows of
};

}  // namespace tallowcrest
