#pragma once

#include "core/records/ConversationSummary.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillbook::sample {

/// One page of A5 paper with a heading and lines in Helvetica, which every reader of PDF has. ISO 32000-1;
/// ASCII only.
Data onePagePDF(std::string_view heading, const std::vector<std::string>& lines);

Data bookingPDF();
Data costsCSV();
Data packingListText();
Data bookClubNotesText();
Data landladyCard();
Data routeText();

} // namespace quillbook::sample
