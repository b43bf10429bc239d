#pragma once

#include "presentation/widgets/card.h"

namespace tallowcrest {

class Observable;
class ProgressRow;
class ProUpdater;

/// How far the download of an update is, with a button that cancels it. Hidden while there is none.
/// Main thread.
class UpdateBar final : public Card {
    Q_OBJECT

public:
    /// The updater must outlive the bar.
    explicit UpdateBar(ProUpdater& updater, QWidget* parent = nullptr);

    void refresh();

private:
    ProUpdater& updater_;
    ProgressRow* row_ = nullptr;
};

/// The row of a download for a place of the window. `identifier` is its object name.
ProgressRow* makeDownloadRow(ProUpdater& updater, const QString& identifier, QWidget* parent);
/// Brings such a row up to date; hides it while nothing is downloaded.
void showDownload(ProgressRow& row, const ProUpdater& updater);

}  // namespace tallowcrest
