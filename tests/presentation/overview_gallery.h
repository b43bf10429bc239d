#pragma once

#include <memory>

#include <QSize>
#include <QString>
#include <QWidget>

namespace tallowcrest {

/// The real window on the Overview, over a fake machine whose state is `state`: "healthy",
/// "troubled", "waiting" (before the first sample) or "collapsed". Null for an unknown state. A
/// height of 0 shows all of the page.
std::unique_ptr<QWidget> overviewGallery(const QString& state, const QSize& size);

}  // namespace tallowcrest
