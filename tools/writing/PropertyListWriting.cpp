#include "tools/writing/PropertyListWriting.h"

#include <plist/plist.h>

namespace quillbook::sample {

void PropertyListDeleter::operator()(void* node) const {
    plist_free(node);
}

void* dataNode(const Data& data) {
    return plist_new_data(reinterpret_cast<const char*>(data.data()), data.size());
}

Data binaryPropertyList(void* node) {
    char* bytes = nullptr;
    std::uint32_t length = 0;
    plist_to_bin(node, &bytes, &length);
    Data data(bytes, bytes + length);
    plist_to_bin_free(bytes);
    return data;
}

Data xmlPropertyList(void* node) {
    char* bytes = nullptr;
    std::uint32_t length = 0;
    plist_to_xml(node, &bytes, &length);
    Data data(bytes, bytes + length);
    plist_to_xml_free(bytes);
    return data;
}

} // namespace quillbook::sample
