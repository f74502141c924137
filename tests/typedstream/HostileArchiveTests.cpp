#include "tests/support/TypedStreamBuilder.h"
#include "typedstream/TypedStreamDecoder.h"

#include <functional>
#include <optional>

#include <gmock/gmock.h>
#include <pthread.h>

namespace quillbook {
namespace {

using namespace typedstream;
using test::TypedStreamBuilder;
using testing::Gt;
using testing::Optional;
using Bytes = std::vector<std::uint8_t>;

constexpr int deep = 50000;

/// Runs `work` on a thread with a stack of 512 KiB, as secondary threads of macOS have.
void onSmallStack(std::function<void()> work) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, 512U << 10U), 0);
    pthread_t thread{};
    const auto run = [](void* function) -> void* {
        (*static_cast<std::function<void()>*>(function))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, run, &work), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

bool fails(const Bytes& archive) {
    try {
        TypedStreamDecoder::decode(archive);
        return false;
    } catch (const TypedStreamDecoderError&) {
        return true;
    }
}

/// How far into the archive the decoder came before it refused to copy more.
std::optional<std::uint64_t> endOfPatience(const Bytes& archive) {
    try {
        TypedStreamDecoder::decode(archive);
        return std::nullopt;
    } catch (const TypedStreamDecoderError& error) {
        const auto* bounds = std::get_if<TypedStreamDecoderError::OutOfBounds>(&error.reason());
        if (bounds == nullptr || bounds->index >= archive.size()) return std::nullopt;
        return bounds->index;
    }
}

/// Embedded data whose type list is embedded data again, by reference.
TypedStreamBuilder nestedEmbeddedData() {
    TypedStreamBuilder builder;
    builder.raw({0x84, 1, '*'});
    for (int level = 0; level < deep; ++level)
        builder.raw({0x00, 0x92});
    return builder;
}

TEST(HostileArchive, NestsEmbeddedDataDeeplyWithoutDeepCalls) {
    onSmallStack([] {
        const auto builder = nestedEmbeddedData().raw({0x00, 0x84, 1, 'i', 5});
        EXPECT_EQ(TypedStreamDecoder::decode(builder.bytes()),
                  std::vector<Archivable>{DataItem{{std::int64_t{5}}}});
    });
}

TEST(HostileArchive, NestsEmbeddedDataThatGivesNothing) {
    onSmallStack([] {
        const auto builder = nestedEmbeddedData().raw({0x00, 0x86});
        EXPECT_EQ(TypedStreamDecoder::decode(builder.bytes()), std::vector<Archivable>());
    });
}

TEST(HostileArchive, NestsEmbeddedDataToTheEnd) {
    onSmallStack([] { EXPECT_TRUE(fails(nestedEmbeddedData().bytes())); });
}

TEST(HostileArchive, NestsNewTypeListsOfEmbeddedData) {
    onSmallStack([] {
        TypedStreamBuilder builder;
        builder.raw({0x84, 1, '*'});
        for (int level = 0; level < deep; ++level)
            builder.raw({0x00, 0x84, 1, '*'});
        EXPECT_TRUE(fails(builder.bytes()));
    });
}

TEST(HostileArchive, HasAChainOfManyClasses) {
    onSmallStack([] {
        TypedStreamBuilder builder;
        builder.raw({0x84, 1, '@'});
        for (int level = 0; level < deep; ++level)
            builder.raw({0x84, 1, 'A', 7});
        builder.raw({0x85, 0x84, 1, 'i', 5});
        EXPECT_EQ(TypedStreamDecoder::decode(builder.bytes()),
                  (std::vector<Archivable>{ObjectItem{{"A", 7}, {std::int64_t{5}}}}));
    });
}

TEST(HostileArchive, HasALongRunOfReferenceBytesBeforeANumber) {
    onSmallStack([] {
        TypedStreamBuilder builder;
        builder.raw({0x84, 1, 'i'}).raw(Bytes(1000000, 0xFF)).raw({5});
        EXPECT_EQ(TypedStreamDecoder::decode(builder.bytes()),
                  std::vector<Archivable>{DataItem{{std::int64_t{5}}}});
    });
}

TEST(HostileArchive, HasALongRunOfStarts) {
    onSmallStack([] {
        TypedStreamBuilder builder;
        builder.raw({0x84, 1, '@'}).raw(Bytes(1000000, 0x84));
        EXPECT_TRUE(fails(builder.bytes()));
    });
}

TEST(HostileArchive, DeclaresMoreTextThanThereIs) {
    EXPECT_TRUE(fails(TypedStreamBuilder().raw({0x84, 1, '+', 0x82, 0xFF, 0xFF, 0xFF, 0xFF, 'a'}).bytes()));
}

// ---- A few bytes that stand for many values. Unbounded, each of these would take gigabytes.

TEST(HostileArchive, RepeatsALongListOfUnknownTypes) {
    TypedStreamBuilder builder;
    builder.raw({0x84, 0x81, 0x60, 0xEA}).raw(Bytes(60000, '#'));
    for (int repeat = 0; repeat < deep; ++repeat)
        builder.raw({0x92, 0x86});
    EXPECT_THAT(endOfPatience(builder.bytes()), Optional(Gt(80U)));
}

TEST(HostileArchive, RepeatsALongText) {
    TypedStreamBuilder builder;
    builder.types("i").integer(1).types("@").string(TypedStreamBuilder::nsString, std::string(500000, 'a'));
    for (int repeat = 0; repeat < deep; ++repeat)
        builder.types("@").reference(0);
    EXPECT_THAT(endOfPatience(builder.bytes()), Optional(Gt(80U)));
}

TEST(HostileArchive, DoublesItsValuesWithEveryStep) {
    TypedStreamBuilder builder;
    builder.types("@").raw({0x85}).types("i").integer(5).types("@@").raw({0x92, 0x84, 0x92});
    // Each step refers twice to what the step before made.
    for (int step = 0; step < 50; ++step) {
        const auto last = static_cast<std::uint8_t>(0x92 + 2 + 2 * step);
        builder.types("@@").raw({0x84, last, 0x84, last});
    }
    EXPECT_THAT(endOfPatience(builder.bytes()), Optional(Gt(80U)));
}

TEST(HostileArchive, RepeatsALongClassName) {
    TypedStreamBuilder builder;
    const std::string name(0x91, 'A');
    builder.types("@").beginObject({{name, 1}}).types("i").integer(5).endObject();
    for (int repeat = 0; repeat < 400000; ++repeat)
        builder.raw({0x92, 0x93});
    EXPECT_THAT(endOfPatience(builder.bytes()), Optional(Gt(80U)));
}

TEST(HostileArchive, IsNotMistakenForOneWhenItsAttributeNamesRepeat) {
    constexpr std::size_t repeats = 20000;
    TypedStreamBuilder builder;
    builder.types("i").integer(1);
    for (std::size_t repeat = 0; repeat < repeats; ++repeat) {
        builder.types("@").string(TypedStreamBuilder::nsString, "__kIMMessagePartAttributeName");
    }
    EXPECT_EQ(TypedStreamDecoder::decode(builder.bytes()).size(), repeats + 1);
}

TEST(HostileArchive, IsReadByLengthNotByItsSquare) {
    TypedStreamBuilder builder;
    for (int list = 0; list < 100000; ++list)
        builder.raw({0x84, 1, 'i', 5});
    EXPECT_EQ(TypedStreamDecoder::decode(builder.bytes()).size(), 100000U);
}

} // namespace
} // namespace quillbook
