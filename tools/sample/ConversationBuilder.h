#pragma once

#include "tools/sample/AttachmentShelf.h"
#include "tools/sample/ConversationPlans.h"
#include "tools/sample/ConversationScript.h"
#include "tools/sample/LibraryRows.h"
#include "tools/sample/SmallTalkDeck.h"
#include "tools/writing/DeterministicRandom.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace quillbook::sample {

/// Turns the script of one conversation into rows: the dated blocks first, then small talk between them until
/// there are as many rows as asked for.
class ConversationBuilder {
public:
    /// `memberHandles` are row ids in the order of the plan's members.
    ConversationBuilder(const ConversationPlan& plan, std::vector<std::int64_t> memberHandles,
                        AttachmentShelf& shelf, std::uint64_t seed);

    /// In order of their dates, without row ids. Call it once.
    std::vector<MessageRow> build(std::int64_t count);

    /// Messages that some rows answer to, and which are gone.
    const std::vector<std::string>& deletedGUIDs() const { return deletedGUIDs_; }
    /// chat_identifier of the conversation.
    const std::string& identifier() const { return identifier_; }

private:
    using Cast = std::map<char, std::int64_t>; ///< Letter to handle row id.
    using SlotValues =
        std::map<std::string, std::string, std::less<>>; ///< What stands for a slot in this block.

    struct ReactionMark {
        std::int64_t type = 2000;
        std::string emoji;
        std::optional<std::string> targetGUID; ///< In one of the forms "p:0/GUID" and "bp:GUID".
    };

    struct Scene {
        Cast cast;
        SlotValues slots;
        std::int64_t seconds = 0;
        std::vector<std::string> guids; ///< Of the lines so far.
        bool isWritten = false;         ///< The script has its reactions; otherwise they come by chance.
    };

    void addBlock(const ScriptBlock& block, Scene scene);
    void addSmallTalk();
    Cast shuffledCast();
    SlotValues chosenSlots(const ConversationScript& script);
    std::int64_t freeMoment();

    void addLine(const ScriptLine& line, Scene& scene);
    bool fillAttachments(const ScriptLine& line, MessageRow& row);
    void applyTags(const ScriptLine& line, const Scene& scene, MessageRow& row);
    void applyThreadTags(const ScriptLine& line, const Scene& scene, MessageRow& row);
    BodyForm usualForm(const MessageRow& row);
    MessageRow rowFrom(char speaker, const Scene& scene, std::int64_t seconds);

    void addReactions(const ScriptLine& line, const Scene& scene, const MessageRow& target);
    void addChanceReaction(const Scene& scene, const MessageRow& target, char speaker);
    /// `reaction` has its type, target and emoji; the rest follows here.
    void addReaction(char speaker, const Scene& scene, const MessageRow& target,
                     const ReactionMark& reaction);
    void push(MessageRow row);
    bool isFull() const { return static_cast<std::int64_t>(rows_.size()) >= count_; }

    const ConversationPlan& plan_;
    std::vector<std::int64_t> memberHandles_;
    AttachmentShelf& shelf_;
    DeterministicRandom random_;
    ConversationScript script_;
    ConversationScript smallTalk_;
    SmallTalkDeck deck_;
    std::string identifier_;

    std::int64_t count_ = 0;
    std::vector<MessageRow> rows_;
    std::set<std::int64_t> blockStarts_;
    std::map<std::string, std::string, std::less<>> labels_;
    std::vector<std::string> deletedGUIDs_;
};

} // namespace quillbook::sample
