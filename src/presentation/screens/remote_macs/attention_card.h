#pragma once

#include <string>
#include <vector>

#include "presentation/screens/remote_macs/cancel_scan_button.h"
#include "presentation/screens/remote_macs/remote_macs_lines.h"
#include "presentation/widgets/card.h"

class QPushButton;

namespace tallowcrest {

/// What the card shows. Only the first `remote_macs_lines::mostAttentionLines` of `lines` have a
/// row.
struct AttentionTexts {
    QString summary;
    QString scanState;
    ScanTexts scan = {};
    bool isScanned = false;       ///< a scan has ended
    bool hasUnreachable = false;  ///< the summary counts at least one machine
    std::vector<remote_macs_lines::AttentionLine> lines;
};

/// How many machines need attention, which ones, why, and what to do about it. Main thread.
class AttentionCard final : public Card {
    Q_OBJECT

public:
    explicit AttentionCard(QWidget* parent = nullptr);

    void show(const AttentionTexts& texts);

    /// Ends the running scan; hidden while none runs.
    QPushButton& cancelButton() { return *cancel_; }

signals:
    /// The owner asked to end the running scan.
    void cancelWanted();
    /// The owner wants to see the machine with the record `id`.
    void machineWanted(const std::string& id);

private:
    struct Row {
        IconView* icon;
        ElidedLabel* name;
        ElidedLabel* why;
        ElidedLabel* what;
        QPushButton* show;
    };

    Row makeRow(int number);
    void showRow(std::size_t index, const remote_macs_lines::AttentionLine& line);

    IconView* icon_ = nullptr;
    ElidedLabel* summary_ = nullptr;
    ElidedLabel* scanState_ = nullptr;
    QPushButton* cancel_ = nullptr;
    QWidget* list_ = nullptr;
    std::vector<Row> rows_;
    ElidedLabel* more_ = nullptr;
    std::vector<remote_macs_lines::AttentionLine> shown_;
};

}  // namespace tallowcrest
