#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include <QWidget>

#include "presentation/widgets/settling_button.h"

class QBoxLayout;
class QPushButton;

namespace tallowcrest {

class Capsule;
class DangerButton;
class ElidedLabel;
class Observable;
class SystemMonitor;

/// The line below the page header: the length of the session, the outcome of the last action,
/// whether settings cannot be saved, the enabled automations or the emergency stop, the warning
/// threshold, and the emergency stop's button, or the way back from it. It is as high at every
/// width: in a narrow window the session is above the outcome, and both are shortened before
/// anything else is; the tool tips have the whole texts. Main thread.
class StatusStrip final : public QWidget {
    Q_OBJECT

public:
    explicit StatusStrip(SystemMonitor& monitor, QWidget* parent = nullptr);

    void refresh();
    /// A change of any of these calls for a refresh, and nothing else does.
    std::vector<Observable*> shows() const;

protected:
    void focusOutEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void makeTexts();
    void makeButtons();
    /// The words that fit.
    void showSession();
    int roomForTexts() const;
    /// To the right of the texts, in order; some are hidden.
    std::array<QWidget*, 5> marks() const;
    void showSavingProblem();
    void showAutomation();
    void showLastAction();
    void showButton(bool isEngaged);
    bool isOneLine() const;
    /// Puts the texts beside each other, or one above the other.
    void fold();

    SystemMonitor& monitor_;
    QBoxLayout* texts_ = nullptr;
    ElidedLabel* session_ = nullptr;
    ElidedLabel* lastAction_ = nullptr;
    Capsule* notSaved_ = nullptr;
    Capsule* automation_ = nullptr;
    Capsule* threshold_ = nullptr;
    DangerButton* stop_ = nullptr;
    QPushButton* resume_ = nullptr;
    /// Each button takes the other's place, where the second half of a double click must not press
    /// it.
    std::optional<SettlingButton> settlingStop_;
    std::optional<SettlingButton> settlingResume_;
    /// The number of the last action that was shown; absent before the first refresh.
    std::optional<std::uint64_t> toldAction_;
    bool toldCheck_ = false;            ///< that of updates
    std::optional<bool> showsEngaged_;  ///< absent before the first refresh
};

}  // namespace tallowcrest
