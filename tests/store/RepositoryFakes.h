#pragma once

#include "core/interfaces/AttachmentLocating.h"
#include "core/interfaces/ContactResolving.h"
#include "store/MessagesRepository.h"
#include "tests/support/MessagesDatabase.h"
#include "tests/support/TemporaryFolder.h"

#include <functional>
#include <map>

#include <gtest/gtest.h>

namespace quillbook::test {

/// Knows the identities that a test gives it, and counts its calls.
class KnownContacts final : public ContactResolving {
public:
    ContactIdentities resolve(const std::vector<std::string>& addresses) override;

    ContactIdentities identities;
    std::vector<std::vector<std::string>> asked;
    std::function<void()> whileResolving; ///< Runs within each call.
};

/// Finds the files that a test names.
class KnownFiles final : public AttachmentLocating {
public:
    std::optional<std::filesystem::path> locate(const std::string& storedPath) override;
    void release(const std::filesystem::path& file) override;

    std::map<std::string, std::filesystem::path> files;
    std::vector<std::filesystem::path> released;
};

/// A repository over a database that the test fills first.
class RepositoryTest : public testing::Test {
protected:
    MessagesRepository& repository();
    ArchiveConversation load(std::int64_t chat);
    /// A chat with one other person, who is handle 1.
    std::int64_t addDirectChat();

    TemporaryFolder folder;
    MessagesDatabase database{folder / "chat.db"};
    std::shared_ptr<KnownContacts> contacts = std::make_shared<KnownContacts>();
    std::shared_ptr<KnownFiles> files = std::make_shared<KnownFiles>();

private:
    std::unique_ptr<MessagesRepository> repository_;
};

} // namespace quillbook::test
