#pragma once

#include <QString>
#include <QWidget>

class QLineEdit;

namespace tallowcrest {

class RefusalLine;

/// A named text field for a stored value, and below it why a text was refused. A text is entered by
/// Return and by leaving the field. For use on a card. Main thread.
class StoredField final : public QWidget {
    Q_OBJECT

public:
    /// `identifier` is the object name of the field.
    StoredField(const QString& title, const QString& placeholder, const QString& identifier,
                const QString& description, QWidget* parent = nullptr);
    ~StoredField() override;

    /// Shows the stored value. A text that is being typed or was refused stays.
    void show(const QString& stored);

    /// Replaces what was typed by the stored value and removes a refusal. Called when a text was
    /// accepted, and when the sheet opens.
    void setStored(const QString& stored);

    /// Shows why the text was refused; an empty text removes that. The typed text stays, so that it
    /// can be corrected.
    void showRefusal(const QString& words);

signals:
    /// The owner finished typing a text. Not repeated for a text that was refused.
    void entered(const QString& typed);

protected:
    void hideEvent(QHideEvent* event) override;

private:
    void enter();

    QString description_;
    QLineEdit* field_ = nullptr;
    QString shown_;  ///< the stored value when it was put into the field
    RefusalLine* refusal_ = nullptr;
};

}  // namespace tallowcrest
