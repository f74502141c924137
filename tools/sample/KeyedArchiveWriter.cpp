#include "tools/sample/KeyedArchiveWriter.h"

#include "tools/writing/PropertyListWriting.h"

#include <plist/plist.h>

namespace quillbook::sample {
namespace {

plist_t wordingNode(const EditedWording& wording) {
    plist_t node = plist_new_dict();
    plist_dict_set_item(node, "t", dataNode(wording.archive));
    plist_dict_set_item(node, "d", plist_new_real(static_cast<double>(wording.seconds)));
    return node;
}

} // namespace

struct KeyedArchiveWriter::Objects {
    PropertyList array{plist_new_array()};

    /// Takes the node over; gives its number.
    ObjectNumber add(plist_t node) {
        plist_array_append_item(array.get(), node);
        return plist_array_get_size(array.get()) - 1;
    }
    ObjectNumber addClass(const std::vector<std::string>& chain) {
        plist_t names = plist_new_array();
        for (const std::string& name : chain)
            plist_array_append_item(names, plist_new_string(name.c_str()));
        plist_t node = plist_new_dict();
        plist_dict_set_item(node, "$classname", plist_new_string(chain.front().c_str()));
        plist_dict_set_item(node, "$classes", names);
        return add(node);
    }
};

KeyedArchiveWriter::KeyedArchiveWriter() : objects_(std::make_unique<Objects>()) {
    objects_->add(plist_new_string("$null"));
}

KeyedArchiveWriter::~KeyedArchiveWriter() = default;

KeyedArchiveWriter::ObjectNumber
KeyedArchiveWriter::addDictionary(const std::vector<std::pair<std::string, std::int64_t>>& entries) {
    plist_t keys = plist_new_array();
    plist_t values = plist_new_array();
    for (const auto& [key, value] : entries) {
        plist_array_append_item(keys, plist_new_uid(objects_->add(plist_new_string(key.c_str()))));
        plist_array_append_item(
            values, plist_new_uid(objects_->add(plist_new_uint(static_cast<std::uint64_t>(value)))));
    }
    const ObjectNumber classNumber = objects_->addClass({"NSDictionary", "NSObject"});
    plist_t node = plist_new_dict();
    plist_dict_set_item(node, "NS.keys", keys);
    plist_dict_set_item(node, "NS.objects", values);
    plist_dict_set_item(node, "$class", plist_new_uid(classNumber));
    return objects_->add(node);
}

KeyedArchiveWriter::ObjectNumber KeyedArchiveWriter::addAttributedString(const std::string& text,
                                                                         ObjectNumber attributes) {
    const ObjectNumber textNumber = objects_->add(plist_new_string(text.c_str()));
    const ObjectNumber classNumber = objects_->addClass({"NSAttributedString", "NSObject"});
    plist_t node = plist_new_dict();
    plist_dict_set_item(node, "NSString", plist_new_uid(textNumber));
    plist_dict_set_item(node, "NSAttributes", plist_new_uid(attributes));
    plist_dict_set_item(node, "$class", plist_new_uid(classNumber));
    return objects_->add(node);
}

Data KeyedArchiveWriter::finish() {
    plist_t top = plist_new_dict();
    plist_dict_set_item(top, "root", plist_new_uid(root_));
    const PropertyList archive(plist_new_dict());
    plist_dict_set_item(archive.get(), "$version", plist_new_uint(100'000));
    plist_dict_set_item(archive.get(), "$archiver", plist_new_string("NSKeyedArchiver"));
    plist_dict_set_item(archive.get(), "$top", top);
    plist_dict_set_item(archive.get(), "$objects", objects_->array.release());
    return binaryPropertyList(archive.get());
}

Data editSummaryPropertyList(const EditedWording& earlier, const EditedWording& present,
                             std::int64_t earlierLength) {
    plist_t wordings = plist_new_array();
    plist_array_append_item(wordings, wordingNode(earlier));
    plist_array_append_item(wordings, wordingNode(present));
    plist_t edits = plist_new_dict();
    plist_dict_set_item(edits, "0", wordings);
    plist_t range = plist_new_dict();
    plist_dict_set_item(range, "lo", plist_new_uint(0));
    plist_dict_set_item(range, "le", plist_new_uint(static_cast<std::uint64_t>(earlierLength)));
    plist_t ranges = plist_new_dict();
    plist_dict_set_item(ranges, "0", range);
    const PropertyList summary(plist_new_dict());
    plist_dict_set_item(summary.get(), "ust", plist_new_bool(1));
    plist_dict_set_item(summary.get(), "ec", edits);
    plist_dict_set_item(summary.get(), "otr", ranges);
    return binaryPropertyList(summary.get());
}

Data chatProperties(const std::string& lastMessageGUID, bool isGroup) {
    const PropertyList properties(plist_new_dict());
    if (!lastMessageGUID.empty()) {
        plist_dict_set_item(properties.get(), "lastSeenMessageGuid",
                            plist_new_string(lastMessageGUID.c_str()));
    }
    plist_dict_set_item(properties.get(), "pv", plist_new_uint(2));
    plist_dict_set_item(properties.get(), "shouldForceToSMS", plist_new_bool(0));
    if (isGroup) plist_dict_set_item(properties.get(), "numberOfTimesRespondedtoThread", plist_new_uint(1));
    return binaryPropertyList(properties.get());
}

} // namespace quillbook::sample
