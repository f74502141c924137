#pragma once

namespace quillbook::test {

/// While it lives, the listings of folders that this thread reads do not tell the types of their entries, as
/// those of some file systems.
class ListingsWithoutTypes {
public:
    ListingsWithoutTypes();
    ~ListingsWithoutTypes();
    ListingsWithoutTypes(const ListingsWithoutTypes&) = delete;
    ListingsWithoutTypes& operator=(const ListingsWithoutTypes&) = delete;

    /// How many entries it has changed.
    static int changedEntries();
};

} // namespace quillbook::test
