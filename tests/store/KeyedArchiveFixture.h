#pragma once

#include "tests/support/BinaryPropertyListBuilder.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillbook::test {

/// The parts that every keyed archive has. Object 0 of an archive is "$null"; the ones given follow it.
inline std::string keyedArchive(BinaryPropertyListBuilder& list, const std::vector<std::size_t>& objects,
                                std::size_t root, std::string_view archiver = "NSKeyedArchiver",
                                std::uint32_t version = 100000) {
    std::vector<std::size_t> all = {list.ascii("$null")};
    all.insert(all.end(), objects.begin(), objects.end());
    const std::size_t top = list.dictionary({{"root", root}});
    return list.bytes(list.dictionary({{"$archiver", list.ascii(archiver)},
                                       {"$version", list.integer(version)},
                                       {"$top", top},
                                       {"$objects", list.array(all)}}));
}

inline std::size_t classDescription(BinaryPropertyListBuilder& list,
                                    const std::vector<std::string_view>& names) {
    std::vector<std::size_t> chain;
    for (const std::string_view name : names)
        chain.push_back(list.ascii(name));
    return list.dictionary({{"$classname", list.ascii(names.front())}, {"$classes", list.array(chain)}});
}

/// As NSKeyedArchiver writes an attributed string without attributes whose characters are an object by
/// themselves.
inline std::string archivedAttributedString(std::size_t (*characters)(BinaryPropertyListBuilder&)) {
    BinaryPropertyListBuilder list;
    const std::size_t attributed = list.dictionary({{"NSString", list.uid(2)}, {"$class", list.uid(3)}});
    const std::size_t text = characters(list);
    const std::size_t type = classDescription(list, {"NSAttributedString", "NSObject"});
    return keyedArchive(list, {attributed, text, type}, list.uid(1));
}

} // namespace quillbook::test
