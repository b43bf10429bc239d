#include "presentation/shell/update_bar.h"

#include <QVBoxLayout>

#include "integration/pro_updater.h"
#include "presentation/screens/shared/progress_row.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/update_lines.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

UpdateBar::UpdateBar(ProUpdater& updater, QWidget* parent) : Card(parent), updater_(updater) {
    setObjectName(u"update.bar"_s);
    layout()->setContentsMargins(spacing::cardPadding, spacing::unit, spacing::unit, spacing::unit);
    row_ = makeDownloadRow(updater_, u"update.bar.progress"_s, this);
    contentLayout()->addWidget(row_);
    hide();
}

void UpdateBar::refresh() {
    showDownload(*row_, updater_);
    setVisible(updater_.state().download.has_value());
}

ProgressRow* makeDownloadRow(ProUpdater& updater, const QString& identifier, QWidget* parent) {
    auto* row = new ProgressRow(
        identifier, u"the download"_s,
        {.title = u"Cancel"_s, .description = u"Ends the download and keeps nothing of it"_s},
        parent);
    QObject::connect(row, &ProgressRow::stopWanted, row, [&updater] { updater.cancelDownload(); });
    return row;
}

void showDownload(ProgressRow& row, const ProUpdater& updater) {
    const auto& download = updater.state().download;
    if (!download) {
        row.show({}, false);
        return;
    }
    row.show(updateDownloadLine(download->version, download->progress.received,
                                download->progress.total),
             download->isStopping);
}

}  // namespace tallowcrest
