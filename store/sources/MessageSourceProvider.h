#pragma once

#include "core/interfaces/ContactResolving.h"
#include "core/interfaces/MessageSourceProviding.h"
#include "store/MessagesPaths.h"

#include <filesystem>
#include <functional>
#include <memory>

namespace quillbook {

/// Lists the places to read conversations from and opens one. A plain value; safe to call from any thread.
class MessageSourceProvider final : public MessageSourceProviding {
public:
    /// Makes the resolver of one prepared source.
    using ContactResolverFactory = std::function<std::shared_ptr<ContactResolving>()>;

    /// `home` is what a leading "~" in a stored path stands for.
    MessageSourceProvider(MessagesPaths localLibrary, std::filesystem::path home,
                          ContactResolverFactory contactResolverFactory);

    std::vector<MessageSource> availableSources(std::stop_token stop) override;
    /// Throws SQLiteError when the library's database cannot be opened.
    PreparedSource prepare(const MessageSource& source, const std::optional<std::string>& password,
                           std::stop_token stop) override;

private:
    MessagesPaths localLibrary_;
    std::filesystem::path home_;
    ContactResolverFactory contactResolverFactory_;
};

} // namespace quillbook
