#pragma once

#include <string_view>

namespace quillbook::sample {

/// The written dialogues, each in the notation that ConversationScript reads.
namespace dialogues {

extern const std::string_view lakeHouse;
extern const std::string_view birthdaySurprise;
extern const std::string_view bookClub;
extern const std::string_view mother;
extern const std::string_view grandfather;
extern const std::string_view parcelService;
extern const std::string_view noteToSelf;
extern const std::string_view german;
extern const std::string_view spanish;
extern const std::string_view portuguese;
extern const std::string_view japanese;
extern const std::string_view arabic;
extern const std::string_view hebrew;
extern const std::string_view hindi;
extern const std::string_view korean;
extern const std::string_view ukrainian;
extern const std::string_view chinese;

/// Small talk for any group of friends, and for one relative.
extern const std::string_view friendsTalk;
extern const std::string_view familyTalk;

} // namespace dialogues
} // namespace quillbook::sample
