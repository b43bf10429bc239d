#include "presentation/graph_raster.h"

#include <algorithm>
#include <cmath>

namespace tallowcrest {
namespace {

/// `over` laid on `under` with a weight of 0 to 256; both are opaque.
QRgb laidOver(QRgb under, QRgb over, unsigned weight) {
    // Two channels at a time, eight bits apart, which leaves room for the products.
    constexpr QRgb redAndBlue = 0x00ff00ff;
    constexpr QRgb green = 0x0000ff00;
    const unsigned rest = 256 - weight;
    return 0xff000000 |
           ((((over & redAndBlue) * weight + (under & redAndBlue) * rest) >> 8) & redAndBlue) |
           ((((over & green) * weight + (under & green) * rest) >> 8) & green);
}

/// The pixels of an image by row and column.
struct Pixels {
    explicit Pixels(QImage& image)
        : first(reinterpret_cast<QRgb*>(image.bits())),
          stride(static_cast<std::ptrdiff_t>(image.bytesPerLine() / qsizetype{sizeof(QRgb)})) {}

    QRgb* at(int row, int column) const { return first + row * stride + column; }

    QRgb* first;
    std::ptrdiff_t stride;
};

struct Range {
    int begin;
    int end;
};

/// The columns that fall into `image`.
Range shownColumns(const QImage& image, const std::vector<GraphColumn>& columns, QPoint origin) {
    return {std::max(0, -origin.x()),
            std::min(static_cast<int>(columns.size()), image.width() - origin.x())};
}

}  // namespace

void drawGraphColumns(QImage& image, const std::vector<GraphColumn>& columns, QPoint origin,
                      QRgb color) {
    const Pixels pixels(image);
    const auto down = static_cast<float>(origin.y());
    const auto height = static_cast<float>(image.height());
    const Range shown = shownColumns(image, columns, origin);
    for (int x = shown.begin; x < shown.end; ++x) {
        const GraphColumn& column = columns[static_cast<std::size_t>(x)];
        const float middle = column.middle + down;
        const float top = column.top + down;
        const float bottom = column.bottom + down;
        const float sharpness = 1 / column.softness;
        const float reach = column.half + column.softness / 2;
        // None of the rows is negative, so cutting off the fraction rounds down.
        const auto begin = static_cast<int>(std::max(0.0F, std::max(middle - reach, top - 0.5F)));
        const auto last =
            static_cast<int>(std::min(height, std::min(middle + reach, bottom + 0.5F) + 1));
        QRgb* pixel = pixels.at(begin, x + origin.x());
        for (int row = begin; row < last; ++row, pixel += pixels.stride) {
            const float y = static_cast<float>(row) + 0.5F;
            const float across = (column.half - std::abs(y - middle)) * sharpness;
            const float share = 0.5F + std::min(across, std::min(y - top, bottom - y));
            if (share >= 1) {
                *pixel = color;
            } else if (share > 0) {
                *pixel = laidOver(*pixel, color, static_cast<unsigned>(share * 256));
            }
        }
    }
}

void fillBelowGraphColumns(QImage& image, const std::vector<GraphColumn>& columns, QPoint origin,
                           int bottom, QRgb color) {
    const Pixels pixels(image);
    const int end = std::min(bottom, image.height());
    const Range shown = shownColumns(image, columns, origin);
    const auto firstRow = [&columns, origin, end](int x) {
        const float middle = columns[static_cast<std::size_t>(x)].middle;
        return std::clamp(static_cast<int>(middle) + origin.y(), 0, end);
    };
    int wholeRows = 0;
    for (int x = shown.begin; x < shown.end; ++x) {
        wholeRows = std::max(wholeRows, firstRow(x));
    }
    for (int x = shown.begin; x < shown.end; ++x) {
        const int begin = firstRow(x);
        QRgb* pixel = pixels.at(begin, x + origin.x());
        for (int row = begin; row < wholeRows; ++row, pixel += pixels.stride) {
            *pixel = color;
        }
    }
    // Below the lowest point of the line, which is most of it, whole rows go a lot faster.
    if (shown.begin < shown.end) {
        for (int row = wholeRows; row < end; ++row) {
            std::fill_n(pixels.at(row, shown.begin + origin.x()), shown.end - shown.begin, color);
        }
    }
}

}  // namespace tallowcrest
