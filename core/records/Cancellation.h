#pragma once

#include <exception>
#include <stop_token>

namespace quillbook {

/// Thrown where a long operation notices that it was cancelled. No DescribedError: nobody is shown a message
/// for what they asked for.
class CancellationError final : public std::exception {
public:
    const char* what() const noexcept override;
};

/// Throws CancellationError once a stop was requested.
void throwIfCancelled(const std::stop_token& stop);

} // namespace quillbook
