#pragma once

#include <QString>
#include <QWidget>

class QPushButton;

namespace tallowcrest {

class MessageField;

/// The input of Chat with its buttons. Main thread.
class ChatComposer final : public QWidget {
    Q_OBJECT

public:
    explicit ChatComposer(QWidget* parent = nullptr);

    /// Nothing can be sent while `isBusy` or without a text.
    void show(const QString& text, bool isBusy);
    /// Gives the input the keyboard focus.
    void takeFocus();

signals:
    void textEdited(const QString& text);
    /// The owner pressed "Send" or Return.
    void sendWanted();
    void settingsWanted();

private:
    MessageField* field_ = nullptr;
    QPushButton* send_ = nullptr;
};

}  // namespace tallowcrest
