#pragma once

#include <QObject>
#include <filesystem>
#include <functional>

namespace quillbook {

/// Tells whether a file is there; may take as long as it likes, from any thread.
using FileLook = std::function<bool(const std::filesystem::path&)>;

/// Looks on a thread of its own, since a network's disk that has gone away lets nobody go who asks for a
/// file. `there` is called later, on this thread, where the file is there and `context` still lives.
void whereFileIsThere(const std::filesystem::path& file, const FileLook& look, QObject* context,
                      std::function<void()> there);

} // namespace quillbook
