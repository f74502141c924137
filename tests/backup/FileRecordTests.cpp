#include "backup/BackupError.h"
#include "backup/BinaryPlist.h"
#include "backup/FileRecord.h"
#include "tests/store/KeyedArchiveFixture.h"

#include <functional>
#include <limits>

#include <gmock/gmock.h>

namespace quillbook {
namespace {

using namespace std::string_literals;
using List = test::BinaryPropertyListBuilder;

FileRecord recordIn(const std::string& blob) {
    return fileRecord({reinterpret_cast<const std::uint8_t*>(blob.data()), blob.size()});
}

Data bytesOf(std::string_view text) {
    return {text.begin(), text.end()};
}

/// The words of what a blob is refused with; empty for one that is read.
std::string refusal(const std::string& blob) {
    try {
        recordIn(blob);
        return "";
    } catch (const BackupError& error) {
        return error == BackupError(BackupError::Reason::manifestUnreadable) ? "manifestUnreadable"
                                                                             : error.description();
    } catch (const BinaryPlistError& error) {
        return error.reason == BinaryPlistError::Reason::notBinaryPlist ? "notBinaryPlist" : "damaged";
    }
}

const std::string wrappedKey = "\3\0\0\0"s + std::string(40, 'k');

/// As a device writes it: what the record holds inline and what it refers to, in an archive by number.
std::string recordOfDevice() {
    List list;
    const std::size_t record = list.dictionary({{"$class", list.uid(4)},
                                                {"Size", list.integer(70'000)},
                                                {"Mode", list.integer(33188)},
                                                {"RelativePath", list.uid(2)},
                                                {"EncryptionKey", list.uid(3)}});
    const std::size_t path = list.ascii("Library/SMS/Attachments/ab/lake.png");
    const std::size_t key = list.dictionary({{"$class", list.uid(5)}, {"NS.data", list.data(wrappedKey)}});
    const std::size_t fileClass = test::classDescription(list, {"MBFile", "NSObject"});
    const std::size_t dataClass = test::classDescription(list, {"NSMutableData", "NSData", "NSObject"});
    return test::keyedArchive(list, {record, path, key, fileClass, dataClass}, list.uid(1));
}

TEST(FileRecord, IsReadAsADeviceWritesIt) {
    EXPECT_EQ(recordIn(recordOfDevice()), (FileRecord{70'000, bytesOf(wrappedKey)}));
}

/// The pairs of a record, and what `$objects` holds from number 2 on.
struct RecordParts {
    List::Entries pairs;
    std::vector<std::size_t> archived;
};

std::string archiveWith(const std::function<RecordParts(List&)>& parts) {
    List list;
    const RecordParts made = parts(list);
    std::vector<std::size_t> objects = {list.dictionary(made.pairs)};
    objects.insert(objects.end(), made.archived.begin(), made.archived.end());
    return test::keyedArchive(list, objects, list.uid(1));
}

struct KeyCase {
    const char* name;
    std::function<RecordParts(List&)> parts;
    std::optional<std::string> key;
};

class FileRecordKey : public testing::TestWithParam<KeyCase> {};

TEST_P(FileRecordKey, IsTakenInEachOfItsForms) {
    const FileRecord record = recordIn(archiveWith(GetParam().parts));
    EXPECT_EQ(record.size, 5);
    EXPECT_EQ(record.encryptionKey, GetParam().key ? std::optional(bytesOf(*GetParam().key)) : std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    Table, FileRecordKey,
    testing::Values(
        KeyCase{"absent",
                [](List& list) {
                    return RecordParts{{{"Size", list.integer(5)}}, {}};
                },
                std::nullopt},
        KeyCase{"dataInline",
                [](List& list) {
                    return RecordParts{{{"Size", list.integer(5)}, {"EncryptionKey", list.data("key")}}, {}};
                },
                "key"},
        KeyCase{"dataInTheArchive",
                [](List& list) {
                    return RecordParts{{{"Size", list.integer(5)}, {"EncryptionKey", list.uid(2)}},
                                       {list.data("key")}};
                },
                "key"},
        KeyCase{"emptyData",
                [](List& list) {
                    return RecordParts{{{"Size", list.integer(5)}, {"EncryptionKey", list.data("")}}, {}};
                },
                ""},
        KeyCase{"dictionaryInline",
                [](List& list) {
                    const auto key = list.dictionary({{"NS.data", list.data("key")}});
                    return RecordParts{{{"Size", list.integer(5)}, {"EncryptionKey", key}}, {}};
                },
                "key"},
        KeyCase{"dictionaryWithItsDataInTheArchive",
                [](List& list) {
                    const auto key = list.dictionary({{"NS.data", list.uid(3)}});
                    return RecordParts{{{"Size", list.integer(5)}, {"EncryptionKey", list.uid(2)}},
                                       {key, list.data("key")}};
                },
                "key"},
        KeyCase{"dictionaryWithoutItsData",
                [](List& list) {
                    const auto key = list.dictionary({{"NS.bytes", list.data("key")}});
                    return RecordParts{{{"Size", list.integer(5)}, {"EncryptionKey", key}}, {}};
                },
                std::nullopt},
        KeyCase{
            "emptyDictionary",
            [](List& list) {
                return RecordParts{{{"Size", list.integer(5)}, {"EncryptionKey", list.dictionary({})}}, {}};
            },
            std::nullopt},
        KeyCase{"dictionaryWhoseDataIsText",
                [](List& list) {
                    const auto key = list.dictionary({{"NS.data", list.ascii("key")}});
                    return RecordParts{{{"Size", list.integer(5)}, {"EncryptionKey", key}}, {}};
                },
                std::nullopt},
        KeyCase{"dictionaryInADictionary",
                [](List& list) {
                    const auto inner = list.dictionary({{"NS.data", list.data("key")}});
                    const auto key = list.dictionary({{"NS.data", inner}});
                    return RecordParts{{{"Size", list.integer(5)}, {"EncryptionKey", key}}, {}};
                },
                std::nullopt},
        KeyCase{"text",
                [](List& list) {
                    return RecordParts{{{"Size", list.integer(5)}, {"EncryptionKey", list.ascii("key")}}, {}};
                },
                std::nullopt},
        KeyCase{"outsideOfTheArchive",
                [](List& list) {
                    return RecordParts{{{"Size", list.integer(5)}, {"EncryptionKey", list.uid(200)}}, {}};
                },
                std::nullopt},
        KeyCase{"nullObjectOfTheArchive",
                [](List& list) {
                    return RecordParts{{{"Size", list.integer(5)}, {"EncryptionKey", list.uid(0)}}, {}};
                },
                std::nullopt}),
    [](const auto& test) { return std::string(test.param.name); });

struct SizeCase {
    const char* name;
    std::string object; ///< The raw object of "Size"; empty for a record without it.
    std::optional<std::int64_t> size;
};

class FileRecordSize : public testing::TestWithParam<SizeCase> {};

TEST_P(FileRecordSize, IsAnIntegerOrTheRecordIsUnreadable) {
    const std::string blob = archiveWith([](List& list) {
        List::Entries pairs = {{"EncryptionKey", list.data("key")}};
        if (!GetParam().object.empty()) pairs.emplace_back("Size", list.object(GetParam().object));
        return RecordParts{pairs, {list.integer(9)}};
    });
    if (GetParam().size) {
        EXPECT_EQ(recordIn(blob).size, *GetParam().size);
    } else {
        EXPECT_EQ(refusal(blob), "manifestUnreadable");
    }
}

INSTANTIATE_TEST_SUITE_P(Table, FileRecordSize,
                         testing::Values(SizeCase{"absent", "", std::nullopt}, SizeCase{"zero", "\x10\0"s, 0},
                                         SizeCase{"largest", "\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF",
                                                  std::numeric_limits<std::int64_t>::max()},
                                         SizeCase{"belowZero", "\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF", -1},
                                         SizeCase{"inTheArchive", "\x80\2", 9},
                                         SizeCase{"outsideOfTheArchive", "\x80\x7F", std::nullopt},
                                         SizeCase{"real", "\x23\x40\0\0\0\0\0\0\0"s, std::nullopt},
                                         SizeCase{"text", "\x51\x35", std::nullopt},
                                         SizeCase{"truth", "\x09", std::nullopt}),
                         [](const auto& test) { return std::string(test.param.name); });

struct ArchiveCase {
    const char* name;
    std::function<std::string(List&, std::size_t record)> blob;
    std::string refusal;
};

class FileRecordArchive : public testing::TestWithParam<ArchiveCase> {};

TEST_P(FileRecordArchive, IsReadOnlyWithAllItsParts) {
    List list;
    const std::size_t record = list.dictionary({{"Size", list.integer(5)}});
    const std::string blob = GetParam().blob(list, record);
    EXPECT_EQ(refusal(blob), GetParam().refusal);
}

INSTANTIATE_TEST_SUITE_P(
    Table, FileRecordArchive,
    testing::Values(
        ArchiveCase{"wholeAndNothingMore",
                    [](List& list, std::size_t record) {
                        const auto top = list.dictionary({{"root", record}});
                        return list.bytes(list.dictionary({{"$top", top}, {"$objects", list.array({})}}));
                    },
                    ""},
        ArchiveCase{"topInTheArchive",
                    [](List& list, std::size_t record) {
                        const auto top = list.dictionary({{"root", list.uid(1)}});
                        return list.bytes(list.dictionary(
                            {{"$top", list.uid(0)}, {"$objects", list.array({top, record})}}));
                    },
                    ""},
        ArchiveCase{"empty", [](List&, std::size_t) { return ""s; }, "notBinaryPlist"},
        ArchiveCase{"cutShort",
                    [](List& list, std::size_t record) {
                        const std::string blob = list.bytes(record);
                        return blob.substr(0, blob.size() - 1);
                    },
                    "damaged"},
        ArchiveCase{"withASet",
                    [](List& list, std::size_t record) {
                        list.object("\xC0");
                        const auto top = list.dictionary({{"root", record}});
                        return list.bytes(list.dictionary({{"$top", top}, {"$objects", list.array({})}}));
                    },
                    "damaged"},
        ArchiveCase{"anArrayAtTheTop",
                    [](List& list, std::size_t record) { return list.bytes(list.array({record})); },
                    "manifestUnreadable"},
        ArchiveCase{"anEmptyDictionaryAtTheTop",
                    [](List& list, std::size_t) { return list.bytes(list.dictionary({})); },
                    "manifestUnreadable"},
        ArchiveCase{"withoutObjects",
                    [](List& list, std::size_t record) {
                        const auto top = list.dictionary({{"root", record}});
                        return list.bytes(list.dictionary({{"$top", top}}));
                    },
                    "manifestUnreadable"},
        ArchiveCase{"objectsOutsideOfTheFile",
                    [](List& list, std::size_t record) {
                        const auto top = list.dictionary({{"root", record}});
                        return list.bytes(list.dictionary({{"$top", top}, {"$objects", 1000}}));
                    },
                    "manifestUnreadable"},
        ArchiveCase{"objectsThatAreNoArray",
                    [](List& list, std::size_t record) {
                        const auto top = list.dictionary({{"root", record}});
                        return list.bytes(list.dictionary({{"$top", top}, {"$objects", record}}));
                    },
                    "manifestUnreadable"},
        ArchiveCase{"objectsBehindASecondStep",
                    [](List& list, std::size_t record) {
                        const auto top = list.dictionary({{"root", record}});
                        const auto objects = list.array({});
                        return list.bytes(list.dictionary(
                            {{"$top", top}, {"$objects", list.uid(static_cast<std::uint8_t>(objects))}}));
                    },
                    "manifestUnreadable"},
        ArchiveCase{"withoutTop",
                    [](List& list, std::size_t) {
                        return list.bytes(list.dictionary({{"$objects", list.array({})}}));
                    },
                    "manifestUnreadable"},
        ArchiveCase{"topThatIsNoDictionary",
                    [](List& list, std::size_t record) {
                        return list.bytes(
                            list.dictionary({{"$top", list.array({record})}, {"$objects", list.array({})}}));
                    },
                    "manifestUnreadable"},
        ArchiveCase{"emptyTop",
                    [](List& list, std::size_t) {
                        return list.bytes(
                            list.dictionary({{"$top", list.dictionary({})}, {"$objects", list.array({})}}));
                    },
                    "manifestUnreadable"},
        ArchiveCase{"rootThatIsNoDictionary",
                    [](List& list, std::size_t) {
                        const auto top = list.dictionary({{"root", list.integer(5)}});
                        return list.bytes(list.dictionary({{"$top", top}, {"$objects", list.array({})}}));
                    },
                    "manifestUnreadable"},
        ArchiveCase{
            "rootOutsideOfTheArchive",
            [](List& list, std::size_t record) {
                const auto top = list.dictionary({{"root", list.uid(1)}});
                return list.bytes(list.dictionary({{"$top", top}, {"$objects", list.array({record})}}));
            },
            "manifestUnreadable"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(FileRecord, IsRefusedWhereverItIsCut) {
    const std::string blob = recordOfDevice();
    for (std::size_t length = 0; length < blob.size(); ++length)
        EXPECT_NE(refusal(blob.substr(0, length)), "") << length;
}

TEST(FileRecord, OfMegabytesIsRefusedUnread) {
    const Data blob((std::size_t{4} << 20U) + 1, 0);
    try {
        fileRecord(blob);
        FAIL();
    } catch (const BinaryPlistError& error) { // Read, it would be none at all.
        EXPECT_EQ(error.reason, BinaryPlistError::Reason::truncated);
    }
}

} // namespace
} // namespace quillbook
