/* The real Samba serves what the library wrote, from the first account to the last removal. Runs in
 * a device with real programs. */
#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "filesharing/groups.h"
#include "filesharing/shares.h"
#include "filesharing/users.h"
#include "tests/device_test.h"

namespace {

constexpr char kSmbd[] = "/usr/sbin/smbd";
constexpr char kDenied[] = "NT_STATUS_ACCESS_DENIED";

bool is_installed(const char* program) {
  return std::filesystem::exists(program) && !std::filesystem::is_symlink(program);
}

/* Status and output of a command line. */
Outcome run_line(const std::string& line) {
  Outcome outcome{};
  FILE* output = popen((line + " 2>&1").c_str(), "r");
  std::array<char, 4096> piece{};
  while (std::size_t length = std::fread(piece.data(), 1, piece.size(), output)) {
    outcome.out.append(piece.data(), length);
  }
  outcome.status = WEXITSTATUS(pclose(output));
  return outcome;
}

/* "user%password" does a command of smbclient(1) in a share. */
Outcome smb(const std::string& user, const std::string& share, const std::string& command) {
  return run_line("/usr/bin/smbclient -U '" + user + "' //127.0.0.1/" + share + " -c '" + command +
                  "'");
}

bool answers() {
  const int client = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in server{};
  server.sin_family = AF_INET;
  server.sin_port = htons(445);
  server.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const bool connected =
      connect(client, reinterpret_cast<const sockaddr*>(&server), sizeof server) == 0;
  close(client);
  return connected;
}

class SambaSharesTest : public DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    if (!is_installed(kSmbd) || !is_installed("/usr/bin/smbclient")) {
      GTEST_SKIP() << "Samba is not installed here (packages samba, smbclient)";
    }
  }

  void TearDown() override {
    if (smbd_ > 0) {
      EXPECT_EQ(kill(-smbd_, SIGTERM), 0);
      EXPECT_EQ(waitpid(smbd_, nullptr, 0), smbd_);
    }
    (void)umount2("/harddisk/volume_3/data/FLASH_1_1", MNT_DETACH); /* of the tests that mount it */
    DeviceTest::TearDown();
  }

  void start_samba() {
    smbd_ = fork();
    if (smbd_ == 0) {
      (void)setpgid(0, 0);
      execl(kSmbd, kSmbd, "-F", "--no-process-group", nullptr);
      _exit(127);
    }
    (void)setpgid(smbd_, smbd_);
    constexpr int kTries = 500;
    int tries = 0;
    while (!answers() && ++tries < kTries) (void)poll(nullptr, 0, 20);
    ASSERT_LT(tries, kTries) << read("/var/log/samba.log");
  }

  /* Samba tells by the second whether a file has changed since it was read. The library waits that
   * long; in a test that is over at once, so the time of the files is moved on instead. */
  static void let_samba_notice() {
    static int seconds = 0;
    seconds += 2;
    for (const char* file : {"/etc/samba/smb.conf", "/etc/samba/user_smb.conf"}) {
      std::filesystem::last_write_time(
          file, std::filesystem::file_time_type::clock::now() + std::chrono::seconds(seconds));
    }
  }

  static void add_user(const char* name, const char* password, const char* group) {
    UserInfo user{};
    std::strcpy(user.name, name);
    std::strcpy(user.password, password);
    ASSERT_EQ(AddUser(&user), 0u) << name;
    /* Each page is a process of its own, and each adds to one group. */
    ASSERT_EQ(in_process([&] { return AddUserToGroups(name, &group, 1); }), 0u) << name;
  }

  static void add_share(const char* name, const char* path) {
    ShareInfo share{};
    std::strcpy(share.name, name);
    std::strcpy(share.path, path);
    std::strcpy(share.comment, "What the band recorded");
    share.volume = 1;
    ASSERT_EQ(AddShare(&share), 0u);
  }

 private:
  pid_t smbd_ = -1;
};

TEST_F(SambaSharesTest, GroupsWriteReadOrStayOutAsTheirAccessSays) {
  ASSERT_EQ(AddGroup("band"), 0u);
  ASSERT_EQ(AddGroup("fans"), 0u);
  add_user("dave", "drum and bass", "band");
  add_user("fay", "sings-along", "fans");
  add_user("eve", "on the fence", "staff");
  add_share("Tapes", "/tapes");
  ASSERT_EQ(AddGroupToShare("band", "Tapes", 0), 0u);
  ASSERT_EQ(AddGroupToShare("fans", "Tapes", 1), 0u);

  const Outcome checked = run_line("/usr/bin/testparm -s");
  EXPECT_EQ(checked.status, 0);
  for (const char* complaint : {"nknown parameter", "ERROR", "WARNING", "Ignoring"}) {
    EXPECT_EQ(checked.out.find(complaint), std::string::npos) << checked.out;
  }

  start_samba();
  write("/tmp/take1", "one two three");
  const std::string dave = "dave%drum and bass";
  const std::string fay = "fay%sings-along";
  const std::string eve = "eve%on the fence";

  EXPECT_EQ(smb(dave, "Tapes", "put /tmp/take1 take1").status, 0);
  EXPECT_EQ(read("/harddisk/volume_1/data/tapes/take1"), "one two three");
  EXPECT_EQ(smb(fay, "Tapes", "get take1 /tmp/copy").status, 0);
  EXPECT_EQ(read("/tmp/copy"), "one two three");

  const Outcome read_only = smb(fay, "Tapes", "put /tmp/take1 take2");
  EXPECT_NE(read_only.status, 0);
  EXPECT_NE(read_only.out.find(kDenied), std::string::npos) << read_only.out;
  const Outcome stranger = smb(eve, "Tapes", "ls");
  EXPECT_NE(stranger.status, 0);
  EXPECT_NE(stranger.out.find("tree connect failed: " + std::string(kDenied)), std::string::npos)
      << stranger.out;
  const Outcome forged = smb("dave%drum-and-bass", "Tapes", "ls");
  EXPECT_NE(forged.out.find("NT_STATUS_LOGON_FAILURE"), std::string::npos) << forged.out;
  EXPECT_FALSE(exists("/harddisk/volume_1/data/tapes/take2"));

  /* A group that is taken off the share, and the share itself. */
  ASSERT_EQ(DelGroupFromShare("fans", "Tapes"), 0u);
  let_samba_notice();
  EXPECT_NE(smb(fay, "Tapes", "ls").out.find(kDenied), std::string::npos);
  EXPECT_EQ(smb(dave, "Tapes", "put /tmp/take1 take3").status, 0);
  ASSERT_EQ(DelShare("Tapes"), 0u);
  let_samba_notice();
  EXPECT_NE(smb(dave, "Tapes", "ls").out.find("NT_STATUS_BAD_NETWORK_NAME"), std::string::npos);
  EXPECT_TRUE(exists("/harddisk/volume_1/data/tapes/take3"));
}

TEST_F(SambaSharesTest, DiskThatIsMountedReadOnlyIsServedSo) {
  const std::string disk = "/harddisk/volume_3/data/FLASH_1_1";
  ASSERT_TRUE(std::filesystem::create_directories(disk));
  ASSERT_EQ(mount("stick", disk.c_str(), "tmpfs", 0, "mode=777"), 0);
  write(disk + "/photo", "sunset");
  ASSERT_EQ(mount(nullptr, disk.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
  ASSERT_EQ(AddWinShares("FLASH", 0), 0);
  start_samba();

  const std::string alice = "alice%sesame42";
  EXPECT_EQ(smb(alice, "FLASH_1_1", "get photo /tmp/photo").status, 0);
  EXPECT_EQ(read("/tmp/photo"), "sunset");
  EXPECT_NE(smb(alice, "FLASH_1_1", "put /tmp/photo x").status, 0);

  ASSERT_EQ(DelWinShares("FLASH", 0, 1), 0);
  let_samba_notice();
  EXPECT_NE(smb(alice, "FLASH_1_1", "ls").out.find("NT_STATUS_BAD_NETWORK_NAME"),
            std::string::npos);
}

}  // namespace
