// The users of the photo album and the folders that each may see.
#include <linux/capability.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>

#include "filesharing/album.h"
#include "tests/device_test.h"

namespace {

constexpr char kUsers[] = "/etc/album_user.conf";
constexpr char kLock[] = "/tmp/album.lck";
constexpr char kCopy[] =
    "/bin/cp [-f] [/harddisk/volume_1/conf//tmp/tmpfile.XXXXXX] [/etc/album_user.conf]";
constexpr char kChanged[] = "~/etc/album_user.conf";

constexpr char kTwoUsers[] =
    "[anna]\ninformation=Anna A:x:1:2\nalbum=1:/a\n\nnonsense\nkey=value\nalbum=2:/b:c\n\n"
    "[Bert]x\r\ninformation=B::-3:4:5\nalbum=0:/a\n\nother\n";

class AlbumUsersTest : public DeviceTest {
 protected:
  static std::string text(const AlbumUserInfo& r) {
    return std::string(r.name) + ":" + r.information1 + ":" + r.information2 + ":" +
           std::to_string(r.number1) + ":" + std::to_string(r.number2);
  }
  static AlbumUserInfo user(const char* name, const char* information1 = "one",
                            const char* information2 = "two") {
    AlbumUserInfo record{};
    std::strcpy(record.name, name);
    std::strcpy(record.information1, information1);
    std::strcpy(record.information2, information2);
    record.number1 = -1;
    record.number2 = 7;
    return record;
  }
};

TEST_F(AlbumUsersTest, UsersAreFoundInAnyLetterCase) {
  write(kUsers, kTwoUsers);
  EXPECT_EQ(NumOfAlbumUser(), 2);
  const std::pair<const char*, int> names[] = {{"anna", 1}, {"ANNA", 1},  {"bert", 1},
                                               {"ann", 0},  {"annab", 0}, {"", 0}};
  for (const auto& [name, exists] : names) {
    EXPECT_EQ(AlbumUserExist(name), exists);
  }
  AlbumUserInfo record = user("BERT");
  EXPECT_EQ(GetAlbumUserInfo(&record), 0);
  EXPECT_EQ(text(record), "BERT:B::-3:4");
  record = user("carl");
  EXPECT_EQ(GetAlbumUserInfo(&record), -1);
  write(kUsers, "[carl]\ninformation=a:b:3\n");
  EXPECT_EQ(GetAlbumUserInfo(&record), -1);
  EXPECT_STREQ(record.information1, "one");
  unlink(kUsers);
  EXPECT_EQ(GetAlbumUserInfo(&record), 0) << "and the record stays as it was";
  EXPECT_STREQ(record.information1, "one");
}

/* For the functions that read lines and for those that go through the profile library. */
TEST_F(AlbumUsersTest, OneRuleTellsWhoAUserIs) {
  const std::tuple<std::string, const char*, bool> cases[] = {
      {"[\u00c4rzte]", "\u00e4RZTE", true},
      {"[ \tanna ]x", "Anna", true},
      {"[anna]", " anna\t", true},
      {"[an]na]", "an", true},
      {"[an]na]", "an]na", false},
      {"[anna", "anna", false},
      {" [anna]", "anna", false},
      {"[]", "", false},
      {"[ ]", " ", false},
      {"[anna" + std::string(1, '\0') + "]", "anna", false},
  };
  for (const auto& [header, name, is_user] : cases) {
    SCOPED_TRACE(header + " " + name);
    write(kUsers, header + "\ninformation=a:b:1:2\nalbum=3:/f\n");
    AlbumUserInfo record = user(name);
    EXPECT_EQ(AlbumUserExist(name) != 0, is_user);
    EXPECT_EQ(GetAlbumUserInfo(&record) == 0, is_user);
    EXPECT_EQ(RightOfFolderOnAlbumUser(name, "/f"), is_user ? 3 : 0);
    EXPECT_EQ(AddFolderToAlbumUser(name, "/n", 4), 0);
    EXPECT_EQ(read(kUsers),
              header + "\ninformation=a:b:1:2\nalbum=3:/f\n" + (is_user ? "album=4:/n\n" : ""));
    EXPECT_EQ(UpdateAlbumUser(name, &record), is_user ? 0 : -1);
    EXPECT_EQ(is_user && AddAlbumUser(&record) == 0, false);
    EXPECT_EQ(DelAlbumUser(name), is_user ? 0 : -1);
    EXPECT_EQ(read(kUsers).empty(), is_user);
  }
}

TEST_F(AlbumUsersTest, NameThatCouldNotBeFoundAgainIsRefused) {
  write(kUsers, kTwoUsers);
  for (const char* name : {"", " \t", "a]b", "a\nb"}) {
    const AlbumUserInfo record = user(name);
    EXPECT_EQ(AddAlbumUser(&record), -1) << name;
    EXPECT_EQ(UpdateAlbumUser("anna", &record), -1) << name;
  }
  EXPECT_EQ(read(kUsers), kTwoUsers);
}

TEST_F(AlbumUsersTest, ListHoldsTheUsersWithInformation) {
  const std::string long_text(200, 't');
  write(kUsers,
        "album=1:/stray\n[ a\t]\ninformation=1:2:3:4\ninformation=x\n[empty]\nalbum=1:/\n"
        "[nobody\ninformation=1\n[" +
            long_text + "]\ninformation=" + long_text + ":" + long_text + ":5:6:7\n");
  AlbumUserInfo* head = nullptr;
  EXPECT_EQ(GetAllAlbumUsers(&head), 0);
  Strings users;
  for (const AlbumUserInfo* one = head; one != nullptr; one = one->next)
    users.push_back(text(*one));
  EXPECT_EQ(users, Strings({"a:1:2:3:4", std::string(20, 't') + ":" + std::string(50, 't') + ":" +
                                             std::string(15, 't') + ":5:6"}));
  FreeAlbumUserList(head);

  write(kUsers, "[a]\ninformation=1:2:3:4\n[b]\ninformation=1:2:3\n");
  EXPECT_EQ(GetAllAlbumUsers(&head), -1);
  EXPECT_EQ(head, nullptr);
}

TEST_F(AlbumUsersTest, UsersAreAddedChangedAndDeleted) {
  write(kUsers, "[anna]\ninformation=a:b:1:2");
  AlbumUserInfo record = user("Carl");
  EXPECT_EQ(AddAlbumUser(&record), 0);
  EXPECT_EQ(read(kUsers), "[anna]\ninformation=a:b:1:2\n[Carl]\ninformation=one:two:-1:7\n");
  record = user("carl");
  EXPECT_EQ(AddAlbumUser(&record), -1);
  record = user("Anna", "A", "");
  EXPECT_EQ(UpdateAlbumUser("nobody", &record), -1);
  EXPECT_EQ(UpdateAlbumUser("anna", &record), 0);
  EXPECT_EQ(read(kUsers), "[Anna]\ninformation=A::-1:7\n[Carl]\ninformation=one:two:-1:7\n");
  EXPECT_EQ(DelAlbumUser("ANNA"), 0);
  EXPECT_EQ(read(kUsers), "[Carl]\ninformation=one:two:-1:7\n");
  EXPECT_EQ(DelAlbumUser("Anna"), -1);
  EXPECT_FALSE(exists(kLock));
}

TEST_F(AlbumUsersTest, FoldersAreAddedAndRemovedWithinTheSection) {
  const std::string anna =
      "[anna]\ninformation=Anna A:x:1:2\nalbum=1:/a\nkey=value\nalbum=2:/b:c\n";
  const std::string whole_anna =
      "[anna]\ninformation=Anna A:x:1:2\nalbum=1:/a\nnonsense\nkey=value\nalbum=2:/b:c\n";
  const std::string bert = "[Bert]x\r\ninformation=B::-3:4:5\nalbum=0:/a\n";
  struct Case {
    std::function<int()> change;
    std::string expected;
  };
  const Case cases[] = {
      {[] { return AddFolderToAlbumUser("ANNA", "/n", 3); },
       anna + "album=3:/n\n" + bert + "other\n"},
      {[] { return AddFolderToAlbumUser("anna", "/b:c", 3); }, /* which keeps its right */
       anna + bert + "other\n"},
      {[] { return AddFolderToAlbumUser("bert", "/n", -1); }, whole_anna + bert + "album=-1:/n\n"},
      {[] { return AddFolderToAlbumUser("carl", "/n", 1); }, whole_anna + bert + "other\n"},
      {[] { return DelFolderFromAlbumUser("anna", "/a"); },
       "[anna]\ninformation=Anna A:x:1:2\nalbum=2:/b:c\n" + bert + "other\n"},
  };
  for (const Case& c : cases) {
    write(kUsers, kTwoUsers);
    EXPECT_EQ(c.change(), 0);
    EXPECT_EQ(read(kUsers), c.expected);
  }
  EXPECT_EQ(commands(), Strings(std::size(cases), kCopy));
}

TEST_F(AlbumUsersTest, LockIsWaitedForAndAtLastReleasedByWhoeverWentOnWithoutIt) {
  for (const auto& [released, waits] : {std::pair(3, 3), {99, 14}}) {
    write(kUsers, kTwoUsers);
    write(kLock, "");
    clear_commands();
    at_sleep(released, [] { unlink(kLock); });
    EXPECT_EQ(DelAlbumUser("anna"), 0);
    EXPECT_EQ(commands(), Strings(static_cast<size_t>(waits), "sleep 2"));
    EXPECT_FALSE(exists(kLock));
  }
}

TEST_F(AlbumUsersTest, RightOfTheFolderInTheFirstSectionOfTheUser) {
  write(kUsers, kTwoUsers);
  EXPECT_EQ(RightOfFolderOnAlbumUser("ANNA", "/b:c"), 2);
  EXPECT_EQ(RightOfFolderOnAlbumUser("anna", "/a"), 1);
  EXPECT_EQ(RightOfFolderOnAlbumUser("anna", "/"), 0);
  EXPECT_EQ(RightOfFolderOnAlbumUser("bert", "/a"), 0);
  EXPECT_EQ(RightOfFolderOnAlbumUser("admin", "/x"), 2);
  EXPECT_EQ(RightOfFolderOnAlbumUser("Admin", "/x"), 0);
}

TEST_F(AlbumUsersTest, FoldersThatAreGoneAreDropped) {
  write("/etc/share.info", "Photos=0:1:c:/pics/:administrators:7\n");
  write("/etc/CGI_ds.conf", "[photo_album]\nalbum_path=/Photos/2024\n");
  ASSERT_EQ(system("mkdir -p /harddisk/volume_1/data/pics/2024/sub/kept /tmp/here"), 0);
  write(kUsers,
        "[anna]\r\ninformation=x\n\nalbum=1:kept\r\nalbum=2:gone\nalbum=nothing\n album=1:gone\n"
        "album=1:here\nalbum=1:../sub");
  ASSERT_EQ(chdir("/tmp"), 0);
  const Snapshot before = snapshot();
  EXPECT_EQ(UpdateAlbumUserConf("//./sub/x/../"), 0);
  EXPECT_EQ(read(kUsers),
            "[anna]\r\ninformation=x\n\nalbum=1:kept\r\n album=1:gone\nalbum=1:../sub");
  EXPECT_EQ(changes(before), Strings({kChanged}));
  EXPECT_EQ(commands(), Strings({kCopy}));
  EXPECT_EQ(access("here", F_OK), 0) << "back in the caller's folder";
}

/* What stops root, too, on a server elsewhere in the network. */
void obey_modes_of_folders() {
  __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
  __user_cap_data_struct data[_LINUX_CAPABILITY_U32S_3];
  ASSERT_EQ(syscall(SYS_capget, &header, data), 0);
  data[0].effective &= ~(1U << CAP_DAC_OVERRIDE | 1U << CAP_DAC_READ_SEARCH);
  ASSERT_EQ(syscall(SYS_capset, &header, data), 0);
}

TEST_F(AlbumUsersTest, FolderIsNotLeftWithoutAWayBack) {
  write("/etc/share.info", "Photos=0:1:c:/pics/:administrators:7\n");
  write("/etc/CGI_ds.conf", "[photo_album]\nalbum_path=/Photos\n");
  ASSERT_EQ(system("mkdir -p /harddisk/volume_1/data/pics /tmp/here"), 0);
  const std::string gone = "[anna]\nalbum=1:gone\n";
  for (const auto& [mode, code, left] :
       {std::tuple(0311, 0u, std::string("[anna]\n")), {0600, FSH_FAILED, gone}}) {
    write(kUsers, gone);
    ASSERT_EQ(chmod("/tmp/here", static_cast<mode_t>(mode)), 0);
    EXPECT_EQ(in_process([] {
                EXPECT_EQ(chdir("/tmp/here"), 0);
                obey_modes_of_folders();
                const auto result = static_cast<unsigned>(UpdateAlbumUserConf(""));
                return std::filesystem::current_path() == "/tmp/here" ? result : 99u;
              }),
              code);
    EXPECT_EQ(read(kUsers), left);
    EXPECT_FALSE(exists(kLock));
  }
}

}  // namespace
