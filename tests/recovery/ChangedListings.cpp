#include "tests/recovery/ChangedListings.h"

#include <dirent.h>
#include <dlfcn.h>

namespace {

thread_local bool hidesTypes = false;
thread_local int changed = 0;

} // namespace

// Takes the place of the C library's function in this program; with files of 64 bits that is readdir64.
extern "C" dirent* readdir(DIR* folder) {
    using Function = dirent* (*)(DIR*);
    static const auto next = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "readdir64"));
    dirent* entry = next(folder);
    if (entry != nullptr && hidesTypes) {
        entry->d_type = DT_UNKNOWN;
        ++changed;
    }
    return entry;
}

namespace quillbook::test {

ListingsWithoutTypes::ListingsWithoutTypes() {
    hidesTypes = true;
    changed = 0;
}

ListingsWithoutTypes::~ListingsWithoutTypes() {
    hidesTypes = false;
}

int ListingsWithoutTypes::changedEntries() {
    return changed;
}

} // namespace quillbook::test
