#include "tools/sample/ConversationBuilder.h"

#include "tools/sample/ReactionRows.h"
#include "tools/sample/SamplePeople.h"

#include <algorithm>
#include <charconv>

namespace quillbook::sample {
namespace {

constexpr std::int64_t daySeconds = 86'400;
/// Small talk begins between seven in the morning and nine at night, UTC.
constexpr std::int64_t earliestSecond = 25'200;
constexpr std::int64_t latestSecond = 75'600;
/// 2017-09-01: messages from then on are counted in nanoseconds.
constexpr std::int64_t firstNanosecondDate = 525'916'800;
constexpr std::int64_t quietMinutesAroundBlocks = 30;

/// Replaces each <slot> that has a value.
std::string withSlots(std::string_view text, const std::map<std::string, std::string, std::less<>>& values) {
    std::string result;
    while (!text.empty()) {
        const std::size_t open = text.find('<');
        const std::size_t close = open == std::string_view::npos ? open : text.find('>', open);
        if (close == std::string_view::npos) return result.append(text);
        const auto value = values.find(text.substr(open + 1, close - open - 1));
        result.append(text.substr(0, value == values.end() ? close + 1 : open));
        if (value != values.end()) result += value->second;
        text.remove_prefix(close + 1);
    }
    return result;
}

std::size_t numberIn(const std::string& text) {
    std::size_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

std::string streamName(const ConversationPlan& plan) {
    return "conversation " + plan.identifier + (plan.members.empty() ? "" : plan.members.front());
}

} // namespace

ConversationBuilder::ConversationBuilder(const ConversationPlan& plan,
                                         std::vector<std::int64_t> memberHandles, AttachmentShelf& shelf,
                                         std::uint64_t seed)
    : plan_(plan), memberHandles_(std::move(memberHandles)), shelf_(shelf), random_(seed, streamName(plan)),
      script_(parseScript(plan.script)), smallTalk_(parseScript(plan.smallTalk)),
      deck_({&script_, &smallTalk_}), identifier_(plan.identifier) {
    if (!plan.isGroup && !plan.members.empty()) identifier_ = samplePerson(plan.members.front()).address;
}

std::vector<MessageRow> ConversationBuilder::build(std::int64_t count) {
    count_ = count;
    Cast cast;
    for (std::size_t index = 0; index < memberHandles_.size(); ++index) {
        cast[static_cast<char>('A' + index)] = memberHandles_[index];
    }
    for (const ScriptBlock* block : script_.plot()) {
        Scene scene;
        scene.cast = cast;
        scene.seconds = *block->seconds;
        scene.isWritten = true;
        addBlock(*block, std::move(scene));
    }
    while (!deck_.isEmpty() && !isFull())
        addSmallTalk();
    std::stable_sort(rows_.begin(), rows_.end(), [](const MessageRow& one, const MessageRow& other) {
        return one.date.seconds < other.date.seconds;
    });
    return std::move(rows_);
}

void ConversationBuilder::addBlock(const ScriptBlock& block, Scene scene) {
    blockStarts_.insert(scene.seconds);
    for (const ScriptLine& line : block.lines) {
        if (isFull()) return;
        addLine(line, scene);
        scene.seconds += random_.between(12, 150);
    }
}

void ConversationBuilder::addSmallTalk() {
    const SmallTalkDeck::Talk talk = deck_.draw(random_);
    Scene scene;
    scene.cast = shuffledCast();
    scene.slots = chosenSlots(*talk.script);
    scene.seconds = freeMoment();
    addBlock(*talk.block, std::move(scene));
}

/// Anybody who is still in the chat may say anything.
ConversationBuilder::Cast ConversationBuilder::shuffledCast() {
    std::vector<std::int64_t> present;
    for (std::size_t index = 0; index < memberHandles_.size(); ++index) {
        const auto& absent = plan_.absent;
        if (std::find(absent.begin(), absent.end(), plan_.members[index]) == absent.end()) {
            present.push_back(memberHandles_[index]);
        }
    }
    Cast cast;
    for (char letter = 'A'; letter <= 'F' && !present.empty(); ++letter) {
        const std::size_t index = random_.below(present.size());
        cast[letter] = present[index];
        if (present.size() > 1) present.erase(present.begin() + static_cast<std::ptrdiff_t>(index));
    }
    return cast;
}

ConversationBuilder::SlotValues ConversationBuilder::chosenSlots(const ConversationScript& script) {
    SlotValues values;
    for (const auto& [name, choices] : script.slots)
        values[name] = random_.pick(choices);
    return values;
}

/// A moment of a day between the first and the last dated block, away from other blocks if that can be had.
std::int64_t ConversationBuilder::freeMoment() {
    const std::int64_t firstDay = *blockStarts_.begin() / daySeconds + 1;
    const std::int64_t lastDay =
        std::max(firstDay, script_.plot().back()->seconds.value_or(0) / daySeconds - 1);
    std::int64_t moment = 0;
    for (int attempt = 0; attempt < 20; ++attempt) {
        moment = random_.between(firstDay, lastDay) * daySeconds;
        moment += random_.between(earliestSecond, latestSecond);
        const auto next = blockStarts_.lower_bound(moment - quietMinutesAroundBlocks * 60);
        if (next == blockStarts_.end() || *next > moment + quietMinutesAroundBlocks * 60) break;
    }
    return moment;
}

MessageRow ConversationBuilder::rowFrom(char speaker, const Scene& scene, std::int64_t seconds) {
    MessageRow row;
    row.guid = random_.uuid();
    row.isFromMe = speaker == 'M';
    row.date = {seconds, seconds < firstNanosecondDate ? StoredUnit::seconds : StoredUnit::nanoseconds};
    row.service = plan_.service;
    if (plan_.isGroup) row.roomName = identifier_;
    const auto member = scene.cast.find(row.isFromMe && !plan_.isGroup ? 'A' : speaker);
    row.handle = member == scene.cast.end() ? 0 : member->second;
    return row;
}

BodyForm ConversationBuilder::usualForm(const MessageRow& row) {
    if (row.date.unit == StoredUnit::seconds) return BodyForm::textOnly;
    const std::uint64_t choice = random_.below(12);
    if (choice < 4) return BodyForm::archiveOnly;
    return choice == 4 ? BodyForm::mutableArchiveOnly : BodyForm::textAndArchive;
}

void ConversationBuilder::addLine(const ScriptLine& line, Scene& scene) {
    MessageRow row = rowFrom(line.speaker, scene, scene.seconds);
    row.text = withSlots(line.text, scene.slots);
    row.form = usualForm(row);
    const bool isComplete = fillAttachments(line, row);
    applyTags(line, scene, row);
    applyThreadTags(line, scene, row);
    if (const std::string* label = line.tag("label")) labels_[*label] = row.guid;
    scene.guids.push_back(row.guid);
    if (!isComplete && row.text.empty()) return;
    const MessageRow target = row;
    push(std::move(row));
    addReactions(line, scene, target);
    if (!scene.isWritten && plan_.service != "SMS") addChanceReaction(scene, target, line.speaker);
}

/// False if the line asks for an attachment and none is left.
bool ConversationBuilder::fillAttachments(const ScriptLine& line, MessageRow& row) {
    const std::string* name = line.tag("pic");
    if (name == nullptr) return true;
    auto attachment = shelf_.take(*name, row.isFromMe);
    if (!attachment) return false;
    row.isAudio = attachment->mimeType.starts_with("audio/");
    row.attachments.push_back(std::move(*attachment));
    return true;
}

void ConversationBuilder::applyTags(const ScriptLine& line, const Scene& scene, MessageRow& row) {
    static const std::map<std::string, BodyForm, std::less<>> forms = {
        {"both", BodyForm::textAndArchive},    {"textonly", BodyForm::textOnly},
        {"archive", BodyForm::archiveOnly},    {"mutable", BodyForm::mutableArchiveOnly},
        {"keyed", BodyForm::keyedArchiveOnly}, {"garbage", BodyForm::unreadable},
        {"empty", BodyForm::emptyText},        {"none", BodyForm::nothing},
        {"left", BodyForm::nothing},           {"rename", BodyForm::nothing},
        {"retract", BodyForm::nothing}};
    for (const ScriptTag& tag : line.tags) {
        const auto form = forms.find(tag.name);
        if (form != forms.end()) row.form = form->second;
        if (tag.name == "left") row.itemType = 3;
        if (tag.name == "rename") row.itemType = 2;
        if (tag.name == "rename") row.groupTitle = tag.value;
        if (tag.name == "subject") row.subject = tag.value;
        if (tag.name == "edit") row.earlierText = tag.value;
        if (tag.name == "edit") row.editedSeconds = scene.seconds + 75;
        if (tag.name == "retract") row.retractedSeconds = scene.seconds + 40;
        if (tag.name == "style") {
            row.sendStyle = "com.apple.messages.effect.CK" +
                            std::string(tag.value == "confetti" ? "Confetti" : "Fireworks") + "Effect";
        }
    }
    if (row.form == BodyForm::nothing || row.form == BodyForm::emptyText ||
        row.form == BodyForm::unreadable) {
        row.text.clear();
    }
}

void ConversationBuilder::applyThreadTags(const ScriptLine& line, const Scene& scene, MessageRow& row) {
    if (const std::string* distance = line.tag("reply")) {
        const std::size_t back = numberIn(*distance);
        if (back >= 1 && back <= scene.guids.size())
            row.threadOriginatorGUID = scene.guids[scene.guids.size() - back];
    }
    if (const std::string* label = line.tag("replyto")) {
        const auto target = labels_.find(*label);
        if (target != labels_.end()) row.threadOriginatorGUID = target->second;
    }
    if (line.tag("replygone") != nullptr) {
        deletedGUIDs_.push_back(random_.uuid());
        row.threadOriginatorGUID = deletedGUIDs_.back();
    }
}

void ConversationBuilder::addReactions(const ScriptLine& line, const Scene& scene, const MessageRow& target) {
    for (const ScriptTag& tag : line.tags) {
        ReactionMark reaction;
        reaction.targetGUID = (line.tag("bp") != nullptr ? "bp:" : "p:0/") + target.guid;
        std::string speakers = tag.value;
        if (tag.name == "emoji") {
            const std::size_t colon = tag.value.find(':');
            reaction.type = emojiReactionType;
            reaction.emoji = tag.value.substr(0, colon);
            speakers = tag.value.substr(colon + 1);
        } else if (tag.name == "orphan") {
            reaction.targetGUID.reset();
        } else if (const auto type = reactionType(tag.name)) {
            reaction.type = *type;
        } else {
            continue;
        }
        for (const char speaker : speakers) {
            if (speaker != ',') addReaction(speaker, scene, target, reaction);
        }
    }
}

/// Hearts and thumbs most of all, the others now and then.
void ConversationBuilder::addChanceReaction(const Scene& scene, const MessageRow& target, char speaker) {
    if (!random_.oneIn(plan_.isGroup ? 9 : 14)) return;
    static const std::vector<std::int64_t> types = {2000, 2000, 2000, 2000, 2001, 2001, 2001,
                                                    2003, 2003, 2003, 2004, 2005, 2002};
    std::string others = speaker == 'M' ? "" : "M";
    for (const auto& [letter, handle] : scene.cast) {
        const bool isFirstOfPerson =
            handle != target.handle && letter <= 'C' && (plan_.isGroup || letter == 'A');
        if (isFirstOfPerson && (speaker == 'M' || plan_.isGroup)) others += letter;
    }
    if (others.empty()) return;
    ReactionMark reaction;
    reaction.type = random_.pick(types);
    reaction.targetGUID = "p:0/" + target.guid;
    addReaction(others[random_.below(others.size())], scene, target, reaction);
}

void ConversationBuilder::addReaction(char speaker, const Scene& scene, const MessageRow& target,
                                      const ReactionMark& reaction) {
    MessageRow row = rowFrom(speaker, scene, target.date.seconds + random_.between(4, 70));
    if (reaction.type >= 3000) row.date.seconds += 90;
    row.text = reactionText(reaction.type, reaction.emoji, target);
    row.form = row.date.unit == StoredUnit::seconds ? BodyForm::textOnly : BodyForm::textAndArchive;
    row.associatedType = reaction.type;
    row.associatedGUID = reaction.targetGUID;
    if (!reaction.emoji.empty()) row.associatedEmoji = reaction.emoji;
    push(std::move(row));
}

void ConversationBuilder::push(MessageRow row) {
    if (!isFull()) rows_.push_back(std::move(row));
}

} // namespace quillbook::sample
