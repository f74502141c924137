#include "tests/platform/EvolutionFixture.h"

#include <memory>
#include <stdexcept>

#include <libebook/libebook.h>

namespace quillbook::test {
namespace {

struct Releaser {
    void operator()(void* object) const { g_object_unref(object); }
};
template <typename Object>
using Pointer = std::unique_ptr<Object, Releaser>;

void check(bool isDone, GError* error) {
    if (isDone) return;
    const std::string words = error == nullptr ? "unknown" : error->message;
    g_clear_error(&error);
    throw std::runtime_error(words);
}

Pointer<ESourceRegistry> registry() {
    GError* error = nullptr;
    Pointer<ESourceRegistry> made(e_source_registry_new_sync(nullptr, &error));
    check(made != nullptr, error);
    return made;
}

Pointer<ESource> source(const std::string& id) {
    Pointer<ESource> found(e_source_registry_ref_source(registry().get(), id.c_str()));
    check(found != nullptr, nullptr);
    return found;
}

} // namespace

void makeBook(const std::string& id) {
    GError* error = nullptr;
    const Pointer<ESource> book(e_source_new_with_uid(id.c_str(), nullptr, &error));
    check(book != nullptr, error);
    e_source_set_parent(book.get(), "local-stub");
    e_source_set_display_name(book.get(), id.c_str());
    auto* extension =
        static_cast<ESourceBackend*>(e_source_get_extension(book.get(), E_SOURCE_EXTENSION_ADDRESS_BOOK));
    e_source_backend_set_backend_name(extension, "local");
    check(e_source_registry_commit_source_sync(registry().get(), book.get(), nullptr, &error) != FALSE,
          error);
}

void disableBook(const std::string& id) {
    GError* error = nullptr;
    const auto book = source(id);
    e_source_set_enabled(book.get(), FALSE);
    check(e_source_write_sync(book.get(), nullptr, &error) != FALSE, error);
}

void addContact(const std::string& book, const std::string& properties) {
    constexpr auto withoutWaiting = static_cast<guint32>(-1);
    GError* error = nullptr;
    const Pointer<EClient> client(
        e_book_client_connect_sync(source(book).get(), withoutWaiting, nullptr, &error));
    check(client != nullptr, error);
    const std::string card = "BEGIN:VCARD\r\nVERSION:3.0\r\n" + properties + "\r\nEND:VCARD";
    const Pointer<EContact> contact(e_contact_new_from_vcard(card.c_str()));
    char* id = nullptr;
    const auto isAdded =
        e_book_client_add_contact_sync(reinterpret_cast<EBookClient*>(client.get()), contact.get(),
                                       E_BOOK_OPERATION_FLAG_NONE, &id, nullptr, &error);
    g_free(id);
    check(isAdded != FALSE, error);
}

} // namespace quillbook::test
