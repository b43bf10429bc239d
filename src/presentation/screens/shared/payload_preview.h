#pragma once

#include <array>
#include <functional>

#include <QString>
#include <QWidget>

class QPushButton;

namespace tallowcrest {

class Provider;
class RefusalLine;
class SelectableText;

/// What would be sent to the advisor's service, as a text that is shown on request, and its
/// buttons, which stand elsewhere. For use on a page or a card. Main thread.
class PayloadPreview final : public QWidget {
    Q_OBJECT

public:
    /// The object names of its parts begin with `prefix`: "PREFIX.payload".
    explicit PayloadPreview(const QString& prefix, QWidget* parent = nullptr);

    /// "Preview Payload", which copies the report, and "Show Payload". To be put into a row.
    const std::array<QPushButton*, 2>& buttons() const { return buttons_; }

    /// For the order in which Tab goes through the page.
    SelectableText* text() const { return text_; }

    /// Shows what would be sent, or removes it again when the text is empty.
    void show(const QString& payload);
    bool isShown() const;
    /// Brings a shown text up to date, unless it is being read or selected; a change of what is
    /// redacted is always shown.
    void follow(const std::function<QString()>& payload, bool isRedacted);
    /// Shows why there is nothing to copy or to show; an empty text removes that.
    void showRefusal(const QString& words);
    /// Whether there is a sample to make the text of. The first one removes a refusal.
    void setHasSample(bool hasSample);

signals:
    /// The owner pressed "Preview Payload".
    void copyWanted();
    /// The owner pressed "Show Payload" or "Hide Payload".
    void toggled();

private:
    std::array<QPushButton*, 2> buttons_{};
    RefusalLine* refusal_ = nullptr;
    SelectableText* text_ = nullptr;
    bool hasSample_ = false;
    bool isRedacted_ = false;
};

/// Copies the report and shows what `payload()` returns, which is empty when there is nothing yet,
/// as the owner asks. `provider` must outlive the widget.
void connectPayload(PayloadPreview& preview, Provider& provider, std::function<QString()> payload);

}  // namespace tallowcrest
