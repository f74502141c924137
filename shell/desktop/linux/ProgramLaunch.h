#pragma once

#include <QObject>
#include <string>
#include <vector>

namespace quillbook {

/// A program's name, looked up in PATH, and its arguments, byte for byte. No shell reads them.
using ProgramCommand = std::vector<std::string>;

/// Starts the first command, in a session of its own and apart from our input and output. A command that
/// cannot be started or ends without success is followed by the next one, while `context` lives. Never waits;
/// whatever was started goes on when this process ends.
void launchFirstThatSucceeds(std::vector<ProgramCommand> commands, QObject* context);

} // namespace quillbook
