#include "shell/adapter/AvatarStore.h"

#include <atomic>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

Data picture(std::uint8_t filling, std::size_t size = 10) {
    return Data(size, filling);
}

TEST(AvatarStore, givesBackWhatItKeeps) {
    AvatarStore store;
    const std::string key = store.keep(picture(1));
    ASSERT_NE(store.picture(key), nullptr);
    EXPECT_EQ(*store.picture(key), picture(1));
}

TEST(AvatarStore, knowsNoOtherKey) {
    AvatarStore store;
    store.keep(picture(1));
    EXPECT_EQ(store.picture(""), nullptr);
    EXPECT_EQ(store.picture("../../etc/passwd"), nullptr);
}

TEST(AvatarStore, givesEqualPicturesOneKeyAndOthersAnother) {
    AvatarStore store;
    EXPECT_EQ(store.keep(picture(1)), store.keep(picture(1)));
    EXPECT_NE(store.keep(picture(1)), store.keep(picture(2)));
}

TEST(AvatarStore, keepsAnEmptyPictureToo) {
    AvatarStore store;
    const auto kept = store.picture(store.keep({}));
    ASSERT_NE(kept, nullptr);
    EXPECT_TRUE(kept->empty());
}

TEST(AvatarStore, makesKeysThatFitIntoAnAddress) {
    AvatarStore store;
    EXPECT_EQ(store.keep(picture(7)).find_first_not_of("0123456789abcdef"), std::string::npos);
}

TEST(AvatarStore, dropsTheOldestBeyondTheLimit) {
    AvatarStore store(30, 1);
    std::vector<std::string> keys;
    for (const std::uint8_t each : {1, 2, 3, 4})
        keys.push_back(store.keep(picture(each)));
    EXPECT_EQ(store.picture(keys[0]), nullptr);
    for (const std::size_t each : {1U, 2U, 3U})
        EXPECT_NE(store.picture(keys[each]), nullptr) << each;
}

TEST(AvatarStore, countsAPictureKeptAgainAsTheLatest) {
    AvatarStore store(30, 1);
    const std::string first = store.keep(picture(1));
    const std::string second = store.keep(picture(2));
    store.keep(picture(3));
    store.keep(picture(1));
    store.keep(picture(4));
    EXPECT_NE(store.picture(first), nullptr);
    EXPECT_EQ(store.picture(second), nullptr);
}

TEST(AvatarStore, takesNoRoomForAPictureKeptTwice) {
    AvatarStore store(30, 1);
    const std::string first = store.keep(picture(1));
    for (int times = 0; times < 100; ++times)
        store.keep(picture(2));
    EXPECT_NE(store.picture(first), nullptr);
}

TEST(AvatarStore, keepsOneBeyondTheLimitAndNothingBesides) {
    AvatarStore store(30, 1);
    const std::string small = store.keep(picture(1));
    const std::string large = store.keep(picture(2, 1'000));
    EXPECT_EQ(store.picture(small), nullptr);
    EXPECT_NE(store.picture(large), nullptr);
    store.keep(picture(3));
    EXPECT_EQ(store.picture(large), nullptr);
}

TEST(AvatarStore, keepsAsManyAsAWindowShowsHoweverLargeTheyAre) {
    AvatarStore store(30);
    std::vector<std::string> keys;
    for (std::size_t each = 0; each <= AvatarStore::leastCount; ++each)
        keys.push_back(store.keep(picture(static_cast<std::uint8_t>(each), 1'000)));
    EXPECT_EQ(store.picture(keys.front()), nullptr) << "one more than are shown";
    for (std::size_t each = 1; each < keys.size(); ++each)
        EXPECT_NE(store.picture(keys[each]), nullptr) << each;
}

ConversationSummary withPicture(const char* id, Data bytes) {
    ConversationSummary conversation;
    conversation.id = SourceID{id};
    conversation.avatarData = std::move(bytes);
    return conversation;
}

TEST(AvatarStore, makesTheKeyOfAConversationsPictureOnceAList) {
    AvatarStore store;
    ConversationSummary ada = withPicture("1", picture(1));
    const std::string key = store.keepPictureOf(ada);
    ada.avatarData->front() = 2; // Nobody changes a list like this: it shows whether the bytes are read anew.
    EXPECT_EQ(store.keepPictureOf(ada), key);
    store.forgetList();
    EXPECT_NE(store.keepPictureOf(ada), key);
}

TEST(AvatarStore, makesAnotherKeyForAnotherPictureOfAConversation) {
    AvatarStore store;
    ConversationSummary ada = withPicture("1", picture(1));
    const std::string key = store.keepPictureOf(ada);
    ada.avatarData = picture(1, 11);
    EXPECT_NE(store.keepPictureOf(ada), key);
    EXPECT_EQ(*store.picture(store.keepPictureOf(ada)), picture(1, 11));
}

TEST(AvatarStore, givesEqualPicturesOfTwoConversationsOneKey) {
    AvatarStore store;
    const ConversationSummary ada = withPicture("1", picture(1));
    const ConversationSummary grace = withPicture("2", picture(1));
    EXPECT_EQ(store.keepPictureOf(ada), store.keepPictureOf(grace));
    EXPECT_EQ(store.keepPictureOf(ada), store.keep(picture(1)));
}

TEST(AvatarStore, keepsAPictureAgainThatHadToGo) {
    AvatarStore store(30, 1);
    const ConversationSummary ada = withPicture("1", picture(1, 20));
    const std::string key = store.keepPictureOf(ada);
    store.keep(picture(2, 20));
    EXPECT_EQ(store.picture(key), nullptr);
    EXPECT_EQ(store.keepPictureOf(ada), key);
    EXPECT_NE(store.picture(key), nullptr);
}

TEST(AvatarStore, leavesADroppedPictureToWhoHoldsIt) {
    AvatarStore store(10, 1);
    const auto held = store.picture(store.keep(picture(1)));
    store.keep(picture(2));
    EXPECT_EQ(*held, picture(1));
}

TEST(AvatarStore, servesManyThreadsAtOnce) {
    AvatarStore store(500, 1);
    std::vector<std::thread> threads;
    std::atomic<int> wrong = 0;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([&store, &wrong] {
            for (int turn = 0; turn < 2'000; ++turn) {
                const Data kept = picture(static_cast<std::uint8_t>(turn % 97), 20);
                const auto found = store.picture(store.keep(kept));
                if (found && *found != kept) ++wrong;
            }
        });
    for (auto& each : threads)
        each.join();
    EXPECT_EQ(wrong, 0);
}

} // namespace
} // namespace quillbook
