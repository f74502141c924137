#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace quillbook {

/// Overwrites memory in a way that no optimiser leaves out.
void overwriteMemory(void* start, std::size_t count) noexcept;

/// Gives memory back overwritten, so that no key outlives its use.
template <typename Value>
struct OverwritingAllocator {
    using value_type = Value;

    OverwritingAllocator() = default;
    template <typename Other>
    OverwritingAllocator(const OverwritingAllocator<Other>& /*other*/) noexcept {}

    Value* allocate(std::size_t count) { return std::allocator<Value>().allocate(count); }
    void deallocate(Value* start, std::size_t count) noexcept {
        overwriteMemory(start, count * sizeof(Value));
        std::allocator<Value>().deallocate(start, count);
    }
    bool operator==(const OverwritingAllocator&) const = default;
};

/// Key material.
using SecretBytes = std::vector<std::uint8_t, OverwritingAllocator<std::uint8_t>>;

/// Key material of a fixed size on the stack, overwritten at the end of its scope.
template <std::size_t size>
class SecretArray : public std::array<std::uint8_t, size> {
public:
    SecretArray() : std::array<std::uint8_t, size>{} {}
    ~SecretArray() { overwriteMemory(this->data(), size); }
    SecretArray(const SecretArray&) = delete;
    SecretArray& operator=(const SecretArray&) = delete;
};

} // namespace quillbook
