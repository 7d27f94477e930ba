// NFS: the switch, /etc/exports, the entries of /etc/nfs.info.
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstring>

#include "filesharing/shares.h"
#include "tests/device_test.h"

namespace {

constexpr char kSettings[] = "/etc/CGI_ds.conf";
constexpr char kExports[] = "/etc/exports";
constexpr char kEntries[] = "/etc/nfs.info";
constexpr char kCopy[] = "/bin/cp [-f] [/tmp/tmpfile.XXXXXX] [/etc/exports]";
constexpr char kReread[] = "/sbin/exportfs [-r]";

class NfsTest : public DeviceTest {};

TEST_F(NfsTest, OnlyAWholeYesIsOn) {
  const std::pair<const char*, unsigned> cases[] = {
      {"[network]\nnfs=yes\n", 1}, {"[network]\nnfs=yes!\n", 0}, {"[network]\nnfs=YES\n", 0},
      {"[network]\nnfs=\n", 0},    {"[network]\n", 0},           {"nfs=yes\n", 0}};
  for (const auto& [text, expected] : cases) {
    unsigned enabled = 7;
    write(kSettings, text);
    EXPECT_EQ(ReadNFSConf(&enabled), 0);
    EXPECT_EQ(enabled, expected) << text;
  }
  unlink(kSettings);
  unsigned enabled = 7;
  EXPECT_EQ(ReadNFSConf(&enabled), 0);
  EXPECT_EQ(enabled, 0u);
  EXPECT_EQ(ReadNFSConf(nullptr), -1);
}

TEST_F(NfsTest, SwitchingOnStartsTheDaemonsBehindTheCallersBack) {
  const unsigned on = 2;
  at_sleep(1, [] {
    struct sigaction action {};
    sigaction(SIGCHLD, nullptr, &action);
    write("/tmp/seen", action.sa_handler == SIG_IGN && getsid(0) != getpid() ? "yes" : "no");
  });
  EXPECT_EQ(SaveNFSConf(&on), 0);
  wait_for_background();
  EXPECT_EQ(IsNFSEnabled(), 1);
  EXPECT_EQ(commands(), Strings({"sleep 1", "/sbin/portmap", "/sbin/nfsd", "/sbin/mountd",
                                 "/sbin/exportfs [-a]"}));
  EXPECT_EQ(read("/tmp/seen"), "yes");
}

TEST_F(NfsTest, SwitchingOffLeavesTheDaemonsRunning) {
  const unsigned off = 0;
  EXPECT_EQ(SaveNFSConf(&off), 0);
  EXPECT_EQ(IsNFSEnabled(), 0);
  EXPECT_EQ(commands(), Strings({"/sbin/exportfs [-au]"}));

  clear_commands();
  EXPECT_EQ(SaveNFSConf(nullptr), -1);
  unlink(kSettings);
  mkdir(kSettings, 0755);
  EXPECT_EQ(SaveNFSConf(&off), -1);
  const unsigned on = 1;
  EXPECT_EQ(SaveNFSConf(&on), -1);
  wait_for_background();
  EXPECT_EQ(commands(), Strings());
}

TEST_F(NfsTest, SharesOfEveryoneAreExportedInTheOrderOfTheRegistry) {
  write("/etc/share.info",
        "a=0:1:c:/a b/:administrators:7,everyone:5\nb=0:2:c:/b/:staff:7\n"
        "c=0:5:c:/:everyone:7,everyone:5\nd=0:1:c:/d/:Everyone:7\ne=0:1:c:/e/:everyone:0\n");
  const Snapshot before = snapshot();
  EXPECT_EQ(UpdateNFSConf(nullptr), 0u);
  EXPECT_EQ(read(kExports),
            "/harddisk/volume_1/data/a b/ *(ro,async,all_squash,anonuid=501,anongid=501)\n"
            "/harddisk/volume_5/data/ *(rw,async,all_squash,anonuid=501,anongid=501)\n"
            "/harddisk/volume_1/data/e/ *(rw,async,all_squash,anonuid=501,anongid=501)\n");
  EXPECT_EQ(commands(), Strings({"sync", kCopy, kReread}));
  EXPECT_EQ(changes(before), Strings({std::string("~") + kExports}));

  ShareGroup everyone{.name = "everyone", .rights = 5, .next = nullptr};
  ShareInfo list{};
  std::strcpy(list.path, "/x/");
  list.volume = 2;
  list.groups = &everyone;
  EXPECT_EQ(UpdateNFSConf(&list), 0u);
  EXPECT_EQ(read(kExports),
            "/harddisk/volume_2/data/x/ *(ro,async,all_squash,anonuid=501,anongid=501)\n");
}

TEST_F(NfsTest, FieldsOfTheRecordMayBeFilledToTheirLastByte) {
  ShareGroup full{};
  std::memset(full.name, 'g', sizeof full.name);
  ShareGroup everyone{.name = "everyone", .rights = 7, .next = nullptr};
  full.next = &everyone;
  ShareInfo share{};
  std::memset(share.path, 'p', sizeof share.path);
  share.volume = 1;
  share.groups = &full;
  EXPECT_EQ(UpdateNFSConf(&share), 0u);
  EXPECT_EQ(read(kExports), "/harddisk/volume_1/data" + std::string(sizeof share.path, 'p') +
                                " *(rw,async,all_squash,anonuid=501,anongid=501)\n");
}

TEST_F(NfsTest, FailuresLeaveTheOldExports) {
  const std::string old = "/srv *(ro)\n";
  write(kExports, old);
  const Snapshot before = snapshot();
  fail_command("cp", 1);
  EXPECT_EQ(UpdateNFSConf(nullptr), FSH_FAILED);
  EXPECT_EQ(commands(), Strings({"sync", kCopy}));
  EXPECT_EQ(changes(before), Strings());
  // A page whose SIGCHLD is ignored can not tell how the copy went.
  EXPECT_EQ(in_process([] {
              std::signal(SIGCHLD, SIG_IGN);
              return UpdateNFSConf(nullptr);
            }),
            0u);
  write(kExports, old);
  ASSERT_EQ(system("mount -t tmpfs -o ro none /tmp"), 0);
  EXPECT_EQ(UpdateNFSConf(nullptr), 22u);
  ASSERT_EQ(system("umount /tmp"), 0);
  write("/etc/share.info", "");
  write("/etc/win_share.info", "");
  EXPECT_EQ(UpdateNFSConf(nullptr), FSH_FAILED);
  EXPECT_EQ(read(kExports), old);
}

TEST_F(NfsTest, EntriesAreReadFromTheirSection) {
  const std::string long_name(21, 'n');
  write(kEntries, "before=1.2.3.4:8:1\n[Other]\n[NFS]x\na=192.168.1.0:24:3\n" + long_name +
                      "=no entry\nb=::\r\nc=255.255.255.255.255:33:-1:x\n[End]\nd=:1:1\n");
  NfsShare* head = nullptr;
  ASSERT_EQ(ReadNFSShares(&head), 0u);
  std::string text;
  for (const NfsShare* entry = head; entry != nullptr; entry = entry->next) {
    text += std::string(entry->name) + '=' + entry->host + '/' + std::to_string(entry->mask) + '/' +
            std::to_string(entry->flags) + ' ';
  }
  FreeNFSShList(head);
  EXPECT_EQ(text, "a=192.168.1.0/24/3 b=/0/0 c=255.255.255.255./33/-1 ");

  NfsShare entry{};
  std::strcpy(entry.name, "c");
  entry.next = &entry;
  write(kEntries, "[NFS]\nc= 10.0.0.1:8:4\nbad=10.0.0.1:8\nempty=\n");
  EXPECT_EQ(ReadNFSShare(&entry), 0u);
  EXPECT_STREQ(entry.host, "10.0.0.1");
  EXPECT_EQ(entry.mask, 8);
  EXPECT_EQ(entry.flags, 4);
  EXPECT_EQ(entry.next, nullptr);
  const std::pair<const char*, unsigned> names[] = {{"bad", 24}, {"empty", 24}, {"x", FSH_FAILED}};
  for (const auto& [name, code] : names) {
    std::strcpy(entry.name, name);
    EXPECT_EQ(ReadNFSShare(&entry), code) << name;
  }
}

TEST_F(NfsTest, LineThatIsNoEntrySpoilsTheList) {
  NfsShare* head = nullptr;
  for (const char* line : {"", "a", "a=1.2.3.4", "a=1.2.3.4:1"}) {
    write(kEntries, std::string("[NFS]\nok=:1:1\n") + line + "\n");
    EXPECT_EQ(ReadNFSShares(&head), FSH_FAILED) << line;
    EXPECT_EQ(head, nullptr);
  }
  write(kEntries, "ok=:1:1\n");
  EXPECT_EQ(ReadNFSShares(&head), 0u);
  EXPECT_EQ(head, nullptr);
  unlink(kEntries);
  NfsShare entry{};
  EXPECT_EQ(ReadNFSShares(&head), 21u);
  EXPECT_EQ(ReadNFSShare(&entry), 21u);
  EXPECT_EQ(ReadNFSShares(nullptr), 20u);
  EXPECT_EQ(ReadNFSShare(nullptr), 20u);
}

TEST_F(NfsTest, EntriesAreTidiedAndChecked) {
  struct Case {
    const char* host;
    int mask;
    int result;
    const char* tidied;
  };
  const Case cases[] = {
      {" 192.168. 1.5 ", 32, 0, "192.168.1.5"},
      {"0.0.0.0", 0, 0, ""},
      {"...", 32, 0, ""},
      {"   ", 24, 0, ""},
      {"1.2.3.400", 24, -2, "1.2.3.400"},
      {"host", 99, -2, "host"},
      {"10.0.0.1", 33, -3, "10.0.0.1"},
      {"", -1, -3, ""},
  };
  for (const Case& c : cases) {
    NfsShare entry{};
    std::strcpy(entry.host, c.host);
    entry.mask = c.mask;
    EXPECT_EQ(CheckNFSShare(&entry), c.result) << c.host;
    EXPECT_STREQ(entry.host, c.tidied);
  }
  EXPECT_EQ(CheckNFSShare(nullptr), -1);
  NfsShare full{};
  std::memset(full.host, '1', sizeof full.host);  // a page filled it to the end
  EXPECT_EQ(CheckNFSShare(&full), -2);
  EXPECT_EQ(full.host, std::string(16, '1'));
}

TEST_F(NfsTest, ChangesOfEntriesAreTakenAndForgotten) {
  const Snapshot before = snapshot();
  NfsShare entry{};
  EXPECT_EQ(AddNFSShare(&entry), 0);
  EXPECT_EQ(DelNFSShare(&entry), 0);
  EXPECT_EQ(AddNFSShare(nullptr), -1);
  EXPECT_EQ(DelNFSShare(nullptr), -1);
  EXPECT_EQ(UpdateNFSShare(), 0);
  EXPECT_EQ(ResetNFSShares(58), 58u);
  EXPECT_EQ(changes(before), Strings());
}

}  // namespace
