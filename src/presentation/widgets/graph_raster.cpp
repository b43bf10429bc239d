#include "presentation/widgets/graph_raster.h"

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

/// Blends one colour over others at one opacity. Most pixels of a graph have the colour of the
/// pixel before, so the last result is cached.
class Wash {
public:
    Wash(QRgb color, double opacity) : color_(color), opacity_(opacity), result_(mixed(under_)) {}

    QRgb over(QRgb under) {
        if (under != under_) {
            under_ = under;
            result_ = mixed(under);
        }
        return result_;
    }

private:
    QRgb mixed(QRgb under) const {
        const auto channel = [this](int a, int b) {
            return static_cast<int>(a + (b - a) * opacity_ + 0.5);
        };
        return qRgb(channel(qRed(under), qRed(color_)), channel(qGreen(under), qGreen(color_)),
                    channel(qBlue(under), qBlue(color_)));
    }

    QRgb color_;
    double opacity_;
    QRgb under_ = 0xff000000;
    QRgb result_;
};

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

template <int count>
bool isOneColor(const QRgb* pixels) {
    QRgb differences = 0;
    for (int i = 0; i < count; ++i) {
        differences |= pixels[i] ^ pixels[0];
    }
    return differences == 0;
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
        // The rows are not negative, so truncation rounds down.
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

void layBelowGraphColumns(QImage& image, const std::vector<GraphColumn>& columns, QPoint origin,
                          int bottom, QRgb color, double opacity) {
    // Few enough that the line rises little among them, and that they are compared and filled with
    // a few vector instructions.
    constexpr int stripWidth = 8;
    const Pixels pixels(image);
    Wash wash(color, opacity);
    const int end = std::min(bottom, image.height());
    const Range shown = shownColumns(image, columns, origin);
    const auto firstRow = [&columns, origin, end](int x) {
        const float middle = columns[static_cast<std::size_t>(x)].middle;
        return std::clamp(static_cast<int>(middle) + origin.y(), 0, end);
    };
    for (int left = shown.begin; left < shown.end; left += stripWidth) {
        const int right = std::min(left + stripWidth, shown.end);
        int wholeRows = 0;
        for (int x = left; x < right; ++x) {
            wholeRows = std::max(wholeRows, firstRow(x));
        }
        for (int x = left; x < right; ++x) {
            const int begin = firstRow(x);
            QRgb* pixel = pixels.at(begin, x + origin.x());
            for (int row = begin; row < wholeRows; ++row, pixel += pixels.stride) {
                *pixel = wash.over(*pixel);
            }
        }
        QRgb* pixel = pixels.at(wholeRows, left + origin.x());
        for (int row = wholeRows; row < end; ++row, pixel += pixels.stride) {
            if (right - left == stripWidth && isOneColor<stripWidth>(pixel)) {
                std::fill_n(pixel, stripWidth, wash.over(*pixel));
            } else {
                std::transform(pixel, pixel + (right - left), pixel,
                               [&wash](QRgb under) { return wash.over(under); });
            }
        }
    }
}

QRect sharpRule(QPointF start, QPointF end, double thickness) {
    const int whole = std::max(1, qRound(thickness));
    const bool isLevel = start.y() == end.y();
    const QPointF across(isLevel ? 0 : whole / 2.0, isLevel ? whole / 2.0 : 0);
    const QPoint first = (start - across).toPoint();
    const QPoint last = (end - across).toPoint();
    return isLevel ? QRect(first, QSize(last.x() - first.x(), whole))
                   : QRect(first, QSize(whole, last.y() - first.y()));
}

void layGraphRule(QImage& image, const GraphRule& rule, QPoint origin) {
    const Pixels pixels(image);
    Wash wash(rule.color, rule.opacity);
    const QRect place = rule.place.translated(origin);
    const QRect shown = place & image.rect();
    const bool isLevel = place.width() > place.height();
    const auto isGap = [&rule](int along) { return along / rule.dash % 2 == 1; };
    for (int row = shown.top(); row <= shown.bottom(); ++row) {
        if (rule.dash > 0 && !isLevel && isGap(row - place.top())) {
            continue;
        }
        QRgb* pixel = pixels.at(row, shown.left());
        for (int column = shown.left(); column <= shown.right(); ++column, ++pixel) {
            if (rule.dash == 0 || !isLevel || !isGap(column - place.left())) {
                *pixel = wash.over(*pixel);
            }
        }
    }
}

}  // namespace tallowcrest
