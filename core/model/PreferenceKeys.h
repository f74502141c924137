#pragma once

#include <string_view>

/// The keys of all that persists of the user's choices.
namespace quillbook::preferenceKeys {

inline constexpr std::string_view includeJSON = "export.includeJSON";
inline constexpr std::string_view includeMarkdown = "export.includeMarkdown";
inline constexpr std::string_view includeCSV = "export.includeCSV";
inline constexpr std::string_view onboardingCompleted = "onboarding.completed";

} // namespace quillbook::preferenceKeys
