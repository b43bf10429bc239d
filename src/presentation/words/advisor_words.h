#pragma once

#include <string_view>

#include <QString>

/// What several places say of the advisor. Main thread.
namespace tallowcrest::advisor_words {

/// The title of a button that requests an analysis.
QString analysis(bool hasKey);

/// A text of the provider or of the owner with its lines, as `boundedAnswer`: an earlier version
/// may have stored longer ones.
QString longText(std::string_view utf8);

}  // namespace tallowcrest::advisor_words
