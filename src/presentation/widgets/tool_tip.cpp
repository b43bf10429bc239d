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
    // Qt would wrap plain text into a narrow column, and would interpret any text that looks like
    // markup. So the text is always given as escaped markup with its own line breaks.
    return u"<div style='white-space:pre'>%1</div>"_s.arg(lines.join(u"<br>"_s));
}

}  // namespace tallowcrest
