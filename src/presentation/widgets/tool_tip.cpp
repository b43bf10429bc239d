#include "presentation/widgets/tool_tip.h"

#include "presentation/widgets/text_lines.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int widestLine = 360;
constexpr int mostLines = 12;

}  // namespace

QString toolTipText(const QString& plain) {
    QStringList lines;
    for (const QString& line :
         fittedLines(plain, CrestFonts::current().body, widestLine, mostLines)) {
        lines.append(line.toHtmlEscaped());
    }
    if (lines.isEmpty()) {
        return {};
    }
    // Left to break the lines itself, the tip would make a narrow column of them. And it takes any
    // text that looks like markup for markup, so the text always is.
    return u"<div style='white-space:pre'>%1</div>"_s.arg(lines.join(u"<br>"_s));
}

}  // namespace tallowcrest
