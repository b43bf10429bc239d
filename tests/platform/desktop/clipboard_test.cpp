#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>
#include <gtest/gtest.h>

#include "platform/desktop_services.h"

namespace tallowcrest {
namespace {

TEST(Clipboard, HoldsOnePlainTextInPlaceOfWhatWasThere) {
    QGuiApplication::clipboard()->setImage(QImage(4, 4, QImage::Format_RGB32));
    desktop::storeOnClipboard("Tallowcrest report\n\t<b>Zürich</b> 日本");
    const QMimeData* held = QGuiApplication::clipboard()->mimeData();
    ASSERT_NE(held, nullptr);
    EXPECT_EQ(held->text().toStdString(), "Tallowcrest report\n\t<b>Zürich</b> 日本");
    EXPECT_FALSE(held->hasImage());
    EXPECT_FALSE(held->hasHtml());
}

TEST(Clipboard, HoldsALongTextWhole) {
    const std::string text(1 << 20, 'x');
    desktop::storeOnClipboard(text);
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), text);
}

}  // namespace
}  // namespace tallowcrest
