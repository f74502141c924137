#pragma once

#include "platform/AddressBook.h"

#include <functional>
#include <optional>
#include <string>

namespace quillbook {

/// Gives the picture behind a URI that is no "data:" URI, or nothing.
using PictureOfURI = std::function<std::optional<Data>(const std::string& uri)>;

/// What one card out of a VCardSplitter says of a person. A picture that is not in the card itself is absent
/// unless `pictureOfURI` gives it; bytes that are no picture are absent too.
AddressBookContact contactOfCard(const std::string& card, const PictureOfURI& pictureOfURI = {});

} // namespace quillbook
