#pragma once

#include "tools/album/ModelDriver.h"

namespace quillbook::tools {

/// Carries out the command and prints its answer on standard output. Throws as ModelDriver does.
void runCommand(ModelDriver& driver, const AlbumArguments& arguments);

} // namespace quillbook::tools
