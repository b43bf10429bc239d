#pragma once

#include <vector>

#include <QWidget>

#include "presentation/screens/optimization_suggestions/optimization_suggestions_lines.h"

class QPushButton;

namespace tallowcrest {

class ElidedLabel;
class LevelBar;

/// A large personal file: what it is, what to consider about it, and what can be done with it. For
/// use on a card. Main thread.
class PersonalFileRow final : public QWidget {
    Q_OBJECT

public:
    /// What can be done with a file here, besides moving it to the Trash.
    struct Offers {
        bool reveal = true;
        bool backUp = true;
    };

    /// The object names of its parts begin with `identifier`: "IDENTIFIER.trash".
    PersonalFileRow(const QString& identifier, const Offers& offers, QWidget* parent);

    void setLine(const optimization_suggestions_lines::PersonalFileLine& line);
    /// Only one backup runs at a time.
    void setBackupEnabled(bool isEnabled);
    /// Puts the buttons behind `control` for the Tab key.
    void setTabPlaceAfter(QWidget* control);
    QWidget* lastControl() const;

signals:
    // The owner pressed the button of that name.
    void revealWanted();
    void backupWanted();
    void trashWanted();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    /// Those that are offered, in their order.
    std::vector<QPushButton*> buttons() const;

    ElidedLabel* title_ = nullptr;
    ElidedLabel* size_ = nullptr;
    ElidedLabel* detail_ = nullptr;
    ElidedLabel* recommendation_ = nullptr;
    ElidedLabel* reason_ = nullptr;
    LevelBar* bar_ = nullptr;
    QPushButton* reveal_ = nullptr;  ///< null where it is not offered
    QPushButton* backUp_ = nullptr;  ///< as `reveal_`
    QPushButton* trash_ = nullptr;
};

}  // namespace tallowcrest
