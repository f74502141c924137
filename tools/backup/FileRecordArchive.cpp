#include "tools/backup/FileRecordArchive.h"

#include "tools/writing/PropertyListWriting.h"

#include <initializer_list>

#include <plist/plist.h>

namespace quillbook::sample {
namespace {

/// Adds the node to "$objects" and gives the reference that stands for it.
plist_t referenceTo(plist_t objects, plist_t node) {
    plist_array_append_item(objects, node);
    return plist_new_uid(plist_array_get_size(objects) - 1);
}

plist_t classNode(std::initializer_list<const char*> chain) {
    plist_t names = plist_new_array();
    for (const char* name : chain)
        plist_array_append_item(names, plist_new_string(name));
    plist_t node = plist_new_dict();
    plist_dict_set_item(node, "$classname", plist_new_string(*chain.begin()));
    plist_dict_set_item(node, "$classes", names);
    return node;
}

plist_t keyNode(plist_t objects, const Data& key) {
    plist_t node = plist_new_dict();
    plist_dict_set_item(node, "NS.data", dataNode(key));
    plist_dict_set_item(node, "$class",
                        referenceTo(objects, classNode({"NSMutableData", "NSData", "NSObject"})));
    return node;
}

void setNumber(plist_t record, const char* name, std::uint64_t value) {
    plist_dict_set_item(record, name, plist_new_uint(value));
}

void fillRecord(plist_t record, plist_t objects, const StoredFileRecord& values) {
    constexpr std::uint64_t mobileUser = 501;
    const auto modified = static_cast<std::uint64_t>(values.lastModified);
    setNumber(record, "LastModified", modified);
    setNumber(record, "LastStatusChange", modified);
    setNumber(record, "Birth", modified);
    setNumber(record, "Flags", 0);
    setNumber(record, "GroupID", mobileUser);
    setNumber(record, "UserID", mobileUser);
    setNumber(record, "InodeNumber", values.inode);
    setNumber(record, "Mode", values.mode);
    setNumber(record, "ProtectionClass", values.protectionClass);
    // A negative size becomes a 16-byte integer, whose low 64 bits are those of the number.
    setNumber(record, "Size", static_cast<std::uint64_t>(values.size));
    plist_dict_set_item(record, "RelativePath",
                        referenceTo(objects, plist_new_string(values.relativePath.c_str())));
    if (values.encryptionKey) {
        plist_dict_set_item(record, "EncryptionKey",
                            referenceTo(objects, keyNode(objects, *values.encryptionKey)));
    }
    plist_dict_set_item(record, "$class", referenceTo(objects, classNode({"MBFile", "NSObject"})));
}

} // namespace

Data fileRecordArchive(const StoredFileRecord& record) {
    plist_t objects = plist_new_array();
    plist_array_append_item(objects, plist_new_string("$null"));
    plist_t recordNode = plist_new_dict();
    plist_t top = plist_new_dict();
    plist_dict_set_item(top, "root", referenceTo(objects, recordNode));
    fillRecord(recordNode, objects, record);
    const PropertyList archive(plist_new_dict());
    plist_dict_set_item(archive.get(), "$version", plist_new_uint(100'000));
    plist_dict_set_item(archive.get(), "$archiver", plist_new_string("NSKeyedArchiver"));
    plist_dict_set_item(archive.get(), "$top", top);
    plist_dict_set_item(archive.get(), "$objects", objects);
    return binaryPropertyList(archive.get());
}

} // namespace quillbook::sample
