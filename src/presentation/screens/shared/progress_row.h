#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

class QPushButton;

namespace tallowcrest {

class ElidedLabel;

/// What is under way, how far it is, and a button that stops it. Hidden while nothing is; its place
/// stays empty for a moment first, so that the second half of a double click on the button hits no
/// other one. However often it is given a new text, it shows at most ten a second. For use on a
/// card. Main thread.
class ProgressRow final : public QWidget {
    Q_OBJECT

public:
    /// What the button says, and what it means.
    struct Button {
        QString title;
        QString description;
    };

    /// `identifier` is the object name of the text; that of the button ends in "-stop". `what` ends
    /// the accessible name of the button, "Stop the scan".
    ProgressRow(const QString& identifier, const QString& what, QWidget* parent = nullptr);
    /// With another button than "Stop", which keeps what is done.
    ProgressRow(const QString& identifier, const QString& what, const Button& button,
                QWidget* parent = nullptr);

    /// An empty `text` hides the row. While stopping, the button is disabled.
    void show(const QString& text, bool isStopping);
    QPushButton* stopButton() const { return stop_; }

signals:
    /// The owner pressed the button.
    void stopWanted();

private:
    void showLatest();
    void keepPlaceWhenHidden(bool keeps);

    ElidedLabel* words_ = nullptr;
    QPushButton* stop_ = nullptr;
    QString latest_;
    QElapsedTimer sinceShown_;
    QTimer due_;
    QTimer placeKept_{this};
};

}  // namespace tallowcrest
