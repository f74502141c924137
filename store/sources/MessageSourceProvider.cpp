#include "store/sources/MessageSourceProvider.h"

#include "core/text/Localization.h"
#include "export/ExportCoordinator.h"
#include "store/LocalLibraryAttachmentLocator.h"
#include "store/MessagesRepository.h"
#include "store/sources/SourceError.h"

namespace quillbook {

MessageSourceProvider::MessageSourceProvider(MessagesPaths localLibrary, std::filesystem::path home,
                                             ContactResolverFactory contactResolverFactory)
    : localLibrary_(std::move(localLibrary)), home_(std::move(home)),
      contactResolverFactory_(std::move(contactResolverFactory)) {}

std::vector<MessageSource> MessageSourceProvider::availableSources(std::stop_token /*stop*/) {
    return {MessageSource{
        .id = "local-mac",
        .title = localized("This Mac"),
        .subtitle = localized("Local Messages library"),
        .kind = LocalMac(),
        .requiresPassword = false,
    }};
}

PreparedSource MessageSourceProvider::prepare(const MessageSource& source,
                                              const std::optional<std::string>& /*password*/,
                                              std::stop_token /*stop*/) {
    if (!source.isLocalMac()) throw SourceError(source.title);
    auto locator = std::make_shared<LocalLibraryAttachmentLocator>(localLibrary_.messagesRoot, home_);
    auto repository = std::make_shared<MessagesRepository>(localLibrary_.database(), std::move(locator),
                                                           contactResolverFactory_());
    // List, load and export share the repository's one connection.
    auto exporter = std::make_shared<ExportCoordinator>(repository);
    return PreparedSource{.store = std::move(repository), .exporter = std::move(exporter), .teardown = [] {}};
}

} // namespace quillbook
