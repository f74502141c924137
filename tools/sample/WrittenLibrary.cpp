#include "tools/sample/WrittenLibrary.h"

#include "tools/sample/ConversationBuilder.h"
#include "tools/sample/ConversationPlans.h"
#include "tools/sample/SamplePeople.h"

#include <algorithm>
#include <map>
#include <numeric>

namespace quillbook::sample {
namespace {

struct Conversation {
    std::int64_t chat = 0;
    ChatRow row;
    const ConversationPlan* plan = nullptr;
    std::vector<MessageRow> messages;
};

/// Each plan's part of the rows, so that they add up to all of them.
std::vector<std::int64_t> rowCounts(std::int64_t count) {
    const auto& plans = conversationPlans();
    const std::int64_t shares =
        std::accumulate(plans.begin(), plans.end(), std::int64_t{0},
                        [](std::int64_t sum, const auto& plan) { return sum + plan.share; });
    std::vector<std::int64_t> counts;
    std::int64_t sharesSoFar = 0;
    std::int64_t rowsSoFar = 0;
    for (const ConversationPlan& plan : plans) {
        sharesSoFar += plan.share;
        counts.push_back(count * sharesSoFar / shares - rowsSoFar);
        rowsSoFar += counts.back();
    }
    return counts;
}

/// Writes each person once for each service; gives row ids.
class HandleRegister {
public:
    explicit HandleRegister(LibraryWriter& writer) : writer_(writer) {}

    std::int64_t rowID(const std::string& person, const std::string& service) {
        auto& known = rowIDs_[{person, service}];
        if (known == 0)
            known = writer_.addHandle({samplePerson(person).address, samplePerson(person).country, service});
        return known;
    }

private:
    LibraryWriter& writer_;
    std::map<std::pair<std::string, std::string>, std::int64_t> rowIDs_;
};

ChatRow chatRow(const ConversationPlan& plan, const std::string& identifier, HandleRegister& handles,
                DeterministicRandom& random) {
    ChatRow row;
    row.isGroup = plan.isGroup;
    row.identifier = identifier;
    row.service = plan.service;
    row.displayName = plan.displayName;
    row.groupID = random.uuid();
    row.guid =
        plan.service + (plan.isGroup ? ";+;" : ";-;") + (identifier.empty() ? row.groupID : identifier);
    for (const std::string& member : plan.members) {
        const bool isAbsent = std::find(plan.absent.begin(), plan.absent.end(), member) != plan.absent.end();
        const std::int64_t handle = handles.rowID(member, plan.service);
        if (!isAbsent) row.handles.push_back(handle);
    }
    return row;
}

/// The title that the list of conversations would show without an address book.
std::string titleOf(const ChatRow& row) {
    return row.displayName.empty() ? row.identifier : row.displayName;
}

/// The list of conversations shows the text of the newest message, which here is always one that has it.
void giveLastMessageItsText(std::vector<MessageRow>& messages) {
    for (auto row = messages.rbegin(); row != messages.rend(); ++row) {
        if (row->associatedType != 0) continue;
        const bool hidesText =
            row->form == BodyForm::archiveOnly || row->form == BodyForm::mutableArchiveOnly;
        if (hidesText) row->form = BodyForm::textAndArchive;
        return;
    }
}

Conversation buildConversation(const ConversationPlan& plan, std::int64_t count, HandleRegister& handles,
                               LibraryWriter& writer, AttachmentShelf& shelf, DeterministicRandom& random,
                               std::uint64_t seed) {
    std::vector<std::int64_t> members;
    for (const std::string& member : plan.members)
        members.push_back(handles.rowID(member, plan.service));
    ConversationBuilder builder(plan, std::move(members), shelf, seed);
    Conversation conversation;
    conversation.plan = &plan;
    conversation.messages = builder.build(count);
    giveLastMessageItsText(conversation.messages);
    conversation.row = chatRow(plan, builder.identifier(), handles, random);
    if (!conversation.messages.empty()) conversation.row.lastMessageGUID = conversation.messages.back().guid;
    conversation.chat = writer.addChat(conversation.row);
    for (const std::string& guid : builder.deletedGUIDs())
        writer.addDeletedMessage(guid);
    return conversation;
}

bool mayCarryAttachment(const MessageRow& row) {
    const bool isPlain =
        row.associatedType == 0 && row.itemType == 0 && !row.text.empty() && !row.earlierText;
    return isPlain && row.form != BodyForm::keyedArchiveOnly;
}

/// The small files that no dialogue asks for go to messages all over the library, most of them to the richest
/// chat.
void spreadSmallFiles(std::vector<Conversation>& conversations, AttachmentShelf& shelf,
                      DeterministicRandom& random) {
    std::vector<std::vector<MessageRow*>> carriers;
    for (Conversation& conversation : conversations) {
        std::vector<MessageRow*> rows;
        for (MessageRow& row : conversation.messages) {
            if (mayCarryAttachment(row)) rows.push_back(&row);
        }
        for (int share = 0; share < conversation.plan->attachmentShare && !rows.empty(); ++share)
            carriers.push_back(rows);
    }
    while (shelf.remaining() > 0 && !carriers.empty()) {
        MessageRow& row = *random.pick(random.pick(carriers));
        if (auto attachment = shelf.takeSmallFile(row.isFromMe))
            row.attachments.push_back(std::move(*attachment));
    }
}

struct RowInTime {
    std::int64_t chat;
    MessageRow* row;
};

void writeInOrder(std::vector<Conversation>& conversations, LibraryWriter& writer, LibraryTally& tally,
                  DeterministicRandom& random) {
    std::vector<RowInTime> rows;
    for (Conversation& conversation : conversations) {
        for (MessageRow& row : conversation.messages)
            rows.push_back({conversation.chat, &row});
    }
    std::stable_sort(rows.begin(), rows.end(), [](const RowInTime& one, const RowInTime& other) {
        return one.row->date.seconds < other.row->date.seconds;
    });
    std::int64_t rowID = 0;
    for (const RowInTime& entry : rows) {
        rowID += random.between(1, 10);
        entry.row->rowID = rowID;
        writer.addMessage(entry.chat, *entry.row);
        tally.addMessage(entry.chat, *entry.row);
    }
}

} // namespace

void writeWrittenLibrary(const SampleOptions& options, LibraryWriter& writer, AttachmentShelf& shelf,
                         LibraryTally& tally) {
    DeterministicRandom random(options.seed, "written library");
    HandleRegister handles(writer);
    const std::vector<std::int64_t> counts = rowCounts(options.messageCount);
    std::vector<Conversation> conversations;
    for (std::size_t index = 0; index < counts.size(); ++index) {
        conversations.push_back(buildConversation(conversationPlans()[index], counts[index], handles, writer,
                                                  shelf, random, options.seed));
        const Conversation& latest = conversations.back();
        tally.addChat(latest.chat, latest.row.guid, titleOf(latest.row));
    }
    spreadSmallFiles(conversations, shelf, random);
    writeInOrder(conversations, writer, tally, random);
}

} // namespace quillbook::sample
