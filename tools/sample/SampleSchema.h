#pragma once

namespace quillbook::sample {

/// Tables of a Messages database as recent systems have it, as one SQL script.
extern const char* const schemaTables;

/// Its indexes, made when the rows are in.
extern const char* const schemaIndexes;

} // namespace quillbook::sample
