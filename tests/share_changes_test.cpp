/* Adding, updating and deleting shares: every file that carries a share, and the commands in their
 * order. What a failing step leaves stands in docs/faults.md. */
#include <sys/stat.h>

#include <filesystem>
#include <regex>

#include "tests/account_commands.h"
#include "tests/share_records.h"

namespace {

const Strings kBackedUp = {"share.info", "smb.conf"};
constexpr char kSmbLink[] = "/etc/samba/smb.conf"; /* as the commands name it */

/* The text without what stands from `from` up to `to`. */
std::string without(const std::string& text, const std::string& from, const std::string& to) {
  return text.substr(0, text.find(from)) + text.substr(text.find(to));
}

class ShareChangesTest : public ShareTest {};

TEST_F(ShareChangesTest, NewShareStandsInEveryFileAndFoldersAboveTheLastSlashAreOpenToAll) {
  const Strings before = files();
  ShareInfo share = share_record("Video", "Films", "/Video/Old", 1);
  share.suffixed = 3; /* a new share has none */
  ASSERT_EQ(AddShare(&share), 0u);
  EXPECT_EQ(files(),
            Strings({before[0] + "Video=0:1:Films:/Video/Old/:administrators:7\n",
                     before[1] + "Video=Films:/Video/Old/:administrators:7\n",
                     before[2] + "[Video]\nvalid users=@\"administrators\"\ncomment=Films\n"
                                 "path=/harddisk/volume_1/data/Video/Old/\n"
                                 "read only=yes\nwrite list=@\"administrators\"\n",
                     before[3] + "\"/harddisk/volume_1/data/Video/Old/\" \"[Video]\"  "
                                 "rwlist:@\"administrators\" allow:@\"administrators\"\n"}));
  EXPECT_EQ(commands(), joined({{"/bin/mkdir [-m] [775] [-p] [/harddisk/volume_1/data/Video/Old]",
                                 "/bin/chown [admin.everyone] [/harddisk/volume_1/data/Video/Old]"},
                                replaced(kSmbLink, 2),
                                {"sleep 2"},
                                replaced(kAfp, 2),
                                {"sleep 2"}}));
  expect_no_locks();
  for (const char* folder : {"/harddisk", "/harddisk/volume_1", "/harddisk/volume_1/data",
                             "/harddisk/volume_1/data/Video"}) {
    EXPECT_EQ(mode(folder), 0777u) << folder;
    EXPECT_EQ(owner(folder), "502:501") << folder;
  }
}

TEST_F(ShareChangesTest, NewPathIsTakenAsTranslatedOnlyWhenNoLetterCaseChanged) {
  const std::string registry = read(kRegistry);
  const struct {
    const char* given;
    std::string kept;
    const char* owner = "502:501"; /* of each folder above a slash */
  } cases[] = {
      {"//Music///Old/", "/Music/Old/"},
      {"/music//Newer/", "/music//Newer/"},            /* beside /Music */
      {"/a \"$(b)`c\\/", "/a \"$(b)`c\\/", "500:501"}, /* made, but not found by the walk */
  };
  for (const auto& c : cases) {
    ShareInfo share = share_record("s", "", c.given, 1);
    ASSERT_EQ(AddShare(&share), 0u) << c.given;
    EXPECT_EQ(share.path, c.kept);
    EXPECT_EQ(owner("/harddisk/volume_1/data" + c.kept), c.owner) << c.kept;
    EXPECT_EQ(read(kRegistry), registry + "s=0:1::" + c.kept + ":administrators:7\n");
    ASSERT_EQ(DelShare("s"), 0u);
  }
}

/* No backup is taken, so a failure brings back what an earlier operation left. A share that can not
 * be registered is not offered either. */
TEST_F(ShareChangesTest, FailedAddingRestoresTheBackupOfAnEarlierOperation) {
  const struct {
    const char* name;
    const char* path;
    const char* unwritable; /* a folder opens to be read like a file */
    unsigned code;
  } cases[] = {{"Again", "/Music", "/tmp/none", 56},
               {"Video", "/Video", kRegistry, FSH_FAILED},
               {"HDD_1_1", "/Video", kRemovable, FSH_FAILED}};
  for (const auto& c : cases) {
    SetUp();
    std::filesystem::remove(c.unwritable);
    std::filesystem::create_directory(c.unwritable);
    write("/harddisk/volume_1/conf/share.info.ttt", "old=list:/\n");
    write("/harddisk/volume_1/conf/smb.conf.ttt", "[old]\n");
    const Snapshot before = snapshot();
    ShareInfo share = share_record(c.name, "", c.path, 1);
    EXPECT_EQ(AddShare(&share), c.code);
    EXPECT_EQ(changes(before), Strings({"~/harddisk/volume_1/conf/share.info",
                                        "~/harddisk/volume_1/conf/smb.conf"}));
    EXPECT_EQ(read(kOnVolume) + read(kSmb), "old=list:/\n[old]\n");
    EXPECT_EQ(commands(), restore_of(kBackedUp));
  }
}

TEST_F(ShareChangesTest, NameOnTheVolumeIsTheOneTheVolumeKnows) {
  const struct {
    std::string name;
    int suffixed;
    const char* path;
    std::string on_volume;
  } cases[] = {
      {std::string(20, 'n'), 0, "/x", std::string(20, 'n') + "=c:/x/"},
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
    for (const char* file : {kRegistry, kOnVolume}) write(file, "");
    ShareInfo share = share_record(c.name.c_str(), "c", c.path, 1);
    share.name[sizeof share.name - 1] = 'n'; /* no end where the name fills its field */
    share.suffixed = c.suffixed;
    EXPECT_EQ(AddShareWithGroup(&share), 0u);
    EXPECT_EQ(read(kOnVolume), c.on_volume + "\n");
    EXPECT_TRUE(read(kRegistry).starts_with(c.name + "=" + std::to_string(c.suffixed) + ":1:c:"));
  }
}

TEST_F(ShareChangesTest, RenamedShareKeepsItsAccessAndLeavesItsAfpLine) {
  Strings expected = files();
  for (size_t i = 0; i < 3; ++i) {
    expected[i] = std::regex_replace(expected[i], std::regex("Songs of the family"), "New");
    expected[i] = std::regex_replace(expected[i], std::regex("Music"), "Songs");
  }
  expected[3] +=
      "\"/harddisk/volume_1/data/Songs/\" \"[Songs]\"  rwlist:@\"administrators\",@\"family\" "
      "allow:@\"administrators\",@\"family\",@\"everyone\"\n";
  ShareInfo share = share_record("Songs", "New", "/Songs", 1);
  share.suffixed = 1;
  ASSERT_EQ(UpdateShare("Music", &share), 0u);
  EXPECT_EQ(share.suffixed, 0);
  EXPECT_EQ(files(), expected);
  EXPECT_EQ(commands(),
            joined({backup_of(kBackedUp),
                    replaced(kRegistry, 2),
                    replaced(kOnVolume, 2),
                    replaced(kSmbLink, 4),
                    {"sleep 2"},
                    replaced(kAfp, 2),
                    {"sleep 2", "/bin/mkdir [-m] [775] [-p] [/harddisk/volume_1/data/Songs]",
                     "/bin/chown [admin.everyone] [/harddisk/volume_1/data/Songs]"}}));
  expect_no_locks();
}

TEST_F(ShareChangesTest, ShareThatMovesLeavesTheListOfItsOldVolumeAndItsFolder) {
  mount_volume(2);
  const std::string list = without(read(kOnVolume), "Music=", "Projects=");
  ShareInfo share = share_record("Music", "Songs", "/Music/", 2);
  share.suffixed = 1; /* it stays the caller's without another name */
  ASSERT_EQ(UpdateShare("Music", &share), 0u);
  EXPECT_NE(read(kRegistry).find("Music=1:2:Songs:/Music/:"), std::string::npos);
  EXPECT_EQ(read(kOnVolume), list);
  EXPECT_EQ(read("/harddisk/volume_2/conf/share.info"),
            "Music=Songs:/Music/:administrators:7,family:7,everyone:5\n");
  EXPECT_TRUE(exists("/harddisk/volume_1/data/Music") && exists("/harddisk/volume_2/data/Music"));
}

/* A removable share is renamed in no file of its own: it is there twice then. */
TEST_F(ShareChangesTest, RemovableShareHasNoFolderAndNoLineOnItsVolumeAndKeepsItsOldName) {
  mount_volume(3);
  const std::string line = "HDD_1_1=0:3:c:/HDD_1_1/:administrators:7\n";
  ShareInfo share = share_record("HDD_1_1", "c", "/HDD_1_1", 3);
  ASSERT_EQ(AddShare(&share), 0u);
  EXPECT_EQ(read(kRemovable), line);
  strcpy(share.name, "HDD_1_2");
  ASSERT_EQ(UpdateShare("HDD_1_1", &share), 0u);
  EXPECT_EQ(read(kRemovable), line + "HDD_1_2=0:3:c:/HDD_1_1/:administrators:7\n");
  EXPECT_FALSE(exists("/harddisk/volume_3/conf/share.info"));
  EXPECT_FALSE(exists("/harddisk/volume_3/data/HDD_1_1"));
  share.volume = 4;
  ASSERT_EQ(UpdateShare("HDD_1_2", &share), 0u);
  EXPECT_TRUE(std::filesystem::is_empty("/harddisk/volume_1/conf/tmp"));

  ASSERT_EQ(DelShare("HDD_1_2"), 0u);
  EXPECT_EQ(read(kRemovable), line);
}

TEST_F(ShareChangesTest, DeletedShareIsGoneFromEveryFileAndItsFolderStays) {
  const Strings before = files();
  ASSERT_EQ(DelShare("Music"), 0u);
  EXPECT_EQ(files(), Strings({without(before[0], "Music=", "Projects="),
                              without(before[1], "Music=", "Projects="),
                              without(before[2], "[Music]", "[Projects]"),
                              without(before[3], "\"/harddisk/volume_1/data/Music/",
                                      "\"/harddisk/volume_1/data/Projects/")}));
  EXPECT_EQ(commands(), joined({backup_of(kBackedUp),
                                replaced(kRegistry, 2),
                                replaced(kOnVolume, 2),
                                replaced(kAfp, 2),
                                {"sleep 2"}}));
  EXPECT_TRUE(exists("/harddisk/volume_1/data/Music"));
  expect_no_locks();
}

TEST_F(ShareChangesTest, DeletedNameOnTheVolumeIsCutByTheSuffixAloneAndVolumeZeroIsNone) {
  write(kRegistry, "Docs~1=1:1:c:/docs/\nDISK 1=0:1:c:public\nOld=0:0:c:/Music/\n");
  write(kOnVolume, "Docs=c:/docs/\nDISK=c:/public/\nOld=c:/\n");
  const std::string of_no_volume = "\"/harddisk/volume_0/data/Music/\"\n";
  write(kAfp, "\"/harddisk/volume_1/data/public/\"\n" + of_no_volume); /* slashes are added */
  for (const char* name : {"Docs~1", "Old", "DISK 1"}) ASSERT_EQ(DelShare(name), 0u);
  EXPECT_EQ(read(kRegistry) + read(kOnVolume), "DISK=c:/public/\nOld=c:/\n"); /* no blank is cut */
  EXPECT_EQ(read(kAfp), of_no_volume);
}

TEST_F(ShareChangesTest, NameIsTakenInAnyLetterCase) {
  ShareInfo music = share_record("mUSIC", "", "/Other", 1);
  EXPECT_EQ(AddShare(&music), 48u);
  EXPECT_EQ(UpdateShare("Music", &music), 48u);
}

TEST_F(ShareChangesTest, DeletingAllEndsAtTheAdministratorsShareAndTakesPathsUnquoted) {
  write(kRegistry, "a=0:1::/a b/\nc~1=1:1::/c/\nADMIN~1=1:1::/d/\ne=0:1::/e/\n");
  for (const std::string folder : {"a", "c", "d"}) {
    mkdir(("/harddisk/volume_1/data/" + folder).c_str(), 0777);
  }
  ASSERT_EQ(DelAllShare(1), 0u);
  EXPECT_EQ(read(kRegistry), "ADMIN~1=1:1::/d/\ne=0:1::/e/\n");
  EXPECT_FALSE(exists("/harddisk/volume_1/data/a") || exists("/harddisk/volume_1/data/c"));
  EXPECT_TRUE(exists("/harddisk/volume_1/data/d"));
  write(kRegistry, "Music=0:1::/Music/\n");
  ASSERT_EQ(DelAllShare(0), 0u);
  EXPECT_TRUE(exists("/harddisk/volume_1/data/Music"));
}

TEST_F(ShareChangesTest, SambaLosesTheSectionOfEachListedShare) {
  write(kRegistry, "a=0:1::/a/\nADMIN=0:1::/d/\ne=0:1::/e/\n");
  write(kSmb, "[global]\nx=1\n[a]\ny=1\n[other]\nz=1\n[ADMIN]\n[e]\nlast=1\n");
  ASSERT_EQ(DelAllShareFromSMB(), 0u);
  EXPECT_EQ(read(kSmb), "[global]\nx=1\n[other]\nz=1\n");
}

}  // namespace
