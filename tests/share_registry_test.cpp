/* The share registry: its format, looking up and listing shares. */
#include <sys/stat.h>

#include <cstdlib>

#include "filesharing/groups.h"
#include "tests/share_records.h"

namespace {

/* The records, or the code that listing gives. */
Strings listed(unsigned (*list)(ShareInfo**)) {
  ShareInfo* head = nullptr;
  if (const unsigned code = list(&head)) return {std::to_string(code), head ? "not empty" : ""};
  Strings records;
  for (const ShareInfo* s = head; s != nullptr; s = s->next) records.push_back(text_of(*s));
  FreeShareList(head);
  return records;
}

class ShareRegistryTest : public ShareTest {};

TEST_F(ShareRegistryTest, ValuesAreSplitByPositionAndCutToTheRecord) {
  const std::string comment(49, 'c'), path(258, 'p'), group(24, 'g');
  const std::string cut = "|0|1|" + comment.substr(1) + "|" + path.substr(1) + "| ";
  const struct {
    std::string value;
    unsigned code;
    std::string record = "|0|0|||";
  } cases[] = {
      {"0:1:Songs:/Music/:administrators:7,staff:5\n", 0,
       "|0|1|Songs|/Music/| administrators:7 staff:5"},
      {"1:5::/x/\r\n", 0, "|1|5||/x/|"},
      {"0:1:c:", 0, "|0|1|c||"},
      {"0:1:c:/p/:a:7,b,c:5", 0, "|0|1|c|/p/|"}, /* an item without rights: no list at all */
      {"0:1:c:/p/::7,a:x,b:5:9\n", 0, "|0|1|c|/p/| :7 a:0 b:5"},
      {"0:1:" + comment + ":" + path + ":" + group + ":5", 0, cut + group.substr(1) + ":5"},
      {"0:1:c", 24},
      {"0:1:c:\n", 24},
      {"0:\n1:c:/p/", 24},
  };
  for (const auto& c : cases) {
    ShareInfo share{};
    EXPECT_EQ(ShareStringPar(c.value.c_str(), &share), c.code) << c.value;
    EXPECT_EQ(text_of(share), c.record) << c.value;
    FreeShGrpList(share.groups);
  }
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
  std::string found;
  for (ShareNameItem* n = names; n != nullptr; n = n->next) found += std::string(n->name) + " ";
  FreeShareNameList(names);
  EXPECT_EQ(found, "Music Last FLASH_1_2 FLASH "); /* a longer name is none */
}

TEST_F(ShareRegistryTest, MalformedLineDropsTheFirstFileOrFailsInTheSecond) {
  write(kRegistry, "Music=0:1:Songs:/Music/:staff:5\nBad=0:1:c\nAfter=0:1::/a/\n");
  write(kRemovable, "HDD_1_1=0:4::/HDD_1_1/\n");
  EXPECT_EQ(listed(GetAllShare), Strings({"HDD_1_1|0|4||/HDD_1_1/|"}));
  write(kRemovable, "HDD_1_1=0:4::/HDD_1_1/:a:7\nHDD_1_2=\n");
  EXPECT_EQ(listed(GetAllShare), Strings({"24", ""}));
}

TEST_F(ShareRegistryTest, OneOfTheFilesIsEnoughAndEveryReaderMakesTheOneOfRemovableShares) {
  for (const char* file : {kRegistry, kRemovable}) remove(file);
  ShareInfo share = share_record("Music");
  umask(077);
  const auto expect_made = [](const auto& result, const auto& expected) {
    EXPECT_EQ(result, expected);
    EXPECT_EQ(mode(kRemovable), 0644u);
    remove(kRemovable);
  };
  expect_made(GetNumOfShares(), 0u);
  expect_made(listed(GetAllShare), Strings());
  expect_made(ShareExist("Music"), 0);
  expect_made(GetShareInfo(&share), 24u);
  umask(022);
  ASSERT_EQ(system("ln -fs /nowhere/else /etc/win_share.info"), 0);
  EXPECT_EQ(GetShareInfo(&share), 21u);
  EXPECT_EQ(listed(GetAllShare), Strings({"21", ""}));
  EXPECT_EQ(GetNumOfShares(), 4294967293u);
  EXPECT_EQ(dir_shared("/Music", 1), -1);
}

/* The record alone is found in any letter case, in the first file that has it well; with its access
 * list in its own, in the first file where it has a value. */
TEST_F(ShareRegistryTest, ShareIsLookedUp) {
  write(kRegistry,
        "Music=0:1:Songs:/Music/:staff:5\nHDD_1=\nHDD_4=0:1:c\nabcdefghijklmnopqrstuvw=0:1::/x/\n");
  write(kRemovable, "HDD_1=0:4::/h/:everyone:7\r\nHDD_3=\nHDD_4=0:4::/4\nMUSIC=0:3:x:/x/\n");
  const struct {
    std::string name;
    int exists;
    unsigned code; /* of the record alone */
    std::string record;
    unsigned groups_code;
    std::string groups = "";
  } cases[] = {
      {"Music", 1, 0, "0|1|Songs|/Music/", 0, " staff:5"},
      {"mUSIC", 1, 0, "0|1|Songs|/Music/", 47},
      {"HDD_1", 1, 0, "0|4||/h/", 0, " everyone:7"},
      {"HDD_3", 1, 24, "0|0||", 0},
      {"HDD_4", 1, 0, "0|4||/4", 24},
      {"Musi", 0, 24, "0|0||", 49},
      {"ABCDEFGHIJKLMNOPQRST", 1, 24, "0|0||", 47}, /* of the first twenty characters */
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ShareExist(c.name.c_str()), c.exists) << c.name;
    ShareInfo share = share_record(c.name.c_str()), whole = share;
    EXPECT_EQ(GetShareInfo(&share), c.code) << c.name;
    EXPECT_EQ(text_of(share), c.name + "|" + c.record + "|");
    ShareGroupInfo access{};
    strcpy(access.name, c.name.c_str());
    EXPECT_EQ(GetShareGroup(&access), c.groups_code) << c.name;
    EXPECT_EQ(text_of(access.groups), c.groups) << c.name;
    FreeShGrpList(access.groups);
    EXPECT_EQ(GetShareWithGroup(&whole), c.groups_code == 47 ? 0 : c.groups_code) << c.name;
    EXPECT_EQ(text_of(whole),
              c.name + "|" + (c.groups_code == 0 ? c.record : "0|0||") + "|" + c.groups);
    FreeShGrpList(whole.groups);
  }
}

/* Each name in the order of the registry is looked up as GetShareInfo does it; the first record
 * that can not be read ends the search. */
TEST_F(ShareRegistryTest, FolderIsSharedByItsExactPathOnItsVolume) {
  const std::string music = "Music=0:1::/Music/\n";
  const struct {
    std::string registry;
    const char* path;
    int volume;
    int shared;
  } cases[] = {
      {music, "/Music", 1, 1},
      {music, "/music/", 1, 0},
      {music, "/Music/", 2, 0},
      {music + "Bad=0:1:c\n", "/Music/", 1, 1},
      {music + "Bad=0:1:c\n", "/music/", 1, -1},
      {"Bad=0:1:c\n" + music, "/Music/", 1, -1},
      {music + "[late]\nLate=0:1::/Late/\n", "/Late/", 1, -1},
      {music + "MUSIC=0:1::/Other/\n", "/Other/", 1, 0},
      {"MUSIC=\n" + music, "/Music/", 1, -1},
      {"HDD_1=0:4:c\n", "/h/", 4, 1},
      {"HDD_1=0:1::/f/\n", "/h/", 4, 0},
  };
  write(kRemovable, "hdd_1=0:4::/h/\r\n");
  for (const auto& c : cases) {
    write(kRegistry, c.registry);
    EXPECT_EQ(dir_shared(c.path, c.volume), c.shared) << c.registry << c.path;
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
  FreeGrpShareInfo(&group);
}

TEST_F(ShareRegistryTest, EveryoneOnThePublicShareOfAVolume) {
  write(kRegistry,
        "DISK 1=0:1::/p/:everyone:5\nDISK 2=0:2::/p/:Everyone:7\nDISK=0:5::/p/:everyone:7\n");
  for (int volume = 0; volume <= 5; ++volume) {
    EXPECT_EQ(EveryoneInDiskSh(volume), volume == 1 || volume == 5) << volume;
  }
}

}  // namespace
