/* Adding, updating and deleting shares: every file that carries a share, the commands in their
 * order, and what a failure leaves. */
#include <sys/stat.h>

#include "filesharing/conf.h"
#include "filesharing/shares.h"
#include "tests/device_test.h"
#include "tests/share_records.h"

namespace {

const char kRegistry[] = "/etc/share.info";
const char kRemovable[] = "/etc/win_share.info";
const char kOnVolume[] = "/harddisk/volume_1/conf/share.info";
const char kSmb[] = "/harddisk/volume_1/conf/smb.conf"; /* what /etc/samba/smb.conf leads to */
const char kAfp[] = "/etc/netatalk/AppleVolumes.conf";

const Strings kCopySmb = {
    "/bin/cp [-f] [/harddisk/volume_1/conf//tmp/tmpfile.XXXXXX] "
    "[/etc/samba/smb.conf]"};
const Strings kCopyAfp = {
    "/bin/cp [-f] [/harddisk/volume_1/conf//tmp/tmpfile.XXXXXX] "
    "[/etc/netatalk/AppleVolumes.conf]"};
const Strings kBackUp = {
    "/bin/cp [-f] [/harddisk/volume_1/conf/share.info] [/harddisk/volume_1/conf/share.info.ttt]",
    "/bin/cp [-f] [/harddisk/volume_1/conf/smb.conf] [/harddisk/volume_1/conf/smb.conf.ttt]"};
const Strings kRestore = {
    "/bin/cp [-f] [/harddisk/volume_1/conf/share.info.ttt] [/harddisk/volume_1/conf/share.info]",
    "/bin/cp [-f] [/harddisk/volume_1/conf/smb.conf.ttt] [/harddisk/volume_1/conf/smb.conf]"};

/* The lists one after the other. */
Strings joined(std::initializer_list<Strings> lists) {
  Strings all;
  for (const Strings& list : lists) all.insert(all.end(), list.begin(), list.end());
  return all;
}

/* Each line twice in a row. */
Strings twice(const Strings& lines) {
  Strings all;
  for (const std::string& line : lines) all.insert(all.end(), {line, line});
  return all;
}

/* The section and the line of a share that administrators alone may use. */
std::string section(const std::string& name, const std::string& comment, const std::string& path) {
  return "[" + name + "]\nvalid users=@\"administrators\"\ncomment=" + comment +
         "\npath=/harddisk/volume_1/data" + path +
         "\nread only=yes\nwrite list=@\"administrators\"\n";
}

std::string afp(const std::string& name, const std::string& path) {
  return "\"/harddisk/volume_1/data" + path + "\" \"[" + name +
         "]\"  rwlist:@\"administrators\" allow:@\"administrators\"\n";
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
  const size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

class ShareChangesTest : public DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    registry_ = read(kRegistry);
    on_volume_ = read(kOnVolume);
    smb_ = read(kSmb);
    afp_ = read(kAfp);
  }

  void expect_all_as_before() { expect_files(registry_, on_volume_, smb_, afp_); }

  static void expect_files(const std::string& registry, const std::string& on_volume,
                           const std::string& smb, const std::string& afp) {
    EXPECT_EQ(read(kRegistry), registry);
    EXPECT_EQ(read(kOnVolume), on_volume);
    EXPECT_EQ(read(kSmb), smb);
    EXPECT_EQ(read(kAfp), afp);
  }

  /* The second run of a copy is the nth cp; when it is to fail and the file to stay as it was, the
   * first one fails too. */
  static void fail_both_copies(int nth) {
    fail_command("cp", nth - 1);
    fail_command("cp", nth);
  }

  static void expect_no_locks() {
    EXPECT_FALSE(exists("/tmp/share.lck"));
    EXPECT_FALSE(exists("/tmp/smb.lck"));
  }

  std::string registry_, on_volume_, smb_, afp_;
};

class AddShareTest : public ShareChangesTest {};

TEST_F(AddShareTest, ShareStandsInEveryFileAndItsFolderIsMade) {
  const Snapshot before = snapshot();
  ShareInfo share = share_record("Video", "Films", "/Video/Old", 1);
  share.suffixed = 3; /* a new share has none */
  ASSERT_EQ(AddShare(&share), 0u);
  expect_files(registry_ + "Video=0:1:Films:/Video/Old/:administrators:7\n",
               on_volume_ + "Video=Films:/Video/Old/:administrators:7\n",
               smb_ + section("Video", "Films", "/Video/Old/"), afp_ + afp("Video", "/Video/Old/"));
  EXPECT_EQ(commands(), joined({{"/bin/mkdir [-m] [775] [-p] [/harddisk/volume_1/data/Video/Old]",
                                 "/bin/chown [admin.everyone] [/harddisk/volume_1/data/Video/Old]"},
                                twice(kCopySmb),
                                {"sleep 2"},
                                twice(kCopyAfp),
                                {"sleep 2"}}));
  EXPECT_EQ(changes(before),
            Strings({"~/etc/netatalk/AppleVolumes.conf", "~/etc/share.info", "~/harddisk",
                     "~/harddisk/volume_1", "~/harddisk/volume_1/conf/share.info",
                     "~/harddisk/volume_1/conf/smb.conf", "+/harddisk/volume_1/data/Video",
                     "+/harddisk/volume_1/data/Video/Old"}));
}

TEST_F(AddShareTest, FoldersAboveTheLastSlashAreOpenedToAll) {
  ShareInfo share = share_record("Video", "", "/Video/Old", 1);
  ASSERT_EQ(AddShare(&share), 0u);
  for (const char* folder : {"/harddisk", "/harddisk/volume_1", "/harddisk/volume_1/data",
                             "/harddisk/volume_1/data/Video"}) {
    EXPECT_EQ(mode(folder), 0777u) << folder;
    EXPECT_EQ(owner(folder), "502:501") << folder;
  }
  EXPECT_EQ(mode("/harddisk/volume_1/data/Video/Old"), 0775u);
  ShareInfo open = share_record("Open", "", "/Open/", 1);
  ASSERT_EQ(AddShare(&open), 0u);
  EXPECT_EQ(mode("/harddisk/volume_1/data/Open"), 0777u);
}

TEST_F(AddShareTest, PathIsTakenAsTranslatedOnlyWhenNoLetterCaseChanged) {
  struct Case {
    const char* given;
    const char* kept;   /* in the record */
    const char* folder; /* that is there afterwards */
  };
  const Case cases[] = {
      {"//Music///Old/", "/Music/Old/", "/Music/Old"},
      {"/Music/New", "/Music/New", "/Music/New"},
      {"/music//Newer/", "/music//Newer/", "/music/Newer"}, /* beside /Music */
  };
  for (const Case& c : cases) {
    ShareInfo share = share_record("s", "", c.given, 1);
    ASSERT_EQ(AddShare(&share), 0u) << c.given;
    EXPECT_STREQ(share.path, c.kept);
    EXPECT_TRUE(exists(std::string("/harddisk/volume_1/data") + c.folder)) << c.folder;
    std::string path = c.kept;
    if (path.back() != '/') path += '/';
    EXPECT_EQ(read(kRegistry), registry_ + "s=0:1::" + path + ":administrators:7\n");
    ASSERT_EQ(DelShare("s"), 0u);
  }
}

TEST_F(AddShareTest, CharactersOfTheShellReachTheFolderAsTheyAre) {
  const std::string name = "a \"$(b)`c\\";
  ShareInfo share = share_record("s", "", ("/" + name + "/").c_str(), 1);
  ASSERT_EQ(AddShare(&share), 0u);
  EXPECT_TRUE(exists("/harddisk/volume_1/data/" + name));
  EXPECT_EQ(mode("/harddisk/volume_1/data/" + name), 0775u); /* the walk does not find it */
  EXPECT_EQ(commands()[1], "/bin/chown [admin.everyone] [/harddisk/volume_1/data/a \"$(b)`c\\/]");
}

TEST_F(AddShareTest, RemovableShareGetsNeitherFolderNorLineOnItsVolume) {
  mount_volume(3);
  const Snapshot before = snapshot();
  ShareInfo share = share_record("FLASH_1_2", "Disk", "/FLASH_1_2", 3);
  ASSERT_EQ(AddShare(&share), 0u);
  EXPECT_EQ(read(kRemovable), "FLASH_1_2=0:3:Disk:/FLASH_1_2/:administrators:7\n");
  EXPECT_EQ(changes(before), Strings({"~/etc/netatalk/AppleVolumes.conf", "~/etc/win_share.info",
                                      "~/harddisk/volume_1/conf/smb.conf"}));
}

TEST_F(AddShareTest, RefusedBeforeAnythingIsLocked) {
  EXPECT_EQ(AddShare(nullptr), 20u);
  ShareInfo share = share_record("mUSIC", "", "/Other", 1);
  const Snapshot before = snapshot();
  EXPECT_EQ(AddShare(&share), 48u);
  EXPECT_EQ(changes(before), Strings());
}

TEST_F(AddShareTest, LockThatWasTakenBeforeTheBusyOneStays) {
  write("/tmp/smb.lck", "");
  const Snapshot before = snapshot();
  ShareInfo share = share_record("Video", "", "/Video", 1);
  EXPECT_EQ(AddShare(&share), 50u);
  EXPECT_EQ(changes(before), Strings({"+/tmp/share.lck"}));
  EXPECT_EQ(commands(), Strings());
}

/* No backup is taken, so a failure brings back what an earlier operation left. */
TEST_F(AddShareTest, FailureRestoresTheBackupOfAnEarlierOperation) {
  write("/harddisk/volume_1/conf/share.info.ttt", "old=list:/\n");
  write("/harddisk/volume_1/conf/smb.conf.ttt", "[old]\n");
  ShareInfo share = share_record("Again", "", "/Music", 1);
  EXPECT_EQ(AddShare(&share), 56u);
  expect_files(registry_, "old=list:/\n", "[old]\n", afp_);
  EXPECT_EQ(commands(), twice(kRestore));
  expect_no_locks();
}

TEST_F(AddShareTest, StepsBeforeAFailureStayWithoutABackup) {
  const std::string line = "=0:1::/New/:administrators:7\n";
  const std::string on_volume = "=:/New/:administrators:7\n";
  struct Case {
    const char* name;
    int volume;
    int failing_copy;
    unsigned code;
  };
  const Case cases[] = {{"a", 2, 0, 50}, {"b", 1, 2, 45}, {"c", 1, 4, 19}};
  for (const Case& c : cases) {
    SetUp();
    if (c.failing_copy != 0) fail_both_copies(c.failing_copy);
    ShareInfo share = share_record(c.name, "", "/New", c.volume);
    EXPECT_EQ(AddShare(&share), c.code);
    const std::string name = c.name;
    if (c.volume == 2) { /* not mounted */
      expect_files(registry_ + "a=0:2::/New/:administrators:7\n", on_volume_, smb_, afp_);
      EXPECT_FALSE(exists("/harddisk/volume_2/data"));
    } else {
      expect_files(registry_ + name + line, on_volume_ + name + on_volume,
                   c.code == 45 ? smb_ : smb_ + section(name, "", "/New/"), afp_);
    }
    expect_no_locks();
  }
}

TEST_F(AddShareTest, TextsThatFillTheirFieldsDoNotRunIntoTheNext) {
  ShareInfo share = share_record("", "", "/x/", 1);
  memset(share.name, 'n', sizeof share.name);
  memset(share.comment, 'c', sizeof share.comment);
  ASSERT_EQ(AddShare(&share), 0u);
  const std::string name(20, 'n'), comment(48, 'c');
  EXPECT_EQ(read(kRegistry), registry_ + name + "=0:1:" + comment + ":/x/:administrators:7\n");
  EXPECT_EQ(read(kSmb), smb_ + section(name, comment, "/x/"));
}

class AddShareWithGroupTest : public ShareChangesTest {};

TEST_F(AddShareWithGroupTest, NameOnTheVolumeIsTheOneTheVolumeKnows) {
  struct Case {
    const char* name;
    int suffixed;
    const char* path;
    const char* on_volume;
  };
  const Case cases[] = {
      {"Docs", 0, "/docs", "Docs=c:/docs/"},
      {"Docs~1", 1, "/docs/", "Docs=c:/docs/"},
      {"a~b~c", 1, "/x", "a~b=c:/x/"},
      {"a~b~c", 0, "/x", "a~b~c=c:/x/"},
      {"My Docs 1", 0, "/x", "My Docs 1=c:/x/"},
      {"DISK 1", 0, "/public", "DISK=c:/public/"},
      {"My DISK 2", 0, "/", "My DISK=c:/"},
      {"DISK 3", 0, "/public/", "DISK 3=c:/public/"},
      {"DISK 1", 0, "/Public", "DISK 1=c:/Public/"},
      {"DISK 1~3", 1, "/public/", "DISK=c:/public/"},
      {"DISK1", 0, "/public/", "DISK1=c:/public/"},
      {"Docs", 12, "/docs", "Docs=:c:/docs/"},
  };
  for (const Case& c : cases) {
    write(kRegistry, "");
    write(kOnVolume, "");
    ShareInfo share = share_record(c.name, "c", c.path, 1);
    share.suffixed = c.suffixed;
    EXPECT_EQ(AddShareWithGroup(&share), 0u);
    EXPECT_EQ(read(kOnVolume), std::string(c.on_volume) + "\n") << c.name;
    EXPECT_EQ(
        read(kRegistry).rfind(std::string(c.name) + "=" + std::to_string(c.suffixed) + ":1:c:", 0),
        0u);
  }
}

TEST_F(AddShareWithGroupTest, LineAndSectionsOfTheShareAreReplacedInPlaceWithoutALock) {
  write("/tmp/share.lck", "");
  ShareGroup groups[] = {{"staff", 5, nullptr}, {"administrators", 7, nullptr}, {"x", 7, nullptr}};
  groups[0].next = &groups[1];
  groups[1].next = &groups[2];
  ShareInfo share = share_record("Music", "New", "/Music/", 1);
  share.groups = groups;
  ASSERT_EQ(AddShareWithGroup(&share), 0u);
  expect_files(
      replaced(registry_, "Songs of the family:/Music/:administrators:7,family:7,everyone:5",
               "New:/Music/:staff:5,administrators:7,x:7"),
      replaced(on_volume_, "Songs of the family:/Music/:administrators:7,family:7,everyone:5",
               "New:/Music/:staff:5,administrators:7,x:7"),
      replaced(replaced(replaced(smb_, "@\"family\",@\"everyone\"", "@\"staff\",@\"x\""),
                        "Songs of the family", "New"),
               ",@\"family\"", ",@\"x\""),
      replaced(replaced(afp_, ",@\"family\"", ",@\"x\""), ",@\"family\",@\"everyone\"",
               ",@\"staff\",@\"x\""));
}

TEST_F(AddShareWithGroupTest, AccessListOfAnyLengthIsWritten) {
  std::vector<ShareGroup> groups(200, ShareGroup{"a group of 20 letters", 5, nullptr});
  for (size_t i = 1; i < groups.size(); ++i) groups[i - 1].next = &groups[i];
  ShareInfo share = share_record("Music", "", "/Music", 1);
  share.groups = groups.data();
  ASSERT_EQ(AddShareWithGroup(&share), 0u);
  ShareInfo back = share_record("Music");
  ASSERT_EQ(GetShareWithGroup(&back), 0u);
  EXPECT_EQ(text_of(back),
            text_of(share).insert(text_of(share).find("Music|0|1||/Music") + 17, "/"));
  FreeShGrpList(back.groups);
}

TEST_F(AddShareWithGroupTest, SectionThatCanNotBeWrittenEndsIt) {
  ShareInfo unnamed = share_record("", "", "/x", 1);
  EXPECT_EQ(AddShareWithGroup(&unnamed), 20u);
  EXPECT_EQ(AddShareWithGroup(nullptr), 20u);
  ShareInfo share = share_record("Video", "", "/Video", 1);
  fail_both_copies(2);
  EXPECT_EQ(AddShareWithGroup(&share), 45u);
  expect_files(registry_ + "Video=0:1::/Video/\n", on_volume_ + "Video=:/Video/\n", smb_, afp_);
}

class UpdateShareTest : public ShareChangesTest {};

TEST_F(UpdateShareTest, RenamedShareKeepsItsAccessAndLeavesItsAfpLine) {
  ShareInfo share = share_record("Songs", "New", "/Songs", 1);
  share.suffixed = 1;
  const Snapshot before = snapshot();
  ASSERT_EQ(UpdateShare("Music", &share), 0u);
  EXPECT_EQ(share.suffixed, 0);
  EXPECT_EQ(share.groups, nullptr);
  const std::string old_value = "Songs of the family:/Music/";
  expect_files(
      replaced(replaced(registry_, "Music=", "Songs="), old_value, "New:/Songs/"),
      replaced(replaced(on_volume_, "Music=", "Songs="), old_value, "New:/Songs/"),
      replaced(replaced(replaced(smb_, "[Music]", "[Songs]"), "data/Music/", "data/Songs/"),
               "Songs of the family", "New"),
      afp_ +
          "\"/harddisk/volume_1/data/Songs/\" \"[Songs]\"  "
          "rwlist:@\"administrators\",@\"family\" "
          "allow:@\"administrators\",@\"family\",@\"everyone\"\n");
  const std::string temporary = "/bin/cp [-f] [/harddisk/volume_1/conf//tmp/tmpfile.XXXXXX] ";
  EXPECT_EQ(commands(),
            joined({twice(kBackUp),
                    twice({temporary + "[/etc/share.info]", temporary + "[" + kOnVolume + "]"}),
                    twice(kCopySmb),
                    twice(kCopySmb),
                    {"sleep 2"},
                    twice(kCopyAfp),
                    {"sleep 2", "/bin/mkdir [-m] [775] [-p] [/harddisk/volume_1/data/Songs]",
                     "/bin/chown [admin.everyone] [/harddisk/volume_1/data/Songs]"}}));
  EXPECT_EQ(owner("/harddisk"), "502:501");
  EXPECT_EQ(changes(before),
            Strings({"~/etc/netatalk/AppleVolumes.conf", "~/etc/share.info", "~/harddisk",
                     "~/harddisk/volume_1", "~/harddisk/volume_1/conf/share.info",
                     "+/harddisk/volume_1/conf/share.info.ttt", "~/harddisk/volume_1/conf/smb.conf",
                     "+/harddisk/volume_1/conf/smb.conf.ttt", "+/harddisk/volume_1/data/Songs"}));
}

TEST_F(UpdateShareTest, UnderItsNameTheSuffixIsTheCallersAndTheLineOnTheVolumeLosesIt) {
  write(kRegistry, "Docs~1=1:1:old:/docs/:staff:7\n");
  write(kOnVolume, "Docs=old:/docs/:staff:7\n");
  ShareInfo share = share_record("Docs~1", "new", "/docs/", 1);
  share.suffixed = 1;
  ASSERT_EQ(UpdateShare("Docs~1", &share), 0u);
  EXPECT_EQ(read(kRegistry), "Docs~1=1:1:new:/docs/:staff:7\n");
  EXPECT_EQ(read(kOnVolume), "Docs=new:/docs/:staff:7\n");
}

TEST_F(UpdateShareTest, ShareThatMovesLeavesTheListOfItsOldVolume) {
  mount_volume(2);
  ShareInfo share = share_record("Music", "Songs", "/Music/", 2);
  ASSERT_EQ(UpdateShare("Music", &share), 0u);
  EXPECT_EQ(read(kOnVolume), replaced(on_volume_,
                                      "Music=Songs of the family:/Music/:administrators:7,family:7,"
                                      "everyone:5\n",
                                      ""));
  EXPECT_EQ(read("/harddisk/volume_2/conf/share.info"),
            "Music=Songs:/Music/:administrators:7,family:7,everyone:5\n");
  EXPECT_EQ(mode("/harddisk/volume_2/data/Music"), 0777u);
  EXPECT_TRUE(exists("/harddisk/volume_1/data/Music"));
}

/* A removable share is renamed in no file of its own: it is there twice then. */
TEST_F(UpdateShareTest, RenamedRemovableShareKeepsItsOldLine) {
  mount_volume(3);
  write(kRemovable, "FLASH_1_1=0:3:c:/FLASH_1_1/:everyone:7\n");
  ShareInfo share = share_record("FLASH_1_9", "c", "/FLASH_1_1", 3);
  ASSERT_EQ(UpdateShare("FLASH_1_1", &share), 0u);
  EXPECT_EQ(read(kRemovable),
            "FLASH_1_1=0:3:c:/FLASH_1_1/:everyone:7\n"
            "FLASH_1_9=0:3:c:/FLASH_1_1/:everyone:7\n");
  EXPECT_FALSE(exists("/harddisk/volume_3/conf/share.info"));
  EXPECT_FALSE(exists("/harddisk/volume_3/data/FLASH_1_1"));
}

TEST_F(UpdateShareTest, RefusedBeforeAnythingIsLocked) {
  struct Case {
    const char* old_name;
    const char* new_name;
    unsigned code;
  };
  const Case cases[] = {{"", "x", 20},           {nullptr, "x", 20},
                        {"Music", "", 20},       {"none", "Music", 49},
                        {"Music", "DISK 1", 48}, {"Music", "music", 48}}; /* letter case alone */
  const Snapshot before = snapshot();
  for (const Case& c : cases) {
    ShareInfo share = share_record(c.new_name, "", "/x", 1);
    EXPECT_EQ(UpdateShare(c.old_name, &share), c.code) << c.new_name;
  }
  EXPECT_EQ(UpdateShare("Music", nullptr), 20u);
  EXPECT_EQ(changes(before), Strings());
  write("/tmp/smb.lck", "");
  ShareInfo share = share_record("Music", "", "/x", 1);
  EXPECT_EQ(UpdateShare("Music", &share), 48u);
  EXPECT_TRUE(exists("/tmp/share.lck"));
  expect_all_as_before();
}

/* The plain file /etc/share.info and AppleVolumes.conf are not among what a restore covers. */
TEST_F(UpdateShareTest, FailureRestoresTheVolumesListAndSamba) {
  const std::string renamed = replaced(registry_, "Music=", "Songs=");
  const std::string written =
      replaced(renamed, "0:1:Songs of the family:/Music/", "0:1:New:/Songs/");
  struct Case {
    const char* step;
    int failing_copy; /* 4 copies make the backup */
    unsigned code;
    const std::string& registry;
    bool afp_written;
  };
  const Case cases[] = {{"registry", 6, 4294967295u, registry_, false},
                        {"list of the volume", 8, 4294967295u, renamed, false},
                        {"section renamed", 10, 4294967295u, renamed, false},
                        {"section written", 12, 45, written, false},
                        {"line written", 14, 19, written, false},
                        {"folder", 0, 50, written, true}};
  for (const Case& c : cases) {
    SetUp();
    if (c.failing_copy != 0) {
      fail_both_copies(c.failing_copy);
    } else {
      at_sleep(2, [] { EXPECT_EQ(rename("/harddisk/volume_1/data", "/harddisk/volume_1/d"), 0); });
    }
    ShareInfo share = share_record("Songs", "New", "/Songs", 1);
    EXPECT_EQ(UpdateShare("Music", &share), c.code) << c.step;
    EXPECT_EQ(read(kRegistry), c.registry) << c.step;
    EXPECT_EQ(read(kOnVolume), on_volume_) << c.step;
    EXPECT_EQ(read(kSmb), smb_) << c.step;
    EXPECT_EQ(read(kAfp) != afp_, c.afp_written) << c.step;
    expect_no_locks();
  }
}

TEST_F(UpdateShareTest, ShareThatIsNotFoundInItsLetterCaseFailsUnchanged) {
  ShareInfo share = share_record("MUSIC", "", "/x", 1);
  EXPECT_EQ(UpdateShare("MUSIC", &share), 47u);
  expect_all_as_before();
  expect_no_locks();
}

class DelShareTest : public ShareChangesTest {};

TEST_F(DelShareTest, ShareIsGoneFromEveryFileAndItsFolderStays) {
  ASSERT_EQ(DelShare("Music"), 0u);
  expect_files(replaced(registry_,
                        registry_.substr(registry_.find("Music="),
                                         registry_.find("Projects=") - registry_.find("Music=")),
                        ""),
               replaced(on_volume_,
                        on_volume_.substr(on_volume_.find("Music="),
                                          on_volume_.find("Projects=") - on_volume_.find("Music=")),
                        ""),
               smb_.substr(0, smb_.find("[Music]")) + smb_.substr(smb_.find("[Projects]")),
               afp_.substr(0, afp_.find("\"/harddisk/volume_1/data/Music/")) +
                   afp_.substr(afp_.find("\"/harddisk/volume_1/data/Projects/")));
  const std::string temporary = "/bin/cp [-f] [/harddisk/volume_1/conf//tmp/tmpfile.XXXXXX] ";
  EXPECT_EQ(commands(),
            joined({twice(kBackUp),
                    twice({temporary + "[/etc/share.info]", temporary + "[" + kOnVolume + "]"}),
                    twice(kCopyAfp),
                    {"sleep 2"}}));
  EXPECT_TRUE(exists("/harddisk/volume_1/data/Music"));
  expect_no_locks();
}

TEST_F(DelShareTest, SuffixedNameIsCutByTwoCharactersOnTheVolume) {
  write(kRegistry, "Docs~1=1:1:c:/docs/\nDISK 1=0:1:c:/public/\n");
  write(kOnVolume, "Docs=c:/docs/\nDISK=c:/public/\n");
  ASSERT_EQ(DelShare("Docs~1"), 0u);
  EXPECT_EQ(read(kRegistry), "DISK 1=0:1:c:/public/\n");
  EXPECT_EQ(read(kOnVolume), "DISK=c:/public/\n");
  ASSERT_EQ(DelShare("DISK 1"), 0u); /* its blank is not cut */
  EXPECT_EQ(read(kOnVolume), "DISK=c:/public/\n");
}

TEST_F(DelShareTest, RemovableShareLeavesItsOwnFiles) {
  write(kRemovable, "HDD_1_1=0:4:c:/HDD_1_1/:a:7\nHDD_1_2=0:4:c:HDD_1_2\n");
  write("/etc/samba/user_smb.conf", "[HDD_1_1]\npath=x\n[HDD_1_2]\npath=y\n");
  write(kAfp,
        "\"/harddisk/volume_4/data/HDD_1_1/\" \"[HDD_1_1]\"\n"
        "\"/harddisk/volume_4/data/HDD_1_2/\" \"[HDD_1_2]\"\n");
  ASSERT_EQ(DelShare("HDD_1_1"), 0u);
  EXPECT_EQ(read(kRemovable), "HDD_1_2=0:4:c:HDD_1_2\n");
  EXPECT_EQ(read("/etc/samba/user_smb.conf"), "[HDD_1_2]\npath=y\n");
  EXPECT_EQ(read(kAfp), "\"/harddisk/volume_4/data/HDD_1_2/\" \"[HDD_1_2]\"\n");
  ASSERT_EQ(DelShare("HDD_1_2"), 0u); /* a path without slashes gets them */
  EXPECT_EQ(read(kAfp), "");
}

TEST_F(DelShareTest, ShareOnVolumeZeroHasNoListAndNoAfpLine) {
  write(kRegistry, "Old=0:0:c:/old/\n");
  ASSERT_EQ(DelShare("Old"), 0u);
  EXPECT_EQ(read(kRegistry), "");
  EXPECT_EQ(read(kAfp), afp_);
}

TEST_F(DelShareTest, Refused) {
  write("/tmp/smb.lck", "");
  const Snapshot before = snapshot();
  EXPECT_EQ(DelShare(nullptr), 20u);
  EXPECT_EQ(DelShare(""), 20u);
  EXPECT_EQ(DelShare("none"), 49u);
  EXPECT_EQ(changes(before), Strings());
  EXPECT_EQ(DelShare("Music"), 44u);
  EXPECT_EQ(changes(before), Strings({"+/tmp/share.lck"}));
}

TEST_F(DelShareTest, FailureRestoresTheVolumesListAndSamba) {
  const std::string gone =
      registry_.substr(0, registry_.find("Music=")) + registry_.substr(registry_.find("Projects="));
  struct Case {
    int failing_copy;
    unsigned code;
    const std::string& registry;
  };
  const Case cases[] = {{6, 4294967292u, registry_}, {8, 4294967292u, gone}, {10, 19, gone}};
  for (const Case& c : cases) {
    SetUp();
    fail_both_copies(c.failing_copy);
    EXPECT_EQ(DelShare("Music"), c.code) << c.failing_copy;
    expect_files(c.registry, on_volume_, smb_, afp_);
    expect_no_locks();
  }
  SetUp();
  ASSERT_EQ(remove(kOnVolume), 0); /* a volume without a list */
  EXPECT_EQ(DelShare("Music"), 21u);
  EXPECT_EQ(read(kRegistry), gone);
  expect_no_locks();
}

class DelAllShareTest : public ShareChangesTest {
 protected:
  void SetUp() override {
    ShareChangesTest::SetUp();
    write(kRegistry, "a=0:1::/a b/\nc~1=1:1::/c/\nADMIN~1=1:1::/d/\ne=0:1::/e/\n");
    for (const char* folder : {"a", "b", "c", "d", "e"}) {
      mkdir((std::string("/harddisk/volume_1/data/") + folder).c_str(), 0777);
    }
  }
};

TEST_F(DelAllShareTest, RunEndsAtTheAdministratorsShare) {
  ASSERT_EQ(DelAllShare(0), 0u);
  EXPECT_EQ(read(kRegistry), "ADMIN~1=1:1::/d/\ne=0:1::/e/\n");
  EXPECT_TRUE(exists("/harddisk/volume_1/data/c"));
}

TEST_F(DelAllShareTest, FoldersAreRemovedByTheirUnquotedPaths) {
  ASSERT_EQ(DelAllShare(1), 0u);
  Strings removals;
  for (const std::string& command : commands()) {
    if (command.rfind("/bin/rm", 0) == 0) removals.push_back(command);
  }
  EXPECT_EQ(removals, Strings({"/bin/rm [-fr] [/harddisk/volume_1/data//a] [b/]",
                               "/bin/rm [-fr] [/harddisk/volume_1/data//c/]"}));
  EXPECT_FALSE(exists("/harddisk/volume_1/data/a"));
  EXPECT_TRUE(exists("/harddisk/volume_1/data/d"));
}

TEST_F(DelAllShareTest, FirstShareThatCanNotBeDeletedEndsTheRun) {
  fail_both_copies(20); /* the AFP file for the second share */
  EXPECT_EQ(DelAllShare(1), 19u);
  EXPECT_TRUE(exists("/harddisk/volume_1/data/c"));
  EXPECT_FALSE(exists("/harddisk/volume_1/data/a"));
  ASSERT_EQ(system("rm /etc/share.info /etc/win_share.info; ln -s /no/file /etc/win_share.info"),
            0);
  EXPECT_EQ(DelAllShare(0), 21u);
}

TEST_F(DelAllShareTest, SambaLosesTheSectionOfEachListedShare) {
  write(kSmb, "[global]\nx=1\n[a]\ny=1\n[other]\nz=1\n[ADMIN~1]\n[e]\nlast=1\n");
  ASSERT_EQ(DelAllShareFromSMB(), 0u);
  EXPECT_EQ(read(kSmb), "[global]\nx=1\n[other]\nz=1\n");
  EXPECT_EQ(commands(), Strings());
  ASSERT_EQ(remove(kSmb), 0);
  EXPECT_EQ(DelAllShareFromSMB(), 44u);
}

}  // namespace
