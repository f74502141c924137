#include "tools/sample/ConversationPlans.h"
#include "tools/sample/ConversationScript.h"
#include "tools/sample/MediaCatalog.h"
#include "tools/sample/SampleDialogues.h"
#include "tools/sample/SmallTalkDeck.h"

#include <set>

#include <gmock/gmock.h>

namespace quillbook::sample {
namespace {

TEST(ConversationScript, separatesBlocksAtEmptyLines) {
    EXPECT_EQ(parseScript("A: one\nM: two\n\n\nA: three\n").blocks.size(), 2U);
}

TEST(ConversationScript, readsTheDateOfABlockInUTC) {
    const ConversationScript script = parseScript("@2001-01-02 00:01\nA: words\n\nA: small talk");
    ASSERT_EQ(script.plot().size(), 1U);
    EXPECT_EQ(script.plot().front()->seconds, 86'460);
    EXPECT_EQ(script.smallTalk().size(), 1U);
}

TEST(ConversationScript, readsWordsAndTags) {
    const ScriptLine line = parseScript("B: He said: yes {love:A,M} {bp}").blocks.at(0).lines.at(0);
    EXPECT_EQ(line.speaker, 'B');
    EXPECT_EQ(line.text, "He said: yes");
    EXPECT_EQ(*line.tag("love"), "A,M");
    EXPECT_EQ(*line.tag("bp"), "");
    EXPECT_EQ(line.tag("like"), nullptr);
}

TEST(ConversationScript, keepsColonsInsideATag) {
    EXPECT_EQ(*parseScript("A: x {emoji:🎉:M}").blocks.at(0).lines.at(0).tag("emoji"), "🎉:M");
}

TEST(ConversationScript, breaksLinesWhereTheTextSaysSo) {
    EXPECT_EQ(parseScript("A: one\\ntwo").blocks.at(0).lines.at(0).text, "one\ntwo");
}

TEST(ConversationScript, readsALineOfTagsAlone) {
    EXPECT_EQ(parseScript("D: {left}").blocks.at(0).lines.at(0).text, "");
}

TEST(ConversationScript, readsWhatASlotMayBe) {
    EXPECT_EQ(parseScript("=dish: soup; plum cake").slots.at("dish"),
              (std::vector<std::string>{"soup", "plum cake"}));
}

/// Every slot of a script must have words, and every speaker a person.
TEST(ConversationPlans, leaveNoSlotWithoutWords) {
    for (const ConversationPlan& plan : conversationPlans()) {
        for (const std::string_view text : {plan.script, plan.smallTalk}) {
            const ConversationScript script = parseScript(text);
            for (const ScriptBlock& block : script.blocks) {
                for (const ScriptLine& line : block.lines) {
                    const std::size_t open = line.text.find('<');
                    if (open == std::string::npos) continue;
                    const std::string slot = line.text.substr(open + 1, line.text.find('>') - open - 1);
                    EXPECT_TRUE(script.slots.contains(slot)) << line.text;
                }
            }
        }
    }
}

TEST(ConversationPlans, giveEverySpeakerAPerson) {
    for (const ConversationPlan& plan : conversationPlans()) {
        const ConversationScript script = parseScript(plan.script);
        for (const ScriptBlock* block : script.plot()) {
            for (const ScriptLine& line : block->lines) {
                const bool isKnown =
                    line.speaker == 'M' ||
                    (line.speaker >= 'A' && line.speaker < static_cast<char>('A' + plan.members.size()));
                EXPECT_TRUE(isKnown) << line.text;
            }
        }
    }
}

TEST(SmallTalkDeck, drawsEverythingOnceBeforeAnythingTwice) {
    const ConversationScript script = parseScript(dialogues::familyTalk);
    const std::size_t count = script.smallTalk().size();
    SmallTalkDeck deck({&script});
    DeterministicRandom random(1, "deck");
    for (int round = 0; round < 3; ++round) {
        std::set<const ScriptBlock*> drawn;
        for (std::size_t card = 0; card < count; ++card)
            drawn.insert(deck.draw(random).block);
        EXPECT_EQ(drawn.size(), count);
    }
}

} // namespace
} // namespace quillbook::sample
