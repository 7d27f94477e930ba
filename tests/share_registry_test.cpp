/* The share registry: its format, looking up and listing shares. */
#include <sys/stat.h>

#include <cstdlib>

#include "tests/share_records.h"

namespace {

/* The code that listing gives when it fails, else the records. */
Strings listed(unsigned (*list)(ShareInfo**)) {
  ShareInfo* head = nullptr;
  if (const unsigned code = list(&head)) return {std::to_string(code), head ? "not empty" : ""};
  Strings records;
  for (const ShareInfo* share = head; share; share = share->next)
    records.push_back(text_of(*share));
  FreeShareList(head);
  return records;
}

class ShareRegistryTest : public ShareTest {};

TEST_F(ShareRegistryTest, ValuesAreSplitByPositionAndCutToTheRecord) {
  const std::string comment(60, 'c'), path(300, 'p'), group(40, 'g');
  const struct {
    std::string value;
    unsigned code;
    std::string record;
  } cases[] = {
      {"0:1:Songs:/Music/:administrators:7,staff:5\n", 0,
       "|0|1|Songs|/Music/| administrators:7 staff:5"},
      {"1:5::/x/\r\n", 0, "|1|5||/x/|"},
      {"0:1:c:", 0, "|0|1|c||"},
      {"0:1:c:/p/:\r\n", 0, "|0|1|c|/p/|"},
      {"0:1:c:/p/:a:7,b,c:5", 0, "|0|1|c|/p/|"}, /* an item without rights: no list at all */
      {"0:1:c:/p/::7,a:x,b:5:9\n", 0, "|0|1|c|/p/| :7 a:0 b:5"},
      {"0:1:" + comment + ":" + path + ":" + group + ":5", 0,
       "|0|1|" + std::string(48, 'c') + "|" + std::string(257, 'p') + "| " + std::string(23, 'g') +
           ":5"},
      {"", 20, "|0|0|||"},
      {"0", 24, "|0|0|||"},
      {"0:1:c", 24, "|0|0|||"},
      {"0:1:c:\n", 24, "|0|0|||"},
      {"0:1:\r\n:/p/", 24, "|0|0|||"},
      {"0:\n1:c:/p/", 24, "|0|0|||"},
  };
  for (const auto& c : cases) {
    ShareInfo share{};
    EXPECT_EQ(ShareStringPar(c.value.c_str(), &share), c.code) << c.value;
    EXPECT_EQ(text_of(share), c.record) << c.value;
    FreeShGrpList(share.groups);
  }
  EXPECT_EQ(ShareStringPar("0:1:c:/p/", nullptr), 20u);
}

TEST_F(ShareRegistryTest, ListsHoldTheSharesOfBothFilesInOrder) {
  write(kRegistry,
        "Music=0:1:Songs:/Music/:staff:5\n# a remark\n\n"
        "a name that is too long=1:2:c:/long/\nLast=0:1:of FLASH_3:/l=/");
  write(kRemovable, "FLASH_1_2=0:3:For everyone:/FLASH_1_2/:everyone:7\nFLASH=0:3::/f/\n");
  const Strings all = {"Music|0|1|Songs|/Music/| staff:5", "a name that is too l|1|2|c|/long/|",
                       "Last|0|1|of FLASH_3|/l=/|",
                       "FLASH_1_2|0|3|For everyone|/FLASH_1_2/| everyone:7", "FLASH|0|3||/f/|"};
  EXPECT_EQ(listed(GetAllShare), all);
  EXPECT_EQ(listed(GetExtShare), Strings({all[0], all[1], all[4]})); /* the whole line counts */

  ShareNameItem* names = nullptr;
  ASSERT_EQ(GetShareNameList(&names), 0u);
  Strings found;
  for (ShareNameItem* name = names; name != nullptr; name = name->next) found.push_back(name->name);
  FreeShareNameList(names);
  EXPECT_EQ(found, Strings({"Music", "Last", "FLASH_1_2", "FLASH"}));
  EXPECT_EQ(GetNumOfShares(), 4u);
}

TEST_F(ShareRegistryTest, MalformedLineDropsTheFirstFileOrFailsInTheSecond) {
  write(kRegistry, "Music=0:1:Songs:/Music/:staff:5\nBad=0:1:c\nAfter=0:1::/a/\n");
  write(kRemovable, "HDD_1_1=0:4::/HDD_1_1/\n");
  EXPECT_EQ(listed(GetAllShare), Strings({"HDD_1_1|0|4||/HDD_1_1/|"}));
  write(kRemovable, "HDD_1_1=0:4::/HDD_1_1/:a:7\nHDD_1_2=\n");
  EXPECT_EQ(listed(GetAllShare), Strings({"24", ""}));
}

TEST_F(ShareRegistryTest, EveryReaderMakesTheRegistryOfRemovableShares) {
  ShareInfo share = share_record("Music");
  const std::function<void()> readers[] = {GetNumOfShares, [] { listed(GetAllShare); },
                                           [] { static_cast<void>(ShareExist("Music")); },
                                           [&] { EXPECT_EQ(GetShareInfo(&share), 0u); }};
  umask(077);
  for (const auto& read_registry : readers) {
    ASSERT_EQ(remove(kRemovable), 0);
    read_registry();
    EXPECT_EQ(read(kRemovable), "");
    EXPECT_EQ(mode(kRemovable), 0644u);
  }
  umask(022);
}

TEST_F(ShareRegistryTest, OneOfTheFilesIsEnough) {
  write(kRemovable, "");
  ASSERT_EQ(remove(kRegistry), 0);
  EXPECT_EQ(listed(GetAllShare), Strings());
  EXPECT_EQ(GetNumOfShares(), 0u);
  ASSERT_EQ(system("rm /etc/win_share.info; ln -s /nowhere/else /etc/win_share.info"), 0);
  ShareInfo share = share_record("Music");
  EXPECT_EQ(GetShareInfo(&share), 21u);
  EXPECT_EQ(listed(GetAllShare), Strings({"21", ""}));
  EXPECT_EQ(GetNumOfShares(), 4294967293u);
  EXPECT_EQ(dir_shared("/Music", 1), -1);
  EXPECT_EQ(GetPublicSh(1), nullptr);
}

/* The record alone is found in any letter case, in the first file that has it well; with its access
 * list in its own, in the first file where it has a value. */
TEST_F(ShareRegistryTest, ShareIsLookedUp) {
  write(kRegistry,
        "Music=0:1:Songs:/Music/:staff:5\nHDD_1=\nHDD_4=0:1:c\nVideo=0:1:v:/v/\r\n"
        "abcdefghijklmnopqrstuvw=0:1::/x/\nno value\n");
  write(kRemovable, "HDD_1=0:4::/h/:everyone:7\r\nHDD_3=\nHDD_4=0:4::/4\nMUSIC=0:3:x:/x/\n");
  const struct {
    std::string name;
    int exists;
    unsigned code; /* of the record alone */
    std::string record;
    unsigned groups_code;
    std::string groups;
  } cases[] = {
      {"Music", 1, 0, "0|1|Songs|/Music/", 0, " staff:5"},
      {"mUSIC", 1, 0, "0|1|Songs|/Music/", 47, ""},
      {"Video", 1, 0, "0|1|v|/v/", 0, ""},
      {"HDD_1", 1, 0, "0|4||/h/", 0, " everyone:7"},
      {"HDD_3", 1, 24, "0|0||", 0, ""},
      {"HDD_4", 1, 0, "0|4||/4", 24, ""},
      {"Musi", 0, 24, "0|0||", 49, ""},
      {"ABCDEFGHIJKLMNOPQRST", 1, 24, "0|0||", 47, ""}, /* of the first twenty characters */
      {"", 0, 24, "0|0||", 20, ""},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ShareExist(c.name.c_str()), c.exists) << c.name;
    ShareInfo share = share_record(c.name.c_str());
    EXPECT_EQ(GetShareInfo(&share), c.code) << c.name;
    EXPECT_EQ(text_of(share), c.name + "|" + c.record + "|") << c.name;
    ShareGroupInfo access{};
    strcpy(access.name, c.name.c_str());
    EXPECT_EQ(GetShareGroup(&access), c.groups_code) << c.name;
    EXPECT_EQ(text_of(access.groups), c.groups) << c.name;
    FreeShGrpList(access.groups);
    ShareInfo whole = share_record(c.name.c_str());
    EXPECT_EQ(GetShareWithGroup(&whole), c.groups_code == 47 ? 0 : c.groups_code) << c.name;
    const std::string record = c.groups_code == 0 ? c.record : "0|0||";
    EXPECT_EQ(text_of(whole), c.name + "|" + record + "|" + c.groups);
    FreeShGrpList(whole.groups);
  }
  EXPECT_EQ(ShareExist("abcdefghijklmnopqrstuvw"), 0);
  EXPECT_EQ(GetShareInfo(nullptr), 20u);
  EXPECT_EQ(GetShareGroup(nullptr), 20u);
  EXPECT_EQ(GetShareWithGroup(nullptr), 20u);
}

TEST_F(ShareRegistryTest, FolderIsSharedByItsExactPathOnItsVolume) {
  write(kRegistry, "Music=0:1::/Music/\nBad=0:1:c\n");
  EXPECT_EQ(dir_shared("/Music", 1), 1);
  EXPECT_EQ(dir_shared("/Music/", 1), 1);
  EXPECT_EQ(dir_shared("/music/", 1), -1); /* reaches a record that can not be read */
  EXPECT_EQ(dir_shared("", 1), -1);
  const std::string bad = "Bad=0:1:c\n";
  const std::string music = "Music=0:1::/Music/\n";
  const struct {
    std::string registry;
    std::string removable;
    int music;  /* volume 1 */
    int nobody; /* a folder that is not shared */
  } cases[] = {
      {music, "", 1, 0},
      {bad + music, "", -1, -1},
      {music, bad, 1, -1},
      /* the first line of a name, in any letter case; a bad one is looked for in the second file */
      {music + "MUSIC=0:1::/other/\n", "", 1, 0},
      {"MUSIC=0:1::/other/\n" + music, "", 0, 0},
      {bad + "BAD=0:1::/Music/\n", "", -1, -1},
      {bad + music, "bAD=0:3::/x/\n", 1, 0},
      {"Music=\n", music, 1, 0},
      /* behind a section header a share is listed and not found */
      {"[x]\n" + music, "", -1, -1},
      {music + "[x]\n" + music, "", 1, 0},
      {music + "[x=0:1::/y/\n", "", 1, -1},
  };
  for (const auto& c : cases) {
    write(kRegistry, c.registry);
    write(kRemovable, c.removable);
    EXPECT_EQ(dir_shared("/Music/", 1), c.music) << c.registry << c.removable;
    EXPECT_EQ(dir_shared("/music/", 1), c.nobody) << c.registry << c.removable;
    EXPECT_EQ(dir_shared("/Music/", 2), c.nobody) << c.registry << c.removable;
  }
}

TEST_F(ShareRegistryTest, PublicShareOfAVolumeHasItsBlanksWrittenForUrls) {
  write(kRegistry,
        "Docs=0:1::/docs/\nMy  Public=0:1::/Public/:a:7\nAgain=0:1::/public/\n"
        "P=0:2::/PUBLIC\nQ=0:3::/public/x/\nY=0:0::/public/\nZ=0:6::/public/\n");
  const Strings expected = {"none", "My%20%20Public", "P", "none", "none", "none", "none"};
  for (size_t volume = 0; volume < expected.size(); ++volume) {
    char* name = GetPublicSh(static_cast<int>(volume));
    EXPECT_EQ(name != nullptr ? name : "none", expected[volume]) << volume;
    free(name);
  }
}

TEST_F(ShareRegistryTest, GroupHasTheFirstOfTheSharesThatNameItInItsLetterCase) {
  std::string registry = "other=0:1::/o/:Staff:7\n";
  for (int i = 1; i <= 300; ++i) registry += "s" + std::to_string(i) + "=0:1::/s/:a:7,staff:5\n";
  write(kRegistry, registry);
  GroupShareInfo group{};
  strcpy(group.name, "staff");
  ASSERT_EQ(GetGroupShareInfo(&group), 0u);
  ASSERT_EQ(group.count, 255);
  EXPECT_STREQ(group.shares[0], "s1");
  EXPECT_STREQ(group.shares[254], "s255");
  EXPECT_EQ(group.rights[254], 5);
  for (int i = 0; i < group.count; ++i) free(group.shares[i]);
  free(group.shares);

  strcpy(group.name, "none"); /* and count and shares still hold what was there */
  ASSERT_EQ(GetGroupShareInfo(&group), 0u);
  EXPECT_EQ(group.count, 0);
  EXPECT_EQ(group.shares, nullptr);
  write(kRemovable, "FLASH_1_1=0:3\n");
  EXPECT_EQ(GetGroupShareInfo(&group), 24u);
  group.name[0] = '\0';
  EXPECT_EQ(GetGroupShareInfo(&group), 20u);
}

TEST_F(ShareRegistryTest, EveryoneOnThePublicShareOfAVolume) {
  write(kRegistry,
        "DISK 1=0:1::/p/:everyone:5\nDISK 2=0:2::/p/:Everyone:7\nDISK=0:5::/p/:everyone:7\n");
  const int expected[] = {0, 1, 0, 0, 0, 1};
  for (int volume = 0; volume <= 5; ++volume) {
    EXPECT_EQ(EveryoneInDiskSh(volume), expected[volume]) << volume;
  }
}

}  // namespace
