#include "tests/store/RepositoryFakes.h"

namespace quillbook::test {

ContactIdentities KnownContacts::resolve(const std::vector<std::string>& addresses) {
    asked.push_back(addresses);
    if (whileResolving) whileResolving();
    ContactIdentities found;
    for (const std::string& address : addresses) {
        if (const auto identity = identities.find(address); identity != identities.end())
            found.insert(*identity);
    }
    return found;
}

std::optional<std::filesystem::path> KnownFiles::locate(const std::string& storedPath) {
    const auto found = files.find(storedPath);
    return found == files.end() ? std::nullopt : std::optional(found->second);
}

void KnownFiles::release(const std::filesystem::path& file) {
    released.push_back(file);
}

MessagesRepository& RepositoryTest::repository() {
    if (!repository_) repository_ = std::make_unique<MessagesRepository>(database.file(), files, contacts);
    return *repository_;
}

ArchiveConversation RepositoryTest::load(std::int64_t chat) {
    return repository().loadConversation(SourceID{std::to_string(chat)}, {});
}

std::int64_t RepositoryTest::addDirectChat() {
    const auto chat = database.addChat("iMessage;-;+15550100", std::nullopt, "+15550100");
    database.join(chat, database.addHandle("+15550100"));
    return chat;
}

} // namespace quillbook::test
