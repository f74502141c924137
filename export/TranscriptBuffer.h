#pragma once

#include "platform/FileWriter.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace quillbook {

/// The way of a transcript to its file: text is gathered and written in pieces of 64 KiB, never held whole.
class TranscriptBuffer {
public:
    /// Creates the file or empties the one that stands there. Throws FileError.
    explicit TranscriptBuffer(const std::filesystem::path& file);

    /// Goes to the file at once, past the gathered text. Throws FileError.
    void writeAhead(std::string_view bytes);

    /// Append the next block of text here, then call `endBlock`.
    std::string& text() { return text_; }
    /// Writes the gathered text once there is enough of it. Throws FileError; the text then stays gathered.
    void endBlock();
    /// Writes what is left. Throws FileError.
    void finish();

private:
    void flush();

    FileWriter writer_;
    std::string text_;
};

} // namespace quillbook
