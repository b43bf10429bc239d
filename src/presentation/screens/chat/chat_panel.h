#pragma once

#include <memory>
#include <span>
#include <vector>

#include <QWidget>

#include "presentation/words/session_lines.h"

class QPushButton;

namespace tallowcrest {

class SummaryCards;

/// The figures that answers speak of, what of them is sent, and questions to begin with. Stands
/// beside the conversation or above it. Main thread.
class ChatPanel final : public QWidget {
    Q_OBJECT

public:
    /// `payloadButtons` are put below the figures, which are what is sent.
    explicit ChatPanel(std::span<QPushButton* const> payloadButtons, QWidget* parent = nullptr);
    ~ChatPanel() override;

    void show(std::vector<SummaryTexts> facts);

signals:
    /// The owner chose a question, to be put into the input.
    void questionChosen(const QString& question);
    /// The owner asked a question at once.
    void questionAsked(const QString& question);

private:
    QWidget* makeQuestion(int number, const QString& question);

    std::unique_ptr<SummaryCards> facts_;
};

}  // namespace tallowcrest
