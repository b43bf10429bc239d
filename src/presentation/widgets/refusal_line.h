#pragma once

#include <QString>
#include <QWidget>

namespace tallowcrest {

class ElidedLabel;

/// Why something was refused, in place: below the control that was operated. Takes no room while
/// there is nothing to say. For use on a card. Main thread.
class RefusalLine final : public QWidget {
    Q_OBJECT

public:
    /// `identifier` is the object name of the text.
    explicit RefusalLine(const QString& identifier, QWidget* parent = nullptr);

    /// Plain text; empty for none.
    void setText(const QString& text);
    const QString& text() const;

private:
    ElidedLabel* words_ = nullptr;
};

}  // namespace tallowcrest
