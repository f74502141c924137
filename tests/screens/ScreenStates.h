#pragma once

#include "tests/screens/ScreenStage.h"

#include <ostream>
#include <vector>

namespace quillbook::test {

/// One state of the screens and the road of the model to it.
struct ScreenState {
    const char* name;
    std::function<void(ScreenStage&)> prepare;
    std::function<void(ScreenStage&)> use = {}; ///< What is done in the window once it is open.

    friend std::ostream& operator<<(std::ostream& out, const ScreenState& state) { return out << state.name; }
};

std::vector<ScreenState> screenStates();

/// An album with five attachments called pictures: PNG, a vector drawing, PNG, text, PNG.
void completeWithPictures(ScreenStage& stage);

/// Opens the source menu of the list.
void openSourceMenu(ScreenStage& stage);

/// On the export setup, where attachments are missing and the caches hold some of them.
void atSetupWithReport(ScreenStage& stage);

/// A few conversations of invented people, with and without pictures.
std::vector<ConversationSummary> inventedConversations();

} // namespace quillbook::test
