#include "presentation/screens/shared/analysis_action.h"

#include <utility>

#include "advisor/provider.h"
#include "presentation/screens/shared/screen.h"
#include "presentation/words/advisor_words.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

HeaderAction analysisAction(const Provider& provider, const QString& identifier,
                            std::function<void()> run) {
    return {{"Local Analyze", "sparkle.magnifyingglass",
             "Explains the present figures and what to do about them"},
            identifier,
            std::move(run),
            [&provider] {
                return provider.state().aiBusy ? u"Analyzing"_s
                                               : advisor_words::analysis(provider.isConnected());
            }};
}

}  // namespace tallowcrest
