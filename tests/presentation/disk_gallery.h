#pragma once

#include <memory>

#include <QSize>
#include <QString>
#include <QWidget>

namespace tallowcrest {

/// The real window over a fake machine with a disk, in the state `state`: "recommended" and
/// "cleanup" (the pages, with the results of all searches), "busy" (while they are under way) or
/// "question" (about a clean-up). Null for an unknown state. A height of 0 shows all of the page.
std::unique_ptr<QWidget> diskGallery(const QString& state, const QSize& size);

}  // namespace tallowcrest
