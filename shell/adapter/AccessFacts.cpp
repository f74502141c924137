#include "shell/adapter/AccessFacts.h"

#include "core/text/Localization.h"
#include "shell/adapter/Words.h"

namespace quillbook {
namespace {

AccessFacts card(const char* symbol, const char* title, const std::string& text) {
    AccessFacts facts;
    facts.symbol = QString::fromLatin1(symbol);
    facts.title = qtText(localized(title));
    facts.text = shownText(text);
    return facts;
}

AccessFacts cardOf(const MessagesAccessStatus& status) {
    using Kind = MessagesAccessStatus::Kind;
    switch (status.kind) {
    case Kind::checking:
        break;
    case Kind::granted:
        return card("checkmark.circle.fill", "Access ready",
                    localized("Quillbook can read your local conversation history."));
    case Kind::denied:
        return card("lock.shield", "Full Disk Access is needed",
                    localized("Add Quillbook in Privacy & Security › Full Disk Access, turn it on, then "
                              "return here."));
    case Kind::databaseMissing:
        return card("lock.shield", "Messages library not found",
                    localized("Open Messages and allow it to finish syncing, then check again."));
    case Kind::failed:
        return card("lock.shield", "Messages could not be opened", status.message);
    }
    return card("lock.shield", "Checking access…", localized("Looking for your local Messages library."));
}

} // namespace

AccessFacts accessFacts(const MessagesAccessStatus& status) {
    AccessFacts facts = cardOf(status);
    facts.isGranted = status.isGranted();
    facts.isChecking = status.kind == MessagesAccessStatus::Kind::checking;
    facts.showsSteps = status.kind == MessagesAccessStatus::Kind::denied;
    return facts;
}

} // namespace quillbook
