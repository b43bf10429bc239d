#pragma once

#include <memory>

#include <QSize>
#include <QString>
#include <QWidget>

namespace tallowcrest {

/// The real window on the overview, over a machine whose state is `state`: "healthy", "troubled",
/// "waiting" (before the first sample) or "collapsed". Null for another word. A height of 0 shows
/// all of the page.
std::unique_ptr<QWidget> overviewGallery(const QString& state, const QSize& size);

}  // namespace tallowcrest
