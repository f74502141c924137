#include "core/records/Cancellation.h"
#include "core/records/DescribedError.h"

#include <type_traits>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

TEST(ThrowIfCancelled, doesNothingWithoutARequest) {
    std::stop_source source;
    EXPECT_NO_THROW(throwIfCancelled(source.get_token()));
    EXPECT_NO_THROW(throwIfCancelled(std::stop_token()));
}

TEST(ThrowIfCancelled, throwsOnceAStopWasRequested) {
    std::stop_source source;
    source.request_stop();
    EXPECT_THROW(throwIfCancelled(source.get_token()), CancellationError);
}

TEST(CancellationError, hasNoWordsForTheUser) {
    EXPECT_FALSE((std::is_base_of_v<DescribedError, CancellationError>));
}

} // namespace
} // namespace quillbook
