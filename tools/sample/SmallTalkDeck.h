#pragma once

#include "tools/sample/ConversationScript.h"
#include "tools/writing/DeterministicRandom.h"

#include <vector>

namespace quillbook::sample {

/// The small talk of some scripts, drawn like cards: nothing comes twice before everything came once.
/// Refers to the scripts.
class SmallTalkDeck {
public:
    /// A block and the script that has its slots.
    struct Talk {
        const ScriptBlock* block = nullptr;
        const ConversationScript* script = nullptr;
    };

    explicit SmallTalkDeck(const std::vector<const ConversationScript*>& scripts);

    bool isEmpty() const { return cards_.empty(); }
    /// There must be a card.
    Talk draw(DeterministicRandom& random);

private:
    std::vector<Talk> cards_;
    std::size_t left_ = 0; ///< Cards that were not drawn since the last shuffling stand in front.
};

} // namespace quillbook::sample
