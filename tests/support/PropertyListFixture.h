#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include <plist/plist.h>

namespace quillbook::test {

enum class PropertyListForm { xml, binary };

/// A property list whose top value is a dictionary, written by libplist.
class PropertyListBuilder {
public:
    PropertyListBuilder() : top_(plist_new_dict(), plist_free) {}

    PropertyListBuilder& string(const char* key, const char* value) {
        return set(key, plist_new_string(value));
    }
    PropertyListBuilder& boolean(const char* key, bool value) {
        return set(key, plist_new_bool(value ? 1 : 0));
    }
    PropertyListBuilder& integer(const char* key, std::uint64_t value) {
        return set(key, plist_new_uint(value));
    }
    PropertyListBuilder& data(const char* key, std::string_view value) {
        return set(key, plist_new_data(value.data(), value.size()));
    }
    /// Seconds since 2001-01-01 00:00:00 UTC.
    PropertyListBuilder& date(const char* key, std::int32_t seconds, std::int32_t microseconds = 0) {
        return set(key, plist_new_date(seconds, microseconds));
    }
    /// `count` entries named as apps are, each an empty dictionary.
    PropertyListBuilder& apps(const char* key, int count) {
        const plist_t all = plist_new_dict();
        for (int number = 0; number < count; ++number) {
            const std::string name = "com.example.developer.application.extension" + std::to_string(number);
            plist_dict_set_item(all, name.c_str(), plist_new_dict());
        }
        return set(key, all);
    }

    std::string bytes(PropertyListForm form) const {
        char* start = nullptr;
        std::uint32_t length = 0;
        if (form == PropertyListForm::xml) {
            plist_to_xml(top_.get(), &start, &length);
        } else {
            plist_to_bin(top_.get(), &start, &length);
        }
        const std::unique_ptr<char, void (*)(char*)> owner(start, plist_to_bin_free);
        return {start, length};
    }

private:
    PropertyListBuilder& set(const char* key, plist_t value) {
        plist_dict_set_item(top_.get(), key, value);
        return *this;
    }

    std::unique_ptr<void, void (*)(plist_t)> top_;
};

} // namespace quillbook::test
