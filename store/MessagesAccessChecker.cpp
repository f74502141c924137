#include "store/MessagesAccessChecker.h"

#include "core/records/DescribedError.h"
#include "store/sqlite/SQLiteDatabase.h"

#include <algorithm>

namespace quillbook {
namespace {

using Kind = MessagesAccessStatus::Kind;

/// Denial is inferred, never read from an error's text: a protected folder makes a present file look absent,
/// so only a folder that can be listed and does not hold the database says that there is none.
MessagesAccessStatus statusOfUnopened(const std::filesystem::path& database) {
    std::error_code failure;
    if (std::filesystem::exists(database, failure)) return {Kind::denied, {}};
    std::filesystem::directory_iterator entries(database.parent_path(), failure);
    while (!failure && entries != std::filesystem::directory_iterator()) {
        if (entries->path().filename() == database.filename()) return {Kind::denied, {}};
        entries.increment(failure);
    }
    return {failure ? Kind::denied : Kind::databaseMissing, {}};
}

} // namespace

MessagesAccessChecker::MessagesAccessChecker(MessagesPaths paths, URLOpener openURL, DatabaseProbe probe)
    : paths_(std::move(paths)), openURL_(std::move(openURL)), probe_(std::move(probe)) {}

void MessagesAccessChecker::askOneThing(const std::filesystem::path& database) {
    SQLiteDatabase(database).query("SELECT 1");
}

MessagesAccessStatus MessagesAccessChecker::checkAccess(std::stop_token /*stop*/) {
    try {
        probe_(paths_.database());
        return {Kind::granted, {}};
    } catch (const SQLiteError&) {
        return statusOfUnopened(paths_.database());
    } catch (const std::exception& error) {
        return MessagesAccessStatus::failed(describe(error));
    }
}

void MessagesAccessChecker::openPrivacySettings() {
    if (openURL_) openURL_("x-apple.systempreferences:com.apple.preference.security?Privacy_AllFiles");
}

} // namespace quillbook
