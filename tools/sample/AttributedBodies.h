#pragma once

#include "core/records/ConversationSummary.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillbook::sample {

/// An attachment as a body names it at its U+FFFC.
struct BodyAttachment {
    std::string guid;
    std::string name;
};

/// What a body holds: one part for each attachment, then one for the text.
struct BodyContents {
    std::vector<BodyAttachment> attachments;
    std::string text;
    bool isFromMe = false;
};

enum class Mutability { immutable, mutableString };

/// The text as the text column has it: one U+FFFC for each attachment, then the text.
std::string bodyText(const BodyContents& contents);

/// A typed archive of an attributed string with the attribute runs that Messages writes.
Data typedArchiveBody(const BodyContents& contents, Mutability mutability);

/// A keyed archive (binary property list) of an attributed string.
Data keyedArchiveBody(const BodyContents& contents);

/// The summary of an edited message: the earlier wording beside the present one, as a binary property list.
Data editSummary(const BodyContents& contents, std::string_view earlierText, std::int64_t editSeconds);

} // namespace quillbook::sample
