#pragma once

namespace quillbook::test {

/// Fails each test during which QML warned of something. That a picture does not decode is no defect.
void failOnQmlWarnings();

} // namespace quillbook::test
