#include "tools/sample/SmallTalkDeck.h"

#include <utility>

namespace quillbook::sample {

SmallTalkDeck::SmallTalkDeck(const std::vector<const ConversationScript*>& scripts) {
    for (const ConversationScript* script : scripts) {
        for (const ScriptBlock* block : script->smallTalk())
            cards_.push_back({block, script});
    }
}

SmallTalkDeck::Talk SmallTalkDeck::draw(DeterministicRandom& random) {
    if (left_ == 0) left_ = cards_.size();
    const std::size_t drawn = random.below(left_);
    std::swap(cards_[drawn], cards_[--left_]);
    return cards_[left_];
}

} // namespace quillbook::sample
