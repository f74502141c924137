#include "core/model/BackgroundTask.h"

#include "core/records/DescribedError.h"
#include "core/text/Localization.h"

namespace quillbook {
namespace {

TaskFailure describeCurrentException() {
    try {
        throw;
    } catch (const CancellationError& cancellation) {
        return {true, cancellation.what()};
    } catch (const std::exception& error) {
        return {false, describe(error)};
    } catch (...) {
        return {false, localized("An unexpected error occurred.")};
    }
}

} // namespace

TaskFailure failureOfCurrentException() noexcept {
    try {
        return describeCurrentException();
    } catch (...) { // Not even memory for the words.
        return {};
    }
}

} // namespace quillbook
