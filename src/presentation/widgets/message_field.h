#pragma once

#include <QString>
#include <QWidget>

class QPlainTextEdit;

namespace tallowcrest {

/// A field for a plain text of several lines that grows with its text to a few lines and then
/// scrolls. Return asks to send it, Shift-Return begins a new line, and Tab moves on. Main thread.
class MessageField final : public QWidget {
    Q_OBJECT

public:
    /// `prompt` is shown while the field is empty. The identifier is that of the editor within.
    MessageField(const QString& identifier, const QString& name, const QString& prompt,
                 QWidget* parent = nullptr);

    /// Replaces the text, with the caret behind it. Does nothing for the present text. Emits
    /// nothing.
    void setText(const QString& text);
    QString text() const;

    /// Gives the editor the keyboard focus.
    void takeFocus();

signals:
    void textEdited(const QString& text);
    /// The owner pressed Return.
    void sendWanted();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void fitHeight();

    QPlainTextEdit* editor_ = nullptr;
    int promptLines_ = 1;  ///< at the present width
};

}  // namespace tallowcrest
