#pragma once

#include "core/interfaces/MessageSourceProviding.h"
#include "core/interfaces/MessagesAccessChecking.h"
#include "store/MessagesPaths.h"

#include <memory>

namespace quillbook {

// Where the Messages application does not exist, as on Linux, people often have no Messages library and do
// have a device backup. The model begins with this machine's own library and asks for access first, so it
// would hold such a person up on the access screen, with a backup in reach. These two stand around the
// platform's checker and provider and make a missing library count as an empty one, as long as there is a
// backup: the model keeps its rules, starts on an empty list, and the person picks the backup among the
// sources. A library that is there and cannot be read is no missing one and is told as before.
//
// The platform's checker says "denied" where there is not even a folder for the library, because protection
// against programs can make a folder look absent. Without such protection an absent folder is absent, so it
// counts as a missing library here: mostly, such a person has no folder of that name.

/// Where the library is missing: granted if there is a device backup, else "missing", also where `inner` says
/// "denied" of a folder that is not there. Answers as `inner` does otherwise.
class BackupOnlyAccessChecker final : public MessagesAccessChecking {
public:
    BackupOnlyAccessChecker(std::shared_ptr<MessagesAccessChecking> inner,
                            std::shared_ptr<MessageSourceProviding> sources, MessagesPaths library);

    MessagesAccessStatus checkAccess(std::stop_token stop) override;
    void openPrivacySettings() override { inner_->openPrivacySettings(); }

private:
    const std::shared_ptr<MessagesAccessChecking> inner_;
    const std::shared_ptr<MessageSourceProviding> sources_;
    const MessagesPaths library_;
};

/// Opens this machine's own library as an empty one where it is missing and there is a device backup; else
/// does as `inner` does.
class BackupOnlySourceProvider final : public MessageSourceProviding {
public:
    /// `checker` is the platform's own.
    BackupOnlySourceProvider(std::shared_ptr<MessageSourceProviding> inner,
                             std::shared_ptr<MessagesAccessChecking> checker, MessagesPaths library);

    std::vector<MessageSource> availableSources(std::stop_token stop) override;
    PreparedSource prepare(const MessageSource& source, const std::optional<std::string>& password,
                           std::stop_token stop) override;

private:
    const std::shared_ptr<MessageSourceProviding> inner_;
    const std::shared_ptr<MessagesAccessChecking> checker_;
    const MessagesPaths library_;
};

} // namespace quillbook
