#pragma once

#include "core/interfaces/ConversationLoading.h"
#include "core/records/ArchiveConversation.h"

#include <exception>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace quillbook::test {

/// An attachment record as a source gives it.
inline ArchiveAttachment attachment(const std::string& id, const std::string& displayName,
                                    std::optional<std::string> storedPath,
                                    const std::string& mimeType = "image/jpeg") {
    ArchiveAttachment record;
    record.id = SourceID{id};
    record.originalFilename = std::move(storedPath);
    record.displayName = displayName;
    record.mimeType = mimeType;
    return record;
}

inline ArchiveMessage message(const std::string& id, const std::string& text,
                              std::vector<ArchiveAttachment> attachments = {}) {
    ArchiveMessage record;
    record.id = SourceID{id};
    record.guid = "guid-" + id;
    record.date = Date::fromUnixSeconds(1'700'000'000);
    record.senderID = "participant-+15550100";
    record.text = text;
    record.attachments = std::move(attachments);
    return record;
}

inline ArchiveConversation conversationNamed(const std::string& title,
                                             std::vector<ArchiveMessage> messages = {}) {
    ArchiveConversation record;
    record.id = SourceID{"chat-7"};
    record.guid = "iMessage;-;+15550100";
    record.title = title;
    record.participants.emplace_back();
    record.participants.back().id = "participant-+15550100";
    record.participants.back().address = "+15550100";
    record.sourceMessageCount = static_cast<std::int64_t>(messages.size()) + 3;
    record.messages = std::move(messages);
    record.generatedAt = Date::fromUnixSeconds(1'714'567'890);
    record.sourceSystemVersion = "Test 1";
    return record;
}

/// A source that holds one conversation and the files of its stored paths, and notes what it is asked.
class FakeLoader final : public ConversationLoading {
public:
    explicit FakeLoader(ArchiveConversation held) : conversation(std::move(held)) {}

    ArchiveConversation loadConversation(const SourceID& id, std::stop_token /*stop*/) override {
        note("load " + id.rawValue);
        if (failure) std::rethrow_exception(failure);
        return conversation;
    }
    std::optional<std::filesystem::path> locateAttachment(const std::string& storedPath) override {
        note("locate " + storedPath);
        const auto found = files.find(storedPath);
        return found == files.end() ? std::nullopt : std::optional(found->second);
    }
    void releaseAttachment(const std::filesystem::path& file) override {
        note("release " + file.filename().string());
    }

    ArchiveConversation conversation;
    std::map<std::string, std::filesystem::path> files; ///< By stored path.
    std::exception_ptr failure;                         ///< Thrown instead of loading.
    std::function<void(const std::string& call)> onCall = [](const std::string&) {};
    std::vector<std::string> calls;

private:
    void note(const std::string& call) {
        calls.push_back(call);
        onCall(call);
    }
};

} // namespace quillbook::test
