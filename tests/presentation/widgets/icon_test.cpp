#include "presentation/widgets/icon.h"

#include <QApplication>
#include <QFile>
#include <QPainter>
#include <gmock/gmock.h>

#include "core/routes.h"
#include "tests/presentation/icon_names.h"
#include "tests/support/numbers.h"
#include "tests/support/words_of.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

int inkedPixels(const QImage& image) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            count += image.pixelColor(x, y).alpha() > 0 ? 1 : 0;
        }
    }
    return count;
}

TEST(Icons, ExistForEachRoute) {
    for (const AppRoute route : allAppRoutes) {
        const std::string name(symbol(route));
        EXPECT_TRUE(hasIcon(QString::fromStdString(name))) << name;
    }
}

TEST(Icons, ExistForEachNameUsedOnTheScreens) {
    for (const std::string& name : wordsOf(
             "antenna.radiowaves.left.and.right arrow.clockwise arrow.forward.circle.fill "
             "chart.bar.xaxis chart.xyaxis.line checklist.checked checkmark.circle "
             "checkmark.circle.fill checkmark.seal.fill checkmark.shield circle clock "
             "desktopcomputer doc.on.doc doc.text.magnifyingglass exclamationmark.octagon "
             "exclamationmark.triangle exclamationmark.triangle.fill "
             "externaldrive.badge.magnifyingglass folder.badge.gearshape gearshape hourglass "
             "info.circle internaldrive lock.fill lock.shield macwindow magnifyingglass memorychip "
             "network network.badge.shield.half.filled person.crop.circle power scope "
             "slider.horizontal.3 sparkle square.and.arrow.up waveform.path.ecg xmark.circle")) {
        EXPECT_TRUE(hasIcon(QString::fromStdString(name))) << name;
    }
}

TEST(Icons, UseTheCommonGridAndAreVisibleAtTheSmallestSize) {
    ASSERT_GE(iconNames().size(), 40);
    for (const QString& name : iconNames()) {
        QFile file(u":/icons/%1.svg"_s.arg(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
        const QByteArray source = file.readAll();
        EXPECT_TRUE(source.contains("viewBox=\"0 0 24 24\"")) << name.toStdString();
        EXPECT_TRUE(source.contains("stroke-width=\"1.75\"")) << name.toStdString();
        EXPECT_TRUE(source.contains("stroke-linecap=\"round\"")) << name.toStdString();
        EXPECT_GT(inkedPixels(tintedIcon(name, Qt::black, 16, 1).toImage()), 15)
            << name.toStdString();
    }
}

TEST(TintedIcon, IsNullForAnUnknownName) {
    EXPECT_TRUE(tintedIcon(u"no.such.icon"_s, Qt::black, 16, 1).isNull());
    EXPECT_TRUE(tintedIcon(QString(), Qt::black, 16, 1).isNull());
    EXPECT_TRUE(themedIcon(u"no.such.icon"_s).isNull());
    EXPECT_FALSE(hasIcon(u"../icons/clock"_s));
}

TEST(TintedIcon, HasTheRequestedColorAndSize) {
    const QPixmap pixmap = tintedIcon(u"lock.fill"_s, Qt::magenta, 20, 2);
    EXPECT_EQ(pixmap.size(), QSize(40, 40));
    EXPECT_EQ(pixmap.deviceIndependentSize(), QSizeF(20, 20));
    EXPECT_EQ(pixmap.toImage().pixelColor(20, 26), QColor(Qt::magenta));
    EXPECT_EQ(pixmap.toImage().pixelColor(0, 0).alpha(), 0);
    for (const QColor color : {Qt::red, Qt::blue}) {
        EXPECT_EQ(tintedIcon(u"lock.fill"_s, color, 24, 1).toImage().pixelColor(12, 16), color);
    }
}

TEST(ThemedIcon, FollowsTheApplicationsPalette) {
    const QPalette before = QApplication::palette();
    const QIcon icon = themedIcon(u"lock.fill"_s);
    for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
        QApplication::setPalette(paletteFor(appearance));
        EXPECT_EQ(icon.pixmap(QSize(24, 24), 1.0).toImage().pixelColor(12, 16),
                  CrestTheme::current().text);
    }
    QApplication::setPalette(before);
}

TEST(GaugeIcon, MovesItsNeedleWithTheValue) {
    const QImage low = gaugeIcon(0, Qt::black, 22).toImage();
    const QImage middle = gaugeIcon(50, Qt::black, 22).toImage();
    const QImage high = gaugeIcon(100, Qt::black, 22).toImage();
    EXPECT_NE(low, middle);
    EXPECT_NE(middle, high);
    // At half the needle points straight up, between the hub and the arc.
    EXPECT_GT(middle.pixelColor(11, 8).alpha(), 200);
    EXPECT_EQ(low.pixelColor(11, 8).alpha(), 0);
}

TEST(GaugeIcon, ClampsToPercentages) {
    EXPECT_EQ(gaugeIcon(140, Qt::black, 22).toImage(), gaugeIcon(100, Qt::black, 22).toImage());
    EXPECT_EQ(gaugeIcon(-1, Qt::black, 22).toImage(), gaugeIcon(0, Qt::black, 22).toImage());
    EXPECT_EQ(gaugeIcon(nan, Qt::black, 22).toImage(), gaugeIcon(0, Qt::black, 22).toImage());
}

TEST(GaugeIcon, WithAHaloStandsOutFromEveryPanel) {
    for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
        const CrestTheme theme = CrestTheme::of(paletteFor(appearance));
        for (const QColor& panel :
             {QColor(Qt::black), QColor(0x2a, 0x2b, 0x2e), QColor(0x77, 0x77, 0x77),
              QColor(0xf3, 0xf3, 0xf4), QColor(Qt::white), theme.text, theme.pageBackground}) {
            QImage image(22, 22, QImage::Format_RGB32);
            image.fill(panel);
            {
                QPainter painter(&image);
                painter.drawPixmap(0, 0, gaugeIcon(40, theme.text, 22, 1, theme.pageBackground));
            }
            int distinct = 0;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    distinct += contrastRatio(image.pixelColor(x, y), panel) >= 3 ? 1 : 0;
                }
            }
            EXPECT_GT(distinct, 60) << panel.name().toStdString();
        }
    }
}

TEST(ApplicationIcon, IsDrawnInSeveralSizes) {
    const QIcon icon = applicationIcon();
    EXPECT_FALSE(icon.isNull());
    EXPECT_GE(icon.availableSizes().size(), 3);
    EXPECT_GT(inkedPixels(icon.pixmap(QSize(48, 48), 1.0).toImage()), 800);
}

}  // namespace
}  // namespace tallowcrest
