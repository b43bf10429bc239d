#pragma once

#include <QString>

#include "presentation/widgets/card.h"

class QPushButton;

namespace tallowcrest {

class ElidedLabel;
class IconView;
class PayloadPreview;
class SelectableText;

/// What the guidance card shows beside the answer and the progress.
struct GuidanceState {
    QString connection;  ///< the state line
    bool isConnected = false;
    bool isBusy = false;
    QString payloadMode;

    bool operator==(const GuidanceState&) const = default;
};

/// The connection, the buttons that analyze and show what would be sent, and the latest answer.
/// Main thread.
class GuidanceCard final : public Card {
    Q_OBJECT

public:
    explicit GuidanceCard(QWidget* parent = nullptr);

    void show(const GuidanceState& state);
    /// The answer may have several lines.
    void showAnswer(const QString& answer);
    /// How long the analysis has taken; empty without one.
    void showProgress(const QString& words);
    PayloadPreview& payload() { return *payload_; }

signals:
    /// The owner pressed "Analyze Now".
    void analyzeWanted();

private:
    QWidget* makeConnection();
    QWidget* makeButtons();

    GuidanceState shown_;
    IconView* connectionIcon_ = nullptr;
    ElidedLabel* connection_ = nullptr;
    QPushButton* analyze_ = nullptr;
    ElidedLabel* progress_ = nullptr;
    SelectableText* answer_ = nullptr;
    ElidedLabel* payloadMode_ = nullptr;
    PayloadPreview* payload_ = nullptr;
};

}  // namespace tallowcrest
