#pragma once

#include <memory>

#include <QSize>
#include <QString>
#include <QWidget>

namespace tallowcrest {

/// The real window on Chat, over a fake machine, in `state`: "welcome", "asked" (a short
/// conversation), "thinking", "long" (40 messages of 4,000 characters, one of them hostile) or
/// "cleared"; or on "Recommended", in "suggestions". Null for an unknown state.
std::unique_ptr<QWidget> chatGallery(const QString& state, const QSize& size);

/// Prints the processor time from the choice of Chat, with 40 messages of 4,000 characters, to its
/// first painting, and that of the longest turn after it.
void measureChatPage();

}  // namespace tallowcrest
