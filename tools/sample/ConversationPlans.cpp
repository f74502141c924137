#include "tools/sample/ConversationPlans.h"

#include "tools/sample/SampleDialogues.h"

namespace quillbook::sample {
namespace {

ConversationPlan withPerson(std::string key, std::string_view script, std::int64_t share,
                            int attachmentShare = 1) {
    ConversationPlan plan;
    plan.members = {std::move(key)};
    plan.script = script;
    plan.share = share;
    plan.attachmentShare = attachmentShare;
    return plan;
}

ConversationPlan group(std::string identifier, std::string displayName, std::vector<std::string> members,
                       std::string_view script, std::int64_t share) {
    ConversationPlan plan;
    plan.identifier = std::move(identifier);
    plan.displayName = std::move(displayName);
    plan.isGroup = true;
    plan.members = std::move(members);
    plan.script = script;
    plan.smallTalk = dialogues::friendsTalk;
    plan.share = share;
    return plan;
}

ConversationPlan lakeHouse() {
    ConversationPlan plan = group("chat482915537200114", "Lake House 🛶",
                                  {"maya", "tom", "ruth", "priya", "jonas"}, dialogues::lakeHouse, 440);
    plan.attachmentShare = 8;
    return plan;
}

ConversationPlan bookClub() {
    ConversationPlan plan = group("chat107733920481265", "Thursday Book Club",
                                  {"agnes", "bela", "ines", "selma"}, dialogues::bookClub, 130);
    plan.absent = {"selma"};
    plan.attachmentShare = 2;
    return plan;
}

ConversationPlan birthdaySurprise() {
    ConversationPlan plan =
        group("chat660318245597731", "", {"helen", "sam", "ines"}, dialogues::birthdaySurprise, 120);
    plan.attachmentShare = 1;
    return plan;
}

ConversationPlan relative(std::string key, std::string_view script, std::int64_t share) {
    ConversationPlan plan = withPerson(std::move(key), script, share, 2);
    plan.smallTalk = dialogues::familyTalk;
    return plan;
}

ConversationPlan onSMS(ConversationPlan plan) {
    plan.service = "SMS";
    plan.attachmentShare = 0;
    return plan;
}

std::vector<ConversationPlan> allPlans() {
    return {
        lakeHouse(),
        birthdaySurprise(),
        bookClub(),
        relative("mum", dialogues::mother, 150),
        onSMS(relative("walter", dialogues::grandfather, 60)),
        withPerson("katrin", dialogues::german, 64),
        withPerson("lucia", dialogues::spanish, 64),
        withPerson("rafael", dialogues::portuguese, 60),
        withPerson("misaki", dialogues::japanese, 60),
        withPerson("omar", dialogues::arabic, 56),
        withPerson("noa", dialogues::hebrew, 56),
        withPerson("ananya", dialogues::hindi, 54),
        withPerson("jiwoo", dialogues::korean, 56),
        withPerson("olena", dialogues::ukrainian, 60),
        withPerson("wei", dialogues::chinese, 52),
        onSMS(withPerson("parcels", dialogues::parcelService, 6)),
        withPerson("landlady", {}, 0, 0),
        ConversationPlan{"", "", false, "iMessage", {}, {}, dialogues::noteToSelf, {}, 2, 0},
    };
}

} // namespace

const std::vector<ConversationPlan>& conversationPlans() {
    static const std::vector<ConversationPlan> plans = allPlans();
    return plans;
}

} // namespace quillbook::sample
