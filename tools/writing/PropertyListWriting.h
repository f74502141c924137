#pragma once

#include "core/records/ConversationSummary.h"

#include <memory>

namespace quillbook::sample {

/// Frees a tree of libplist's, whose `plist_t` is a pointer to void.
struct PropertyListDeleter {
    void operator()(void* node) const;
};
using PropertyList = std::unique_ptr<void, PropertyListDeleter>;

/// A node of the data type. The caller owns it, as is the way of libplist's own `plist_new_` functions.
void* dataNode(const Data& data);

/// The whole file in binary form.
Data binaryPropertyList(void* node);
/// The whole file in XML form.
Data xmlPropertyList(void* node);

} // namespace quillbook::sample
