/* The share registry: its format, looking up and listing shares. */
#include <sys/stat.h>

#include <cstdlib>

#include "filesharing/shares.h"
#include "tests/device_test.h"
#include "tests/share_records.h"

namespace {

const char kFixed[] = "/etc/share.info";
const char kRemovable[] = "/etc/win_share.info";

class ShareRegistryTest : public DeviceTest {};

TEST_F(ShareRegistryTest, ValuesAreSplitByPosition) {
  struct Case {
    const char* value;
    unsigned code;
    const char* record;
  };
  const Case cases[] = {
      {"0:1:Songs:/Music/:administrators:7,staff:5\n", 0,
       "|0|1|Songs|/Music/| administrators:7 staff:5"},
      {"1:5::/x/\r\n", 0, "|1|5||/x/|"},
      {"0:1:c:", 0, "|0|1|c||"},
      {"0:1:c::", 0, "|0|1|c||"},
      {":::", 0, "|0|0|||"},
      {"0:1:c:/p/:\r\n", 0, "|0|1|c|/p/|"},
      {"0:1:c:/p/:staff", 0, "|0|1|c|/p/|"},     /* no rights: no list at all */
      {"0:1:c:/p/:a:7,b,c:5", 0, "|0|1|c|/p/|"}, /* nor what comes before */
      {"0:1:c:/p/:a:7,", 0, "|0|1|c|/p/|"},
      {"0:1:c:/p/::7,a:x,b:5:9\n", 0, "|0|1|c|/p/| :7 a:0 b:5"},
      {"", 20, ""},
      {"0", 24, ""},
      {"0:1", 24, ""},
      {"0:1:c", 24, ""},
      {"0:1:c:\n", 24, ""},
      {"0:1:\r\n:/p/", 24, ""},
      {"0:\n1:c:/p/", 24, ""},
  };
  for (const Case& c : cases) {
    ShareInfo share{};
    EXPECT_EQ(ShareStringPar(c.value, &share), c.code) << c.value;
    EXPECT_EQ(text_of(share), c.code == 0 ? c.record : "|0|0|||") << c.value;
    FreeShGrpList(share.groups);
  }
  EXPECT_EQ(ShareStringPar("0:1:c:/p/", nullptr), 20u);
}

TEST_F(ShareRegistryTest, TextsTooLongForTheRecordAreCut) {
  const std::string comment(60, 'c'), path(300, 'p'), group(40, 'g');
  ShareInfo share = share_record("kept");
  ASSERT_EQ(ShareStringPar(("0:1:" + comment + ":" + path + ":" + group + ":5").c_str(), &share),
            0u);
  EXPECT_EQ(text_of(share), "kept|0|1|" + comment.substr(0, 48) + "|" + path.substr(0, 257) + "| " +
                                group.substr(0, 23) + ":5");
  FreeShGrpList(share.groups);
}

TEST_F(ShareRegistryTest, ListsHoldTheSharesOfBothFilesInOrder) {
  write(kFixed,
        "Music=0:1:Songs:/Music/:staff:5\n# a remark\n\n"
        "a name that is too long=1:2:c:/long/\nLast=0:1:x:/l=/");
  write(kRemovable, "FLASH_1_2=0:3:For everyone:/FLASH_1_2/:everyone:7\nFLASH=0:3::/f/\n");
  const Strings all = {"Music|0|1|Songs|/Music/| staff:5", "a name that is too l|1|2|c|/long/|",
                       "Last|0|1|x|/l=/|", "FLASH_1_2|0|3|For everyone|/FLASH_1_2/| everyone:7",
                       "FLASH|0|3||/f/|"};
  EXPECT_EQ(listed(GetAllShare), all);
  EXPECT_EQ(listed(GetExtShare), Strings({all[0], all[1], all[2], all[4]}));

  ShareNameItem* names = nullptr;
  ASSERT_EQ(GetShareNameList(&names), 0u);
  Strings found;
  for (ShareNameItem* name = names; name != nullptr; name = name->next) found.push_back(name->name);
  FreeShareNameList(names);
  EXPECT_EQ(found, Strings({"Music", "Last", "FLASH_1_2", "FLASH"}));
  EXPECT_EQ(GetNumOfShares(), 4u);
}

/* The flash disk's name counts anywhere in the line, in a comment too. */
TEST_F(ShareRegistryTest, ExternalListLooksAtTheWholeLine) {
  write(kFixed, "Copies=0:1:of FLASH_3:/c/\nFLASHY=0:1:of FLASH_5:/d/\n");
  EXPECT_EQ(listed(GetExtShare), Strings({"FLASHY|0|1|of FLASH_5|/d/|"}));
}

TEST_F(ShareRegistryTest, MalformedLineDropsTheFirstFileOrFailsInTheSecond) {
  write(kFixed, "Music=0:1:Songs:/Music/:staff:5\nBad=0:1:c\nAfter=0:1::/a/\n");
  write(kRemovable, "HDD_1_1=0:4::/HDD_1_1/\n");
  EXPECT_EQ(listed(GetAllShare), Strings({"HDD_1_1|0|4||/HDD_1_1/|"}));
  write(kRemovable, "HDD_1_1=0:4::/HDD_1_1/:a:7\nHDD_1_2=\n");
  EXPECT_EQ(listed(GetAllShare), Strings({"24", ""}));
  write(kRemovable, "HDD_1_1=0:4::/HDD_1_1/:a:7\nHDD_1_2="); /* no value at all */
  EXPECT_EQ(listed(GetAllShare), Strings({"20", ""}));
}

TEST_F(ShareRegistryTest, EveryReaderMakesTheRegistryOfRemovableShares) {
  const std::function<void()> readers[] = {
      [] { EXPECT_EQ(listed(GetAllShare).size(), 3u); },
      [] { EXPECT_EQ(GetNumOfShares(), 3u); },
      [] { EXPECT_EQ(ShareExist("nobody's"), 0); },
      [] {
        ShareInfo share = share_record("nobody's");
        EXPECT_EQ(GetShareInfo(&share), 24u);
      },
  };
  const mode_t mask = umask(077);
  for (const auto& read_all : readers) {
    ASSERT_EQ(remove(kRemovable), 0);
    read_all();
    EXPECT_EQ(read(kRemovable), "");
    EXPECT_EQ(mode(kRemovable), 0644u);
  }
  umask(mask);
}

TEST_F(ShareRegistryTest, WithoutEitherFileThereIsNoList) {
  write(kRemovable, "");
  ASSERT_EQ(remove(kFixed), 0);
  EXPECT_EQ(listed(GetAllShare), Strings());
  EXPECT_EQ(GetNumOfShares(), 0u);
  ASSERT_EQ(system("rm /etc/win_share.info; ln -s /nowhere/else /etc/win_share.info"), 0);
  ShareInfo share = share_record("Music");
  ShareGroupInfo groups{"Music", nullptr};
  EXPECT_EQ(GetShareInfo(&share), 21u);
  EXPECT_EQ(GetShareGroup(&groups), 49u);
  EXPECT_EQ(listed(GetAllShare), Strings({"21", ""}));
  EXPECT_EQ(GetNumOfShares(), 4294967293u);
  EXPECT_EQ(dir_shared("/Music", 1), -1);
  EXPECT_EQ(GetPublicSh(1), nullptr);
}

TEST_F(ShareRegistryTest, RecordIsFoundInAnyLetterCaseInTheFirstFileThatHasItWell) {
  write(kFixed, "Music=0:1:Songs:/Music/:staff:5\r\nHDD_1=0:1:c\nVideo=0:1:v:/v/\r\n");
  write(kRemovable, "HDD_1=0:4::/HDD_1\nMUSIC=0:3:other:/o/\n");
  struct Case {
    const char* name;
    unsigned code;
    const char* record;
  };
  const Case cases[] = {{"mUSIC", 0, "mUSIC|0|1|Songs|/Music/|"},
                        {"Video", 0, "Video|0|1|v|/v/|"},
                        {"HDD_1", 0, "HDD_1|0|4||/HDD_1|"},
                        {"Musi", 24, "Musi|0|0|||"},
                        {"", 24, "|0|0|||"}};
  for (const Case& c : cases) {
    ShareInfo share = share_record(c.name);
    EXPECT_EQ(GetShareInfo(&share), c.code) << c.name;
    EXPECT_EQ(text_of(share), c.record);
  }
  EXPECT_EQ(GetShareInfo(nullptr), 20u);
}

TEST_F(ShareRegistryTest, ExistenceIgnoresLetterCaseAndWhatIsPastTwentyCharacters) {
  write(kFixed, "Music=0:1:c\nabcdefghijklmnopqrstuvw=0:1::/x/\nno value\n");
  write(kRemovable, "HDD_1=\n");
  EXPECT_EQ(ShareExist("mUSIC"), 1);
  EXPECT_EQ(ShareExist("hdd_1"), 1);
  EXPECT_EQ(ShareExist("ABCDEFGHIJKLMNOPQRST"), 1);
  EXPECT_EQ(ShareExist("abcdefghijklmnopqrstuvw"), 0);
  EXPECT_EQ(ShareExist("no value"), 0);
  EXPECT_EQ(ShareExist(""), 0);
  EXPECT_EQ(ShareExist(nullptr), 0);
}

TEST_F(ShareRegistryTest, FolderIsSharedByItsExactPathOnItsVolume) {
  EXPECT_EQ(dir_shared("/Music", 1), 1);
  EXPECT_EQ(dir_shared("/Music/", 1), 1);
  EXPECT_EQ(dir_shared("/music/", 1), 0);
  EXPECT_EQ(dir_shared("/Music/", 2), 0);
  EXPECT_EQ(dir_shared("/Music/Old", 1), 0);
  EXPECT_EQ(dir_shared("", 1), -1);
  EXPECT_EQ(dir_shared(nullptr, 1), -1);
  /* A record that can not be read fails the question, but only when it is reached. */
  write(kFixed, "Music=0:1::/Music/\nBad=0:1:c\n");
  EXPECT_EQ(dir_shared("/Music", 1), 1);
  EXPECT_EQ(dir_shared("/Other", 1), -1);
}

TEST_F(ShareRegistryTest, PublicShareOfAVolumeHasItsBlanksWrittenForUrls) {
  write(kFixed,
        "Docs=0:1::/docs/\nMy  Public=0:1::/Public/:a:7\nAgain=0:1::/public/\n"
        "P=0:2::/PUBLIC\nQ=0:3::/public/x/\nZ=0:6::/public/\n");
  const auto name = [](int volume) {
    char* found = GetPublicSh(volume);
    const std::string text = found ? found : "none";
    free(found);
    return text;
  };
  EXPECT_EQ(name(1), "My%20%20Public");
  EXPECT_EQ(name(2), "P");
  EXPECT_EQ(name(3), "none");
  EXPECT_EQ(name(0), "none");
  EXPECT_EQ(name(6), "none");
}

TEST_F(ShareRegistryTest, AccessListIsFoundInItsLetterCaseOnly) {
  write(kFixed, "Music=0:1:Songs:/Music/:staff:5\nHDD_1=\nHDD_2=\nBad=0:1:c\n");
  write(kRemovable, "HDD_1=0:4::/h/:everyone:7\r\nHDD_3=\n");
  struct Case {
    const char* name;
    unsigned code;
    const char* groups;
    unsigned record_code; /* of the whole record */
    const char* record;
  };
  const Case cases[] = {
      {"Music", 0, " staff:5", 0, "Music|0|1|Songs|/Music/| staff:5"},
      {"HDD_1", 0, " everyone:7", 0, "HDD_1|0|4||/h/| everyone:7"},
      {"music", 47, "", 0, "music|0|0|||"}, /* exists, but is not found */
      {"HDD_2", 47, "", 0, "HDD_2|0|0|||"}, /* the second file does not have it */
      {"HDD_3", 0, "", 0, "HDD_3|0|0|||"},
      {"Bad", 24, "", 24, "Bad|0|0|||"},
      {"none", 49, "", 49, "none|0|0|||"},
      {"", 20, "", 20, "|0|0|||"},
  };
  for (const Case& c : cases) {
    ShareGroupInfo groups{};
    strcpy(groups.name, c.name);
    EXPECT_EQ(GetShareGroup(&groups), c.code) << c.name;
    EXPECT_EQ(text_of(groups.groups), c.groups) << c.name;
    FreeShGrpList(groups.groups);
    ShareInfo share = share_record(c.name);
    EXPECT_EQ(GetShareWithGroup(&share), c.record_code) << c.name;
    EXPECT_EQ(text_of(share), c.record);
    FreeShGrpList(share.groups);
  }
  EXPECT_EQ(GetShareGroup(nullptr), 20u);
  EXPECT_EQ(GetShareWithGroup(nullptr), 20u);
}

TEST_F(ShareRegistryTest, GroupHasTheSharesThatNameItInItsLetterCase) {
  write(kRemovable, "FLASH_1_1=0:3::/f/:everyone:7,staff:5\n");
  GroupShareInfo group{};
  strcpy(group.name, "staff");
  ASSERT_EQ(GetGroupShareInfo(&group), 0u);
  ASSERT_EQ(group.count, 2);
  EXPECT_STREQ(group.shares[0], "Projects");
  EXPECT_STREQ(group.shares[1], "FLASH_1_1");
  EXPECT_EQ(group.rights[0], 7);
  EXPECT_EQ(group.rights[1], 5);
  for (int i = 0; i < group.count; ++i) free(group.shares[i]);
  free(group.shares);

  strcpy(group.name, "Staff"); /* and count and shares still hold what was there */
  ASSERT_EQ(GetGroupShareInfo(&group), 0u);
  EXPECT_EQ(group.count, 0);
  EXPECT_EQ(group.shares, nullptr);
  write(kRemovable, "FLASH_1_1=0:3\n");
  EXPECT_EQ(GetGroupShareInfo(&group), 24u);
  group.name[0] = '\0';
  EXPECT_EQ(GetGroupShareInfo(&group), 20u);
}

TEST_F(ShareRegistryTest, GroupOnMoreSharesThanTheRecordHoldsIsReportedWithTheFirst) {
  std::string registry;
  for (int i = 1; i <= 300; ++i) {
    registry += "s" + std::to_string(i) + "=0:1::/" + std::to_string(i) + "/:staff:5\n";
  }
  write(kFixed, registry);
  GroupShareInfo group{};
  strcpy(group.name, "staff");
  ASSERT_EQ(GetGroupShareInfo(&group), 0u);
  EXPECT_EQ(group.count, 255);
  EXPECT_STREQ(group.shares[254], "s255");
  for (int i = 0; i < group.count; ++i) free(group.shares[i]);
  free(group.shares);
}

TEST_F(ShareRegistryTest, EveryoneOnThePublicShareOfAVolume) {
  write(kFixed,
        "DISK 1=0:1::/public/:everyone:5\nDISK 2=0:2::/public/:Everyone:7\n"
        "DISK=0:5::/public/:a:7,everyone:7\n");
  EXPECT_EQ(EveryoneInDiskSh(1), 1);
  EXPECT_EQ(EveryoneInDiskSh(2), 0);
  EXPECT_EQ(EveryoneInDiskSh(3), 0);
  EXPECT_EQ(EveryoneInDiskSh(5), 1);
}

}  // namespace
