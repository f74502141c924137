#include "platform/linux/EvolutionAddressBook.h"

#include "core/text/Localization.h"
#include "platform/linux/ContactCard.h"
#include "platform/linux/EvolutionPictures.h"
#include "platform/linux/GLibDeadline.h"
#include "platform/linux/VCardSplitter.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include <libebook/libebook.h>

namespace quillbook {
namespace {

using std::chrono::milliseconds;
using Visit = std::function<void(const AddressBookContact&)>;

constexpr const char* registryName = "org.gnome.evolution.dataserver.Sources5";
constexpr const char* registryPath = "/org/gnome/evolution/dataserver/SourceManager";
constexpr const char* everyContact = "(contains \"x-evolution-any-field\" \"\")";
constexpr std::size_t contactsOfStep = 100;
constexpr std::size_t mostBytes = 268'435'456;
constexpr int mostSilentBooks = 1;

/// The server's objects report their changes to the thread that made them. Here nobody listens: the reports
/// go to a context of our own and end with it.
class ContextOfThread {
public:
    ContextOfThread() : context_(g_main_context_new()) { g_main_context_push_thread_default(context_); }
    ~ContextOfThread() {
        while (g_main_context_iteration(context_, FALSE) != FALSE) {
        }
        g_main_context_pop_thread_default(context_);
        g_main_context_unref(context_);
    }
    ContextOfThread(const ContextOfThread&) = delete;
    ContextOfThread& operator=(const ContextOfThread&) = delete;

private:
    GMainContext* context_;
};

struct TextsFreer {
    void operator()(GSList* list) const { g_slist_free_full(list, g_free); }
};
struct ObjectsReleaser {
    void operator()(GSList* list) const { g_slist_free_full(list, g_object_unref); }
};
struct VariantReleaser {
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
};

AddressBookError failure(const GLibDeadline& deadline, const GLibError& error) {
    return AddressBookError(deadline.hasPassed() ? localized("The address book does not answer.")
                                                 : error.message());
}

/// GLib would start a bus where there is none, for which nobody asked.
bool hasSessionBus() {
    const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    if (address != nullptr && *address != '\0') return true;
    const char* folder = std::getenv("XDG_RUNTIME_DIR");
    std::error_code unknown;
    return folder != nullptr && *folder != '\0' &&
           std::filesystem::exists(std::filesystem::path(folder) / "bus", unknown);
}

/// Has the registry started and waits for its answer, since the library itself would wait without end.
/// The connection is the process's one to its session bus; the library uses it too. Throws AddressBookError.
GObjectPointer<GDBusConnection> busWithServer(const GLibDeadline& deadline) {
    if (!hasSessionBus()) throw AddressBookError(localized("There is no address book on this machine."));
    GLibError error;
    GObjectPointer<GDBusConnection> bus(
        g_bus_get_sync(G_BUS_TYPE_SESSION, deadline.cancellable(), error.place()));
    if (!bus) throw failure(deadline, error);
    // Else the end of the session would end the process within an export.
    g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
    const std::unique_ptr<GVariant, VariantReleaser> answer(g_dbus_connection_call_sync(
        bus.get(), registryName, registryPath, "org.freedesktop.DBus.ObjectManager", "GetManagedObjects",
        nullptr, nullptr, G_DBUS_CALL_FLAGS_NONE, -1, deadline.cancellable(), error.place()));
    if (!answer) throw failure(deadline, error);
    return bus;
}

bool isLocal(ESource* book) {
    auto* backend =
        static_cast<ESourceBackend*>(e_source_get_extension(book, E_SOURCE_EXTENSION_ADDRESS_BOOK));
    const char* name = e_source_backend_get_backend_name(backend);
    return name != nullptr && std::string_view(name) == "local";
}

/// The enabled address books, those of this machine first: one elsewhere may be out of reach.
struct Books {
    explicit Books(milliseconds patience) {
        const GLibDeadline deadline(patience);
        bus = busWithServer(deadline);
        GLibError error;
        registry.reset(e_source_registry_new_sync(deadline.cancellable(), error.place()));
        if (!registry) throw failure(deadline, error);
        GList* enabled = e_source_registry_list_enabled(registry.get(), E_SOURCE_EXTENSION_ADDRESS_BOOK);
        for (const GList* node = enabled; node != nullptr; node = node->next)
            books.emplace_back(static_cast<ESource*>(node->data));
        g_list_free(enabled);
        std::stable_partition(books.begin(), books.end(),
                              [](const auto& book) { return isLocal(book.get()); });
    }

    GObjectPointer<GDBusConnection> bus;
    GObjectPointer<ESourceRegistry> registry;
    std::vector<GObjectPointer<ESource>> books;
};

/// The question for the contacts with these ids, in the server's language of questions.
std::string questionFor(std::span<const std::string> ids) {
    std::string question = "(or";
    for (const std::string& id : ids) {
        question += " (is \"id\" \"";
        for (const char c : id) {
            if (c == '"' || c == '\\') question += '\\';
            question += c;
        }
        question += "\")";
    }
    return question + ")";
}

bool isList(const std::string& card) {
    constexpr std::string_view marker = "\nX-EVOLUTION-LIST:TRUE";
    const auto isEqual = [](char a, char b) { return g_ascii_toupper(a) == b; };
    return std::search(card.begin(), card.end(), marker.begin(), marker.end(), isEqual) != card.end();
}

/// Reads address books into one visitor.
class Reading {
public:
    Reading(milliseconds patience, const Visit& visit) : patience_(patience), visit_(visit) {}

    /// Throws AddressBookError where it is not to go on with the next.
    void read(ESource* book) {
        GLibDeadline opening(patience_);
        GLibError error;
        // Nobody waits for the connection of a book that lies elsewhere: it is read as it was last seen.
        constexpr auto withoutWaiting = static_cast<guint32>(-1);
        const GObjectPointer<EClient> client(
            e_book_client_connect_sync(book, withoutWaiting, opening.cancellable(), error.place()));
        if (!client) return leaveOut(opening, error);
        auto* opened = reinterpret_cast<EBookClient*>(client.get());
        const auto ids = idsOf(opened, opening);
        for (std::size_t start = 0; start < ids.size(); start += contactsOfStep) {
            const std::span rest = std::span(ids).subspan(start);
            if (!readContacts(opened, questionFor(rest.first(std::min(rest.size(), contactsOfStep))))) return;
        }
    }
    void finish() const {
        if (failure_) throw AddressBookError(*failure_);
    }

private:
    std::vector<std::string> idsOf(EBookClient* book, const GLibDeadline& deadline) {
        GSList* found = nullptr;
        GLibError error;
        const bool isDone = e_book_client_get_contacts_uids_sync(
                                book, everyContact, &found, deadline.cancellable(), error.place()) != FALSE;
        const std::unique_ptr<GSList, TextsFreer> owned(found);
        if (!isDone) leaveOut(deadline, error);
        std::vector<std::string> ids;
        for (const GSList* node = found; isDone && node != nullptr; node = node->next)
            ids.emplace_back(static_cast<const char*>(node->data));
        return ids;
    }

    /// False where the book gives no more.
    bool readContacts(EBookClient* book, const std::string& question) {
        std::vector<std::string> cards;
        {
            const GLibDeadline deadline(patience_);
            GSList* found = nullptr;
            GLibError error;
            const bool isDone =
                e_book_client_get_contacts_sync(book, question.c_str(), &found, deadline.cancellable(),
                                                error.place()) != FALSE;
            const std::unique_ptr<GSList, ObjectsReleaser> owned(found);
            if (!isDone) {
                leaveOut(deadline, error);
                return false;
            }
            for (const GSList* node = found; node != nullptr; node = node->next) {
                const GLibText card(e_vcard_to_string(static_cast<EVCard*>(node->data), EVC_FORMAT_VCARD_30));
                if (card) cards.emplace_back(card.get());
            }
        }
        for (const std::string& card : cards)
            tell(card);
        return true;
    }

    void tell(const std::string& card) {
        count(card.size());
        if (isList(card)) return;
        VCardSplitter splitter([this](const std::string& bounded) {
            visit_(contactOfCard(bounded, [this](const std::string& uri) {
                auto picture = evolutionPicture(uri);
                if (picture) count(picture->size());
                return picture;
            }));
        });
        splitter.add(card);
        splitter.finish();
    }

    void count(std::size_t bytes) {
        if (bytes > mostBytes - bytes_) throw AddressBookError(localized("The address book is too large."));
        bytes_ += bytes;
    }

    void leaveOut(const GLibDeadline& deadline, const GLibError& error) {
        const AddressBookError reason = failure(deadline, error);
        failure_ = reason.description();
        if (deadline.hasPassed() && ++silentBooks_ > mostSilentBooks) throw reason;
    }

    const milliseconds patience_;
    const Visit& visit_;
    std::size_t bytes_ = 0;
    int silentBooks_ = 0;
    std::optional<std::string> failure_;
};

} // namespace

EvolutionAddressBook::EvolutionAddressBook(milliseconds patience) : patience_(patience) {}

AddressBook::Authorization EvolutionAddressBook::authorization() {
    const ContextOfThread context;
    try {
        busWithServer(GLibDeadline(patience_));
        return Authorization::authorized;
    } catch (const AddressBookError&) {
        return Authorization::denied;
    }
}

void EvolutionAddressBook::forEachContact(const Visit& visit) {
    const ContextOfThread context;
    const Books books(patience_);
    Reading reading(patience_, visit);
    for (const auto& book : books.books)
        reading.read(book.get());
    reading.finish();
}

} // namespace quillbook
