#pragma once

#include <string>

namespace quillbook::test {

// For use within the session of a PrivateBus with Evolution Data Server. All throw std::runtime_error with
// the server's words.

/// The address book that every profile has.
inline constexpr const char* personalBook = "system-address-book";

/// Makes an address book of that id on this machine; it is enabled.
void makeBook(const std::string& id);
void disableBook(const std::string& id);
/// Adds a contact with these properties of a vCard 3.0.
void addContact(const std::string& book, const std::string& properties);

} // namespace quillbook::test
