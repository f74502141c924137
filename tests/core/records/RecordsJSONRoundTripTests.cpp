#include "core/records/RecordsJSON.h"

#include <random>

#include <gtest/gtest.h>

namespace quillbook {
namespace {

/// Makes records at random; every optional field is there or not, texts hold what is awkward to write.
class RandomRecords {
public:
    explicit RandomRecords(unsigned seed) : random_(seed) {}

    std::string text() {
        static const std::vector<std::string> parts{
            "Ada",    " ",      "\"", "\\", "/", "\n", "\r",   "\t",  std::string(1, '\0'), "\x1F", "é", "😀",
            "\u2028", "\uFFFD", "{",  "}",  ",", ":",  "null", "\x7F"};
        std::string text;
        for (std::size_t part = below(8); part > 0; --part)
            text += parts[below(parts.size())];
        return text;
    }
    SourceID id() { return SourceID{text()}; }
    Date date() {
        return Date{
            static_cast<double>(static_cast<std::int64_t>(below(2'000'000'000'000)) - 1'000'000'000'000)};
    }
    bool truth() { return below(2) == 1; }
    std::int64_t number() { return static_cast<std::int64_t>(random_()); }
    Data data() {
        Data bytes(below(20));
        for (auto& byte : bytes)
            byte = static_cast<std::uint8_t>(random_());
        return bytes;
    }

    ArchiveWarning warning() { return {text(), text(), text(), maybe(&RandomRecords::id)}; }
    ArchiveReaction reaction() {
        return {text(), maybe(&RandomRecords::text), static_cast<ReactionKind>(below(8)), truth(),
                maybe(&RandomRecords::date)};
    }
    ArchiveAttachment attachment() {
        return {id(),
                maybe(&RandomRecords::text),
                maybe(&RandomRecords::text),
                text(),
                maybe(&RandomRecords::text),
                maybe(&RandomRecords::text),
                maybe(&RandomRecords::number),
                maybe(&RandomRecords::text),
                maybe(&RandomRecords::text),
                static_cast<AttachmentAvailability>(below(3))};
    }
    ArchiveParticipant participant() {
        return {text(),
                text(),
                maybe(&RandomRecords::text),
                truth(),
                maybe(&RandomRecords::data),
                maybe(&RandomRecords::text),
                maybe(&RandomRecords::text)};
    }
    ArchiveMessage message() {
        return {id(),
                text(),
                date(),
                maybe(&RandomRecords::text),
                truth(),
                maybe(&RandomRecords::text),
                maybe(&RandomRecords::text),
                maybe(&RandomRecords::text),
                maybe(&RandomRecords::text),
                maybe(&RandomRecords::date),
                maybe(&RandomRecords::date),
                some(&RandomRecords::reaction),
                some(&RandomRecords::attachment),
                static_cast<MessagePayloadState>(below(3))};
    }
    ArchiveConversation conversation() {
        return {number(),
                id(),
                text(),
                text(),
                maybe(&RandomRecords::text),
                some(&RandomRecords::participant),
                number(),
                some(&RandomRecords::message),
                some(&RandomRecords::warning),
                date(),
                text()};
    }
    ConversationSummary summary() {
        return {id(),
                text(),
                text(),
                some(&RandomRecords::text),
                maybe(&RandomRecords::text),
                maybe(&RandomRecords::date),
                maybe(&RandomRecords::date),
                number(),
                number(),
                maybe(&RandomRecords::data),
                maybe(&RandomRecords::text)};
    }
    ExportOptions options() { return {truth(), truth(), truth()}; }

private:
    std::size_t below(std::size_t limit) { return random_() % limit; }
    template <typename Value>
    std::optional<Value> maybe(Value (RandomRecords::*make)()) {
        return truth() ? std::optional<Value>((this->*make)()) : std::nullopt;
    }
    template <typename Value>
    std::vector<Value> some(Value (RandomRecords::*make)()) {
        std::vector<Value> values;
        for (std::size_t count = below(4); count > 0; --count)
            values.push_back((this->*make)());
        return values;
    }

    std::mt19937_64 random_;
};

template <typename Record>
void expectToComeBack(Record (RandomRecords::*make)()) {
    RandomRecords records(20'240'501);
    for (int round = 0; round < 300; ++round) {
        const Record record = (records.*make)();
        for (const JSONForm form : {JSONForm::pretty, JSONForm::compact}) {
            const std::string json = jsonText(record, form);
            ASSERT_EQ(recordFromJSON<Record>(json), record) << json;
            ASSERT_EQ(jsonText(recordFromJSON<Record>(json), form), json);
        }
    }
}

TEST(RecordsJSONRoundTrip, ofConversations) {
    expectToComeBack(&RandomRecords::conversation);
}

TEST(RecordsJSONRoundTrip, ofMessages) {
    expectToComeBack(&RandomRecords::message);
}

TEST(RecordsJSONRoundTrip, ofAttachments) {
    expectToComeBack(&RandomRecords::attachment);
}

TEST(RecordsJSONRoundTrip, ofParticipants) {
    expectToComeBack(&RandomRecords::participant);
}

TEST(RecordsJSONRoundTrip, ofReactions) {
    expectToComeBack(&RandomRecords::reaction);
}

TEST(RecordsJSONRoundTrip, ofWarnings) {
    expectToComeBack(&RandomRecords::warning);
}

TEST(RecordsJSONRoundTrip, ofSummaries) {
    expectToComeBack(&RandomRecords::summary);
}

TEST(RecordsJSONRoundTrip, ofOptions) {
    expectToComeBack(&RandomRecords::options);
}

TEST(RecordsJSONRoundTrip, ofIdentifiers) {
    expectToComeBack(&RandomRecords::id);
}

} // namespace
} // namespace quillbook
