/* Adding, updating and deleting shares: every file that carries a share, the commands in their
 * order, and what a failure leaves. */
#include <sys/stat.h>

#include "tests/share_records.h"

namespace {

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

/* The text without what stands from `from` up to `to`. */
std::string without(const std::string& text, const std::string& from, const std::string& to) {
  return text.substr(0, text.find(from)) + text.substr(text.find(to));
}

class ShareChangesTest : public ShareTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    registry_ = read(kRegistry);
    on_volume_ = read(kOnVolume);
    smb_ = read(kSmb);
    afp_ = read(kAfp);
  }

  /* Of the files that a backup covers. */
  static Strings copies(const std::string& from, const std::string& to) {
    Strings all;
    for (const std::string file : {kOnVolume, kSmb}) {
      all.push_back("/bin/cp [-f] [" + file + from + "] [" + file + to + "]");
    }
    return twice(all);
  }

  std::string registry_, on_volume_, smb_, afp_;
};

TEST_F(ShareChangesTest, NewShareStandsInEveryFileAndFoldersAboveTheLastSlashAreOpenToAll) {
  ShareInfo share = share_record("Video", "Films", "/Video/Old", 1);
  share.suffixed = 3; /* a new share has none */
  ASSERT_EQ(AddShare(&share), 0u);
  EXPECT_EQ(files(), Strings({registry_ + "Video=0:1:Films:/Video/Old/:administrators:7\n",
                              on_volume_ + "Video=Films:/Video/Old/:administrators:7\n",
                              smb_ + section("Video", "Films", "/Video/Old/"),
                              afp_ + afp("Video", "/Video/Old/")}));
  EXPECT_EQ(commands(), joined({{"/bin/mkdir [-m] [775] [-p] [/harddisk/volume_1/data/Video/Old]",
                                 "/bin/chown [admin.everyone] [/harddisk/volume_1/data/Video/Old]"},
                                twice({copy_to("/etc/samba/smb.conf")}),
                                {"sleep 2"},
                                twice({copy_to(kAfp)}),
                                {"sleep 2"}}));
  expect_no_locks();
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

TEST_F(ShareChangesTest, NewPathIsTakenAsTranslatedOnlyWhenNoLetterCaseChanged) {
  const std::pair<const char*, std::string> cases[] = {
      {"//Music///Old/", "/Music/Old/"},
      {"/Music/New/", "/Music/New/"},
      {"/music//Newer/", "/music//Newer/"}, /* beside /Music */
  };
  for (const auto& [given, kept] : cases) {
    ShareInfo share = share_record("s", "", given, 1);
    ASSERT_EQ(AddShare(&share), 0u) << given;
    EXPECT_EQ(share.path, kept);
    EXPECT_TRUE(exists("/harddisk/volume_1/data" + kept)) << kept;
    EXPECT_EQ(read(kRegistry), registry_ + "s=0:1::" + kept + ":administrators:7\n");
    ASSERT_EQ(DelShare("s"), 0u);
  }
}

TEST_F(ShareChangesTest, CharactersOfTheShellReachTheFolderAsTheyAre) {
  const std::string name = "a \"$(b)`c\\";
  ShareInfo share = share_record("s", "", ("/" + name + "/").c_str(), 1);
  ASSERT_EQ(AddShare(&share), 0u);
  EXPECT_EQ(mode("/harddisk/volume_1/data/" + name), 0775u); /* the walk does not find it */
  EXPECT_EQ(commands()[1], "/bin/chown [admin.everyone] [/harddisk/volume_1/data/a \"$(b)`c\\/]");
}

/* No backup is taken, so a failure brings back what an earlier operation left. */
TEST_F(ShareChangesTest, FailedAddingRestoresTheBackupOfAnEarlierOperation) {
  write("/harddisk/volume_1/conf/share.info.ttt", "old=list:/\n");
  write("/harddisk/volume_1/conf/smb.conf.ttt", "[old]\n");
  ShareInfo share = share_record("Again", "", "/Music", 1);
  EXPECT_EQ(AddShare(&share), 56u);
  EXPECT_EQ(files(), Strings({registry_, "old=list:/\n", "[old]\n", afp_}));
  EXPECT_EQ(commands(), copies(".ttt", ""));
  expect_no_locks();
}

TEST_F(ShareChangesTest, TextsThatFillTheirFieldsDoNotRunIntoTheNext) {
  ShareInfo share = share_record("", "", "/x/", 1);
  memset(share.name, 'n', sizeof share.name);
  memset(share.comment, 'c', sizeof share.comment);
  ASSERT_EQ(AddShare(&share), 0u);
  const std::string name(20, 'n'), comment(48, 'c');
  EXPECT_EQ(read(kRegistry), registry_ + name + "=0:1:" + comment + ":/x/:administrators:7\n");
  EXPECT_EQ(read(kSmb), smb_ + section(name, comment, "/x/"));
}

TEST_F(ShareChangesTest, NameOnTheVolumeIsTheOneTheVolumeKnows) {
  const struct {
    const char* name;
    int suffixed;
    const char* path;
    const char* on_volume;
  } cases[] = {
      {"a~b~c", 1, "/x", "a~b=c:/x/"},
      {"My Docs 1", 0, "/x", "My Docs 1=c:/x/"},
      {"My DISK 2", 0, "/", "My DISK=c:/"},
      {"DISK 3", 0, "/public/", "DISK 3=c:/public/"},
      {"DISK 1", 0, "/Public", "DISK 1=c:/Public/"},
      {"DISK 1~3", 1, "/public", "DISK=c:/public/"},
      {"DISK1", 0, "/public/", "DISK1=c:/public/"},
      {"Docs", 12, "/docs", "Docs=:c:/docs/"},
  };
  for (const auto& c : cases) {
    write(kRegistry, "");
    write(kOnVolume, "");
    ShareInfo share = share_record(c.name, "c", c.path, 1);
    share.suffixed = c.suffixed;
    EXPECT_EQ(AddShareWithGroup(&share), 0u);
    EXPECT_EQ(read(kOnVolume), std::string(c.on_volume) + "\n") << c.name;
    const std::string line = std::string(c.name) + "=" + std::to_string(c.suffixed) + ":1:c:";
    EXPECT_TRUE(read(kRegistry).starts_with(line)) << c.name;
  }
}

TEST_F(ShareChangesTest, RenamedShareKeepsItsAccessAndLeavesItsAfpLine) {
  ShareInfo share = share_record("Songs", "New", "/Songs", 1);
  share.suffixed = 1;
  ASSERT_EQ(UpdateShare("Music", &share), 0u);
  EXPECT_EQ(share.suffixed, 0);
  EXPECT_EQ(share.groups, nullptr);
  const std::string old_value = "Songs of the family:/Music/";
  EXPECT_EQ(files(),
            Strings({replaced(replaced(registry_, "Music=", "Songs="), old_value, "New:/Songs/"),
                     replaced(replaced(on_volume_, "Music=", "Songs="), old_value, "New:/Songs/"),
                     replaced(replaced(replaced(smb_, "[Music]", "[Songs]"), "/Music/", "/Songs/"),
                              "Songs of the family", "New"),
                     afp_ + "\"/harddisk/volume_1/data/Songs/\" \"[Songs]\"  "
                            "rwlist:@\"administrators\",@\"family\" "
                            "allow:@\"administrators\",@\"family\",@\"everyone\"\n"}));
  const std::string smb = copy_to("/etc/samba/smb.conf");
  EXPECT_EQ(commands(),
            joined({copies("", ".ttt"),
                    twice({copy_to(kRegistry), copy_to(kOnVolume), smb, smb}),
                    {"sleep 2"},
                    twice({copy_to(kAfp)}),
                    {"sleep 2", "/bin/mkdir [-m] [775] [-p] [/harddisk/volume_1/data/Songs]",
                     "/bin/chown [admin.everyone] [/harddisk/volume_1/data/Songs]"}}));
  EXPECT_EQ(owner("/harddisk"), "502:501");
  expect_no_locks();
}

TEST_F(ShareChangesTest, ShareThatMovesLeavesTheListOfItsOldVolume) {
  mount_volume(2);
  ShareInfo share = share_record("Music", "Songs", "/Music/", 2);
  share.suffixed = 1; /* it stays the caller's without another name */
  ASSERT_EQ(UpdateShare("Music", &share), 0u);
  EXPECT_NE(read(kRegistry).find("Music=1:2:Songs:/Music/:"), std::string::npos);
  EXPECT_EQ(read(kOnVolume), without(on_volume_, "Music=", "Projects="));
  EXPECT_EQ(read("/harddisk/volume_2/conf/share.info"),
            "Music=Songs:/Music/:administrators:7,family:7,everyone:5\n");
  EXPECT_EQ(mode("/harddisk/volume_2/data/Music"), 0777u);
  EXPECT_TRUE(exists("/harddisk/volume_1/data/Music"));
}

/* A removable share is renamed in no file of its own: it is there twice then. */
TEST_F(ShareChangesTest, RemovableShareHasNoFolderAndNoLineOnItsVolumeAndKeepsItsOldName) {
  mount_volume(3);
  ShareInfo share = share_record("HDD_1_1", "c", "/HDD_1_1", 3);
  ASSERT_EQ(AddShare(&share), 0u);
  EXPECT_EQ(read(kRemovable), "HDD_1_1=0:3:c:/HDD_1_1/:administrators:7\n");
  strcpy(share.name, "HDD_1_2");
  ASSERT_EQ(UpdateShare("HDD_1_1", &share), 0u);
  EXPECT_EQ(read(kRemovable),
            "HDD_1_1=0:3:c:/HDD_1_1/:administrators:7\nHDD_1_2=0:3:c:/HDD_1_1/:administrators:7\n");
  EXPECT_FALSE(exists("/harddisk/volume_3/conf/share.info"));
  EXPECT_FALSE(exists("/harddisk/volume_3/data/HDD_1_1"));

  write("/etc/samba/user_smb.conf", "[HDD_1_1]\npath=x\n[HDD_1_2]\npath=y\n");
  write(kAfp, "\"/harddisk/volume_4/data/HDD_1_1/\"\n\"/harddisk/volume_4/data/HDD_1_2/\"\n");
  write(kRemovable, "HDD_1_1=0:4:c:/HDD_1_1/:a:7\nHDD_1_2=0:4:c:HDD_1_2\n");
  ASSERT_EQ(DelShare("HDD_1_1"), 0u);
  EXPECT_EQ(read(kRemovable), "HDD_1_2=0:4:c:HDD_1_2\n");
  EXPECT_EQ(read("/etc/samba/user_smb.conf"), "[HDD_1_2]\npath=y\n");
  EXPECT_EQ(read(kAfp), "\"/harddisk/volume_4/data/HDD_1_2/\"\n");
  ASSERT_EQ(DelShare("HDD_1_2"), 0u); /* a path without slashes gets them */
  EXPECT_EQ(read(kAfp), "");
}

TEST_F(ShareChangesTest,
       DeletedShareIsGoneFromEveryFileAndTheTimeMachineShareFromTheAdvertisements) {
  write("/etc/CGI_ds.conf",
        replaced(read("/etc/CGI_ds.conf"), "apple_tm_sh=", "apple_tm_sh=Projects"));
  ASSERT_EQ(DelShare("Music"), 0u);
  EXPECT_EQ(files(), Strings({without(registry_, "Music=", "Projects="),
                              without(on_volume_, "Music=", "Projects="),
                              without(smb_, "[Music]", "[Projects]"),
                              without(afp_, "\"/harddisk/volume_1/data/Music/",
                                      "\"/harddisk/volume_1/data/Projects/")}));
  EXPECT_EQ(commands(), joined({copies("", ".ttt"),
                                twice({copy_to(kRegistry), copy_to(kOnVolume), copy_to(kAfp)}),
                                {"sleep 2"}}));
  EXPECT_TRUE(exists("/harddisk/volume_1/data/Music"));
  expect_no_locks();
  ASSERT_EQ(DelShare("Projects"), 0u);
  EXPECT_EQ(commands().back(), "/sbin/mDNSResponder");
}

TEST_F(ShareChangesTest, DeletedNameOnTheVolumeIsCutByTheSuffixAloneAndVolumeZeroIsNone) {
  write(kRegistry, "Docs~1=1:1:c:/docs/\nDISK 1=0:1:c:/public/\nOld=0:0:c:/Music/\n");
  write(kOnVolume, "Docs=c:/docs/\nDISK=c:/public/\nOld=c:/\n");
  write(kAfp, "\"/harddisk/volume_0/data/Music/\"\n");
  ASSERT_EQ(DelShare("Docs~1"), 0u);
  ASSERT_EQ(DelShare("Old"), 0u);
  ASSERT_EQ(DelShare("DISK 1"), 0u); /* its blank is not cut */
  EXPECT_EQ(files(),
            Strings({"", "DISK=c:/public/\nOld=c:/\n", without(smb_, "[DISK 1]", "[Music]"),
                     "\"/harddisk/volume_0/data/Music/\"\n"}));
}

/* A restore does not cover the plain file /etc/share.info and AppleVolumes.conf; without a backup
 * there is nothing to restore. */
TEST_F(ShareChangesTest, WhatAFailureOfEachStepLeaves) {
  const std::string added = registry_ + "s=0:1::/New/:administrators:7\n";
  const std::string on_volume = on_volume_ + "s=:/New/:administrators:7\n";
  const std::string renamed = replaced(registry_, "Music=", "s=");
  const std::string updated = replaced(renamed, "Songs of the family:/Music/", ":/New/");
  const std::string updated_line =
      replaced(replaced(afp("s", "/New/"), " allow", ",@\"family\" allow"), "\n",
               ",@\"family\",@\"everyone\"\n");
  const std::string gone = without(registry_, "Music=", "Projects=");
  const auto add = [](ShareInfo& share) { return AddShare(&share); };
  const auto update = [](ShareInfo& share) { return UpdateShare("Music", &share); };
  const auto del = [](ShareInfo&) { return DelShare("Music"); };
  const struct {
    const char* step;
    unsigned (*change)(ShareInfo& share);
    int failing_copy; /* the first 4 copies are the backup, but when adding */
    unsigned code;
    Strings files;
  } cases[] = {
      {"add: folder", add, 0, 50, {added, on_volume, smb_, afp_}},
      {"add: section", add, 2, 45, {added, on_volume, smb_, afp_}},
      {"add: line", add, 4, 19, {added, on_volume, smb_ + section("s", "", "/New/"), afp_}},
      {"update: registry", update, 6, 4294967295u, {registry_, on_volume_, smb_, afp_}},
      {"update: volume's list", update, 8, 4294967295u, {renamed, on_volume_, smb_, afp_}},
      {"update: name of section", update, 10, 4294967295u, {renamed, on_volume_, smb_, afp_}},
      {"update: section", update, 12, 45, {updated, on_volume_, smb_, afp_}},
      {"update: line", update, 14, 19, {updated, on_volume_, smb_, afp_}},
      {"update: folder", update, 0, 50, {updated, on_volume_, smb_, afp_ + updated_line}},
      {"delete: registry", del, 6, 4294967292u, {registry_, on_volume_, smb_, afp_}},
      {"delete: volume's list", del, 8, 4294967292u, {gone, on_volume_, smb_, afp_}},
      {"delete: line", del, 10, 19, {gone, on_volume_, smb_, afp_}},
  };
  for (const auto& c : cases) {
    SetUp();
    if (c.failing_copy != 0) fail_both_copies(c.failing_copy);
    if (c.code == 50) {
      ASSERT_EQ(rename("/harddisk/volume_1/data", "/harddisk/volume_1/no_data"), 0);
    }
    ShareInfo share = share_record("s", "", "/New", 1);
    EXPECT_EQ(c.change(share), c.code) << c.step;
    EXPECT_EQ(files(), c.files) << c.step;
    expect_no_locks();
  }
  SetUp();
  ASSERT_EQ(remove(kOnVolume), 0); /* a volume without a list */
  EXPECT_EQ(DelShare("Music"), 21u);
  EXPECT_EQ(read(kRegistry), gone);
  ShareInfo share = share_record("s", "", "/New", 1);
  EXPECT_EQ(UpdateShare("projects", &share), 47u); /* is not found in this letter case */
  expect_no_locks();
}

TEST_F(ShareChangesTest, RefusedBeforeAnythingIsLockedAndALockTakenBeforeABusyOneStays) {
  ShareInfo music = share_record("mUSIC", "", "/Other", 1), video = share_record("Video");
  ShareInfo disk = share_record("DISK 1"), unnamed = share_record("");
  const struct {
    const char* call;
    std::function<unsigned()> run;
    unsigned code;
    bool locks = false;
  } cases[] = {
      {"add nothing", [] { return AddShare(nullptr); }, 20},
      {"write nothing", [] { return AddShareWithGroup(nullptr); }, 20},
      {"write a share without a name", [&] { return AddShareWithGroup(&unnamed); }, 20},
      {"add a share that is there", [&] { return AddShare(&music); }, 48},
      {"add", [&] { return AddShare(&video); }, 50, true},
      {"update no name", [&] { return UpdateShare("", &video); }, 20},
      {"update to no name", [&] { return UpdateShare("Music", &unnamed); }, 20},
      {"update to nothing", [] { return UpdateShare("Music", nullptr); }, 20},
      {"update an unknown share", [&] { return UpdateShare("none", &disk); }, 49},
      {"update to a taken name", [&] { return UpdateShare("Music", &disk); }, 48},
      {"change letter case alone", [&] { return UpdateShare("Music", &music); }, 48},
      {"update", [&] { return UpdateShare("Music", &video); }, 48, true},
      {"delete no name", [] { return DelShare(""); }, 20},
      {"delete an unknown share", [] { return DelShare("none"); }, 49},
      {"delete", [] { return DelShare("Music"); }, 44, true},
  };
  write("/tmp/smb.lck", "");
  for (const auto& c : cases) {
    const Snapshot before = snapshot();
    EXPECT_EQ(c.run(), c.code) << c.call;
    EXPECT_EQ(changes(before), c.locks ? Strings({"+/tmp/share.lck"}) : Strings()) << c.call;
    remove("/tmp/share.lck");
  }
  EXPECT_EQ(commands(), Strings());
}

TEST_F(ShareChangesTest, DeletingAllEndsAtTheAdministratorsShareAndTakesPathsUnquoted) {
  const auto expect_deleted = [&](int remove_folders, unsigned code) {
    write(kRegistry, "a=0:1::/a b/\nc~1=1:1::/c/\nADMIN~1=1:1::/d/\ne=0:1::/e/\n");
    for (const char* folder : {"a", "c", "d", "e"}) {
      mkdir((std::string("/harddisk/volume_1/data/") + folder).c_str(), 0777);
    }
    ASSERT_EQ(DelAllShare(remove_folders), code);
    EXPECT_EQ(read(kRegistry), "ADMIN~1=1:1::/d/\ne=0:1::/e/\n");
    EXPECT_EQ(exists("/harddisk/volume_1/data/a"), remove_folders == 0);
    EXPECT_EQ(exists("/harddisk/volume_1/data/c"), remove_folders == 0 || code != 0);
  };
  expect_deleted(0, 0);
  expect_deleted(1, 0);
  Strings removals;
  for (const std::string& command : commands()) {
    if (command.starts_with("/bin/rm")) removals.push_back(command);
  }
  EXPECT_EQ(removals, Strings({"/bin/rm [-fr] [/harddisk/volume_1/data//a] [b/]",
                               "/bin/rm [-fr] [/harddisk/volume_1/data//c/]"}));
  fail_both_copies(20); /* the AFP file for the second share */
  expect_deleted(1, 19);
}

TEST_F(ShareChangesTest, SambaLosesTheSectionOfEachListedShare) {
  write(kRegistry, "a=0:1::/a/\nADMIN=0:1::/d/\ne=0:1::/e/\n");
  write(kSmb, "[global]\nx=1\n[a]\ny=1\n[other]\nz=1\n[ADMIN]\n[e]\nlast=1\n");
  ASSERT_EQ(DelAllShareFromSMB(), 0u);
  EXPECT_EQ(read(kSmb), "[global]\nx=1\n[other]\nz=1\n");
  EXPECT_EQ(commands(), Strings());
  ASSERT_EQ(remove(kSmb), 0);
  EXPECT_EQ(DelAllShareFromSMB(), 44u);
}

}  // namespace
