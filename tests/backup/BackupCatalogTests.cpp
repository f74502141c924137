#include "backup/BackupCatalog.h"
#include "backup/BackupPropertyList.h"
#include "platform/FileError.h"
#include "propertylist/PropertyListError.h"
#include "tests/support/BinaryPropertyListBuilder.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/PropertyListFixture.h"
#include "tests/support/TemporaryFolder.h"

#include <bit>
#include <fstream>
#include <limits>

#include <gmock/gmock.h>
#include <sys/stat.h>

namespace quillbook {
namespace {

using test::PropertyListBuilder;
using test::PropertyListForm;
using test::TemporaryFolder;
using testing::ElementsAre;
using testing::IsEmpty;
using List = test::BinaryPropertyListBuilder;

PropertyListBuilder plainManifest() {
    PropertyListBuilder list;
    list.boolean("IsEncrypted", false);
    return list;
}

class Backups : public testing::Test {
protected:
    /// A folder with a database and the given manifest; `information` may be absent.
    std::filesystem::path backup(const std::string& name, const std::string& manifest,
                                 const std::optional<std::string>& information = {}) {
        root.write(name + "/Manifest.db", "");
        root.write(name + "/Manifest.plist", manifest);
        if (information) root.write(name + "/Info.plist", *information);
        return root / name;
    }
    std::filesystem::path plainBackup(const std::string& name, const std::string& information) {
        return backup(name, plainManifest().bytes(form), information);
    }
    std::filesystem::path datedBackup(const std::string& name, std::int32_t seconds) {
        return plainBackup(name, PropertyListBuilder().date("Last Backup Date", seconds).bytes(form));
    }
    std::vector<DeviceBackup> backups() const { return BackupCatalog(root.path()).backups(); }
    std::vector<std::string> ids() const {
        std::vector<std::string> all;
        for (const DeviceBackup& each : backups())
            all.push_back(each.id);
        return all;
    }

    TemporaryFolder root;
    PropertyListForm form = PropertyListForm::binary;
};

class BackupsInBothForms : public Backups, public testing::WithParamInterface<PropertyListForm> {
protected:
    BackupsInBothForms() { form = GetParam(); }
};

INSTANTIATE_TEST_SUITE_P(Form, BackupsInBothForms,
                         testing::Values(PropertyListForm::xml, PropertyListForm::binary),
                         [](const auto& test) {
                             return test.param == PropertyListForm::xml ? "xml" : "binary";
                         });

TEST_P(BackupsInBothForms, HaveEveryField) {
    const auto folder = backup("00008030-A", PropertyListBuilder().boolean("IsEncrypted", true).bytes(form),
                               PropertyListBuilder()
                                   .string("Device Name", "Ada’s phone & more")
                                   .string("Display Name", "Another")
                                   .string("Product Type", "iPhone12,1")
                                   .string("Product Version", "17.4.1")
                                   .date("Last Backup Date", 789'015'845)
                                   .bytes(form));
    const DeviceBackup expected{
        "00008030-A", "Ada’s phone & more", "iPhone12,1", "17.4.1", Date{789'015'845}, true, folder};
    EXPECT_THAT(backups(), ElementsAre(expected));
}

TEST_P(BackupsInBothForms, NeedNoInfoFile) {
    const auto folder = backup("A", plainManifest().date("Date", 1000).bytes(form));
    const DeviceBackup expected{"A", "A", std::nullopt, std::nullopt, Date{1000}, false, folder};
    EXPECT_THAT(backups(), ElementsAre(expected));
}

TEST_P(BackupsInBothForms, TakeTheDisplayNameForAMissingDeviceName) {
    plainBackup("A", PropertyListBuilder().string("Display Name", "Grace’s tablet").bytes(form));
    EXPECT_EQ(backups().at(0).deviceName, "Grace’s tablet");
}

TEST_P(BackupsInBothForms, TakeTheDisplayNameForADeviceNameThatIsNoString) {
    plainBackup("A",
                PropertyListBuilder().integer("Device Name", 1).string("Display Name", "Grace").bytes(form));
    EXPECT_EQ(backups().at(0).deviceName, "Grace");
}

TEST_P(BackupsInBothForms, TakeTheFolderNameForNamesThatAreNoStrings) {
    plainBackup("A",
                PropertyListBuilder().integer("Device Name", 1).data("Display Name", "Grace").bytes(form));
    EXPECT_EQ(backups().at(0).deviceName, "A");
}

TEST_P(BackupsInBothForms, KeepAnEmptyDeviceName) {
    plainBackup("A",
                PropertyListBuilder().string("Device Name", "").string("Display Name", "Grace").bytes(form));
    EXPECT_EQ(backups().at(0).deviceName, "");
}

TEST_P(BackupsInBothForms, HaveNoModelAndVersionThatAreNoStrings) {
    plainBackup("A", PropertyListBuilder()
                         .string("Device Name", "Ada")
                         .integer("Product Type", 12)
                         .boolean("Product Version", true)
                         .bytes(form));
    EXPECT_EQ(backups().at(0).deviceName, "Ada");
    EXPECT_EQ(backups().at(0).deviceModel, std::nullopt);
    EXPECT_EQ(backups().at(0).productVersion, std::nullopt);
}

TEST_P(BackupsInBothForms, TakeTheDateOfTheInfoFileFirst) {
    backup("A", plainManifest().date("Date", 1000).bytes(form),
           PropertyListBuilder().date("Last Backup Date", 2000).bytes(form));
    EXPECT_EQ(backups().at(0).lastBackupDate, Date{2000});
}

TEST_P(BackupsInBothForms, TakeTheManifestsDateForALastBackupDateThatIsNone) {
    backup("A", plainManifest().date("Date", 1000).bytes(form),
           PropertyListBuilder().string("Last Backup Date", "2026-11-15").bytes(form));
    EXPECT_EQ(backups().at(0).lastBackupDate, Date{1000});
}

TEST_P(BackupsInBothForms, HaveNoDateWhereNoneIsADate) {
    backup("A", plainManifest().integer("Date", 1000).bytes(form), PropertyListBuilder().bytes(form));
    EXPECT_EQ(backups().at(0).lastBackupDate, std::nullopt);
}

struct EncryptionCase {
    const char* name;
    PropertyListBuilder (*manifest)();
    bool isEncrypted;
};

class Encryption : public Backups, public testing::WithParamInterface<EncryptionCase> {};

TEST_P(Encryption, IsWhatTheManifestSays) {
    for (const auto each : {PropertyListForm::xml, PropertyListForm::binary}) {
        backup("A", GetParam().manifest().bytes(each));
        EXPECT_EQ(backups().at(0).isEncrypted, GetParam().isEncrypted);
    }
}

using Manifest = PropertyListBuilder;
INSTANTIATE_TEST_SUITE_P(
    Table, Encryption,
    testing::Values(
        EncryptionCase{"says", [] { return std::move(Manifest().boolean("IsEncrypted", true)); }, true},
        EncryptionCase{"denies", [] { return std::move(Manifest().boolean("IsEncrypted", false)); }, false},
        EncryptionCase{
            "deniesBesideAKey",
            [] { return std::move(Manifest().boolean("IsEncrypted", false).data("ManifestKey", "k")); },
            false},
        EncryptionCase{"keyAlone", [] { return std::move(Manifest().data("ManifestKey", "k")); }, true},
        EncryptionCase{"keyOfAnotherKind", [] { return std::move(Manifest().integer("ManifestKey", 0)); },
                       true},
        EncryptionCase{"neither", [] { return Manifest(); }, false},
        EncryptionCase{"numberIsNoTruthValue", [] { return std::move(Manifest().integer("IsEncrypted", 1)); },
                       false},
        EncryptionCase{
            "numberBesideAKey",
            [] { return std::move(Manifest().integer("IsEncrypted", 0).string("ManifestKey", "")); }, true}),
    [](const auto& test) { return std::string(test.param.name); });

// ---- Which folders are listed

TEST_F(Backups, InAFormatWithoutADatabaseAreNotListed) {
    root.write("A/Manifest.plist", plainManifest().bytes(form));
    EXPECT_THAT(ids(), IsEmpty());
}

TEST_F(Backups, WhoseDatabaseIsAFolderAreNotListed) {
    root.write("A/Manifest.plist", plainManifest().bytes(form));
    std::filesystem::create_directory(root / "A/Manifest.db");
    EXPECT_THAT(ids(), IsEmpty());
}

TEST_F(Backups, WithoutAManifestAreNotListed) {
    root.write("A/Manifest.db", "");
    EXPECT_THAT(ids(), IsEmpty());
}

TEST_F(Backups, AreNoPlainFiles) {
    root.write("A", "Tea at four");
    backup("B", plainManifest().bytes(form));
    EXPECT_THAT(ids(), ElementsAre("B"));
}

TEST_F(Backups, InHiddenFoldersAreNotListed) {
    backup(".A", plainManifest().bytes(form));
    EXPECT_THAT(ids(), IsEmpty());
}

TEST_F(Backups, BehindALinkAreListedWithTheLinksName) {
    const TemporaryFolder elsewhere;
    elsewhere.write("real/Manifest.db", "");
    elsewhere.write("real/Manifest.plist", plainManifest().bytes(form));
    std::filesystem::create_directory_symlink(elsewhere / "real", root / "linked");
    EXPECT_THAT(ids(), ElementsAre("linked"));
    EXPECT_EQ(backups().at(0).url, root / "linked");
}

TEST_F(Backups, BehindALinkToNothingAreIgnored) {
    std::filesystem::create_directory_symlink(root / "missing", root / "linked");
    std::filesystem::create_directory_symlink(root / "loop", root / "loop");
    backup("B", plainManifest().bytes(form));
    EXPECT_THAT(ids(), ElementsAre("B"));
}

TEST_F(Backups, OfALinkedRootAreListed) {
    const TemporaryFolder home;
    std::filesystem::create_directory_symlink(root.path(), home / "Backup");
    backup("A", plainManifest().bytes(form));
    EXPECT_EQ(BackupCatalog(home / "Backup").backups().at(0).url, home / "Backup" / "A");
}

TEST_F(Backups, OfAMissingRootAreNone) {
    EXPECT_THAT(BackupCatalog(root / "missing").backups(), IsEmpty());
}

TEST_F(Backups, OfARootThatIsNoFolderAreNone) {
    EXPECT_THAT(BackupCatalog(root.write("file", "a")).backups(), IsEmpty());
}

TEST_F(Backups, OfARootThatMayNotBeReadAreNone) {
    backup("A", plainManifest().bytes(form));
    const auto countUnder = [this](unsigned mode) {
        std::filesystem::permissions(root.path(), std::filesystem::perms(mode));
        return test::runInChild([this] {
            return test::becomeOrdinaryUser() ? std::to_string(backups().size()) : "cannot change the user";
        });
    };
    EXPECT_EQ(countUnder(0755), "1");
    EXPECT_EQ(countUnder(0000), "0");
    std::filesystem::permissions(root.path(), std::filesystem::perms::owner_all);
}

TEST_F(Backups, OfAHomeLieInItsLibrary) {
    const TemporaryFolder home;
    const std::string folder = "Library/Application Support/MobileSync/Backup/A";
    home.write(folder + "/Manifest.db", "");
    home.write(folder + "/Manifest.plist", plainManifest().bytes(form));
    EXPECT_EQ(BackupCatalog::below(home.path()).backups().at(0).url, home / folder);
}

// ---- Their order

TEST_F(Backups, StandNewestFirst) {
    datedBackup("old", 1000);
    datedBackup("new", 3000);
    datedBackup("between", 2000);
    EXPECT_THAT(ids(), ElementsAre("new", "between", "old"));
}

TEST_F(Backups, WithoutADateStandLast) {
    backup("A", plainManifest().bytes(form));
    datedBackup("B", -2'000'000'000);
    datedBackup("C", 1000);
    EXPECT_THAT(ids(), ElementsAre("C", "B", "A"));
}

TEST_F(Backups, OfOneMomentStandInTheOrderOfTheirNames) {
    for (const char* name : {"D", "a", "C", "B", "b"})
        datedBackup(name, 1000);
    EXPECT_THAT(ids(), ElementsAre("B", "C", "D", "a", "b"));
}

TEST_F(Backups, WithADateThatIsNoFiniteNumberCountAsUndated) {
    datedBackup("C", 1000);
    for (const double seconds :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        List list;
        const auto date = list.object("\x33" + List::bigEndian(std::bit_cast<std::uint64_t>(seconds), 8));
        const std::string bytes = list.bytes(list.dictionary({{"Date", date}, {"Last Backup Date", date}}));
        backup(seconds > 0 ? "A" : "B", bytes, bytes);
    }
    datedBackup("D", 2000);
    EXPECT_THAT(ids(), ElementsAre("D", "C", "A", "B"));
    EXPECT_EQ(backups().at(2).lastBackupDate, std::nullopt);
}

TEST_F(Backups, TakeTheManifestsDateForOneThatIsNoFiniteNumber) {
    List list;
    const auto bits = std::bit_cast<std::uint64_t>(std::numeric_limits<double>::quiet_NaN());
    const auto date = list.object("\x33" + List::bigEndian(bits, 8));
    backup("A", plainManifest().date("Date", 1000).bytes(form),
           list.bytes(list.dictionary({{"Last Backup Date", date}})));
    EXPECT_EQ(backups().at(0).lastBackupDate, Date{1000});
}

// ---- Large lists

TEST_P(BackupsInBothForms, OfADeviceWithThousandsOfAppsAreListed) {
    const std::string apps = plainManifest().apps("Applications", 5000).bytes(form);
    backup("A", apps,
           PropertyListBuilder().apps("Applications", 5000).string("Device Name", "Ada").bytes(form));
    EXPECT_EQ(backups().at(0).deviceName, "Ada");
}

TEST_P(BackupsInBothForms, WithPicturesOfAllAppsInTheirInfoFileKeepTheirName) {
    PropertyListBuilder list;
    for (int number = 0; number < 40; ++number)
        list.data(("Icon & " + std::to_string(number)).c_str(), std::string(1'000'000, 'i'));
    plainBackup("A", list.string("Device Name", "Ada & Grace").bytes(form));
    EXPECT_EQ(backups().at(0).deviceName, "Ada & Grace");
}

// ---- Hostile files

struct HostileCase {
    const char* name;
    std::string (*bytes)();
};

std::string nestedArrays(std::size_t levels, std::size_t copies) {
    List list;
    std::size_t top = list.ascii("a");
    for (std::size_t level = 0; level < levels; ++level)
        top = list.array(std::vector<std::size_t>(copies, top));
    return list.bytes(list.dictionary({{"Device Name", top}}));
}

std::string repeated(std::string_view text, std::size_t count) {
    std::string all;
    for (std::size_t number = 0; number < count; ++number)
        all += text;
    return all;
}

class HostileList : public Backups, public testing::WithParamInterface<HostileCase> {};

TEST_P(HostileList, AsTheManifestDropsTheBackup) {
    backup("A", GetParam().bytes(), PropertyListBuilder().string("Device Name", "Ada").bytes(form));
    backup("B", plainManifest().bytes(form));
    EXPECT_THAT(ids(), ElementsAre("B"));
}

TEST_P(HostileList, AsTheInfoFileCostsTheNames) {
    const auto folder = backup("A", plainManifest().date("Date", 1000).bytes(form), GetParam().bytes());
    const DeviceBackup expected{"A", "A", std::nullopt, std::nullopt, Date{1000}, false, folder};
    EXPECT_THAT(backups(), ElementsAre(expected));
}

INSTANTIATE_TEST_SUITE_P(
    Table, HostileList,
    testing::Values(HostileCase{"nothing", [] { return std::string(); }},
                    HostileCase{"text", [] { return std::string("Tea at four"); }},
                    HostileCase{"array", [] { return std::string("<plist><array><true/></array></plist>"); }},
                    HostileCase{"string", [] { return std::string("<plist><string>a</string></plist>"); }},
                    HostileCase{"keysThatAreNumbers",
                                [] {
                                    List list;
                                    list.integer(1);
                                    return list.bytes(list.object("\xD1" + std::string(8, '\0')));
                                }},
                    HostileCase{"deepBinary", [] { return nestedArrays(200000, 1); }},
                    HostileCase{"doubling", [] { return nestedArrays(60, 2); }},
                    HostileCase{"deepXML", [] { return "<plist>" + repeated("<array>", 1000000); }},
                    HostileCase{"keysThatCollide",
                                [] {
                                    return "<plist><dict>" + repeated("<key>abbA</key><true/>", 100000) +
                                           "</dict></plist>";
                                }},
                    HostileCase{"cutBinary",
                                [] {
                                    const auto whole = plainManifest().bytes(PropertyListForm::binary);
                                    return whole.substr(0, whole.size() - 1);
                                }},
                    HostileCase{"cutXML",
                                [] {
                                    const auto whole = plainManifest().bytes(PropertyListForm::xml);
                                    return whole.substr(0, whole.size() / 2);
                                }}),
    [](const auto& test) { return std::string(test.param.name); });

using Placing = void (*)(const std::filesystem::path&);
struct OddFileCase {
    const char* name;
    Placing place;
};

/// What may stand in the place of a file without being one.
class OddFile : public Backups, public testing::WithParamInterface<OddFileCase> {};

TEST_P(OddFile, AsTheManifestDropsTheBackup) {
    root.write("A/Manifest.db", "");
    GetParam().place(root / "A/Manifest.plist");
    EXPECT_THAT(ids(), IsEmpty());
}

TEST_P(OddFile, AsTheInfoFileCostsTheNames) {
    backup("A", plainManifest().bytes(form));
    GetParam().place(root / "A/Info.plist");
    EXPECT_EQ(backups().at(0).deviceName, "A");
}

TEST_P(OddFile, AsTheDatabaseDropsTheBackup) {
    root.write("A/Manifest.plist", plainManifest().bytes(form));
    GetParam().place(root / "A/Manifest.db");
    EXPECT_THAT(ids(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Table, OddFile,
    testing::Values(
        OddFileCase{"pipe",
                    [](const std::filesystem::path& at) { ASSERT_EQ(::mkfifo(at.c_str(), 0600), 0); }},
        OddFileCase{
            "linkToZeros",
            [](const std::filesystem::path& at) { std::filesystem::create_symlink("/dev/zero", at); }},
        OddFileCase{"linkToNothing",
                    [](const std::filesystem::path& at) { std::filesystem::create_symlink("gone", at); }},
        OddFileCase{"linkToASoundListElsewhere",
                    [](const std::filesystem::path& at) {
                        const auto elsewhere = at.parent_path().parent_path() / "elsewhere";
                        std::ofstream(elsewhere) << "<plist><dict><key>Device Name</key>"
                                                    "<string>Robin’s iPad</string></dict></plist>";
                        std::filesystem::create_symlink(elsewhere, at);
                    }},
        OddFileCase{"folder",
                    [](const std::filesystem::path& at) { std::filesystem::create_directory(at); }}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(Backups, WithSparseListsOfTerabytesCostNothing) {
    backup("A", plainManifest().bytes(form), "");
    backup("B", "");
    std::filesystem::resize_file(root / "A/Info.plist", 1ULL << 40U);
    std::filesystem::resize_file(root / "B/Manifest.plist", 1ULL << 40U);
    EXPECT_THAT(ids(), ElementsAre("A"));
}

TEST_F(Backups, GiveValidTextAndTheRealPathOfAnOddFolderName) {
    const auto folder = backup("A\xFF", plainManifest().bytes(form));
    EXPECT_EQ(backups().at(0).id, "A\uFFFD");
    EXPECT_EQ(backups().at(0).deviceName, "A\uFFFD");
    EXPECT_EQ(backups().at(0).url.native(), folder.native());
    EXPECT_TRUE(std::filesystem::exists(backups().at(0).url));
}

TEST_F(Backups, GiveValidTextForNamesThatAreNone) {
    plainBackup("A", "<plist><dict><key>Device Name</key><string>\xFF</string><key>Product Type</key>"
                     "<string>i\xC3</string></dict></plist>");
    EXPECT_EQ(backups().at(0).deviceName, "\uFFFD");
    EXPECT_EQ(backups().at(0).deviceModel, "i\uFFFD");
}

// ---- Reading one list

TEST(BackupPropertyList, TellsALongFileByItsSize) {
    const TemporaryFolder folder;
    const auto file = folder.write("Manifest.plist", "");
    std::filesystem::resize_file(file, longestBackupPropertyList + 1);
    EXPECT_THROW(readPropertyListFile(file), FileError);
}

TEST(BackupPropertyList, TellsAMissingFileFromAnUnreadableList) {
    const TemporaryFolder folder;
    EXPECT_THROW(readPropertyListFile(folder / "Manifest.plist"), FileError);
    EXPECT_THROW(readPropertyListFile(folder.write("Manifest.plist", "Tea at four")), PropertyListError);
}

TEST(BackupPropertyList, TellsAnUnreadableListFromOneThatIsNoDictionary) {
    const TemporaryFolder folder;
    EXPECT_FALSE(
        readPropertyListFile(folder.write("Manifest.plist", "<plist><array/></plist>")).isDictionary());
}

TEST(BackupPropertyList, GivesTheKeysOfAnEncryptedBackup) {
    const TemporaryFolder folder;
    const auto bytes = PropertyListBuilder()
                           .data("BackupKeyBag", "VERS")
                           .data("ManifestKey", "k")
                           .bytes(PropertyListForm::binary);
    const PropertyList list = readPropertyListFile(folder.write("Manifest.plist", bytes));
    EXPECT_EQ(list.data("BackupKeyBag"), (Data{'V', 'E', 'R', 'S'}));
    EXPECT_EQ(list.data("ManifestKey"), Data{'k'});
}

} // namespace
} // namespace quillbook
