#include "presentation/screens/shared/analysis_action.h"

#include "advisor/provider.h"
#include "presentation/screens/shared/screen.h"
#include "presentation/words/advisor_words.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

HeaderAction analysisAction(Provider& provider, const QString& identifier) {
    return {{"Local Analyze", "sparkle.magnifyingglass",
             "Explains the present figures and what to do about them"},
            identifier,
            [&provider] { provider.requestAIAnalysis(); },
            [&provider] {
                return provider.state().aiBusy ? u"Analyzing"_s
                                               : advisor_words::analysis(provider.isConnected());
            }};
}

}  // namespace tallowcrest
