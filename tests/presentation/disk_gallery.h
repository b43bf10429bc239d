#pragma once

#include <memory>

#include <QSize>
#include <QString>
#include <QWidget>

namespace tallowcrest {

/// The real window over a fake machine with a disk, in the state `state`: "unscanned",
/// "recommended", "cleanup" and "overview" (the pages, before and after all searches), "busy"
/// (while they are under way), "stopped", "failed", "question" (about a clean-up), "moving",
/// "moved", "undoing" or "undone". Null for an unknown state. A height of 0 shows all of the page.
std::unique_ptr<QWidget> diskGallery(const QString& state, const QSize& size);

}  // namespace tallowcrest
