#pragma once

#include <exception>
#include <string>

namespace quillbook {

/// An error that ends an operation and has words for the user. Every thrown type but CancellationError
/// derives from it.
class DescribedError : public std::exception {
public:
    /// The text a user reads.
    virtual std::string description() const = 0;
    /// The same text; the pointer lives as long as the error.
    const char* what() const noexcept override;

private:
    mutable std::string words_;
};

/// What a user reads of any error: its description, or what the standard library has to say of it.
std::string describe(const std::exception& error);

} // namespace quillbook
