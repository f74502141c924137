#pragma once

namespace quillbook::bench {

/// Exports the first conversation of the user's library in the real window, with the real services, and
/// prints how the main thread fared. Made after Qt's application object.
int runExport();

/// Shows a window that has one text field with the keyboard in it and nothing else, until it is ended.
int runPlainWindow();

} // namespace quillbook::bench
