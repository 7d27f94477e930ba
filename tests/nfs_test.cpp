// NFS: the switch, /etc/exports, the entries of /etc/nfs.info. What a failing step leaves stands in
// docs/faults.md.
#include <unistd.h>

#include <csignal>

#include "tests/share_records.h"

namespace {

constexpr char kSettings[] = "/etc/CGI_ds.conf";
constexpr char kExports[] = "/etc/exports";
constexpr char kEntries[] = "/etc/nfs.info";

class NfsTest : public DeviceTest {};

std::string text_of(const NfsShare& entry) {
  return std::string(entry.name) + '=' + entry.host + '/' + std::to_string(entry.mask) + '/' +
         std::to_string(entry.flags) + ' ';
}

TEST_F(NfsTest, OnlyAWholeYesIsOn) {
  unsigned enabled = 7;
  for (const std::string value : {"", "nfs=\n", "nfs=YES\n", "nfs=yes!\n", "nfs=yes\n"}) {
    write(kSettings, "[network]\n" + value);
    EXPECT_EQ(ReadNFSConf(&enabled), 0);
    EXPECT_EQ(enabled, value == "nfs=yes\n") << value;
  }
}

TEST_F(NfsTest, SwitchingOnStartsTheDaemonsBehindTheCallersBackAndOffLeavesThemRunning) {
  at_sleep(1, [] {
    struct sigaction action {};
    sigaction(SIGCHLD, nullptr, &action);
    write("/tmp/seen", action.sa_handler == SIG_IGN && getsid(0) != getpid() ? "yes" : "no");
  });
  const unsigned on = 2, off = 0;
  EXPECT_EQ(SaveNFSConf(&on), 0);
  wait_for_background();
  EXPECT_EQ(IsNFSEnabled(), 1);
  EXPECT_EQ(read("/tmp/seen"), "yes");
  EXPECT_EQ(SaveNFSConf(&off), 0);
  EXPECT_EQ(IsNFSEnabled(), 0);
  EXPECT_EQ(commands(), Strings({"sleep 1", "/sbin/portmap", "/sbin/nfsd", "/sbin/mountd",
                                 "/sbin/exportfs [-a]", "/sbin/exportfs [-au]"}));
}

TEST_F(NfsTest, SharesOfEveryoneAreExportedInTheOrderOfTheRegistryOrOfTheList) {
  write(kRegistry,
        "a=0:1:c:/a b/:administrators:7,everyone:5\nb=0:2:c:/b/:staff:7\n"
        "c=0:5:c:/:everyone:7,everyone:5\nd=0:1:c:/d/:Everyone:7\ne=0:1:c:/e/:everyone:0\n");
  const Snapshot before = snapshot();
  EXPECT_EQ(UpdateNFSConf(nullptr), 0u);
  EXPECT_EQ(read(kExports),
            "/harddisk/volume_1/data/a b/ *(ro,async,all_squash,anonuid=501,anongid=501)\n"
            "/harddisk/volume_5/data/ *(rw,async,all_squash,anonuid=501,anongid=501)\n"
            "/harddisk/volume_1/data/e/ *(rw,async,all_squash,anonuid=501,anongid=501)\n");
  EXPECT_EQ(commands(), Strings({"sync", "/bin/cp [-f] [/tmp/tmpfile.XXXXXX] [/etc/exports]",
                                 "/sbin/exportfs [-r]"}));
  EXPECT_EQ(changes(before), Strings({std::string("~") + kExports}));

  ShareGroup everyone{.name = "everyone", .rights = 7, .next = nullptr}, full{};
  full.next = &everyone;
  ShareInfo share = share_record("s", "", "", 1);
  share.groups = &full;
  memset(full.name, 'g', sizeof full.name); /* no end where a field is filled */
  memset(share.path, 'p', sizeof share.path);
  EXPECT_EQ(UpdateNFSConf(&share), 0u);
  EXPECT_EQ(read(kExports), "/harddisk/volume_1/data" + std::string(sizeof share.path, 'p') +
                                " *(rw,async,all_squash,anonuid=501,anongid=501)\n");
}

// Unlike other rewrites: a page whose SIGCHLD is ignored can not tell how the copy went.
TEST_F(NfsTest, FailedCopyCountsUnlessTheCallerIgnoresItsChildren) {
  fail_command("cp", 0);
  EXPECT_EQ(UpdateNFSConf(nullptr), FSH_FAILED);
  EXPECT_EQ(in_process([] {
              std::signal(SIGCHLD, SIG_IGN);
              return UpdateNFSConf(nullptr);
            }),
            0u);
}

TEST_F(NfsTest, EntriesAreReadFromTheirSectionAndALineThatIsNoneSpoilsTheList) {
  const std::string entries = "before=1.2.3.4:8:1\n[Other]\n[NFS]x\na=192.168.1.0:24:3\n" +
                              std::string(21, 'n') + "=no entry\nb=::\r\n" +
                              "c=255.255.255.255.255:33:-1:x\n";
  write(kEntries, entries + "[End]\nd=:1:1\n");
  NfsShare* head = nullptr;
  ASSERT_EQ(ReadNFSShares(&head), 0u);
  std::string text;
  for (const NfsShare* entry = head; entry != nullptr; entry = entry->next) text += text_of(*entry);
  FreeNFSShList(head);
  EXPECT_EQ(text, "a=192.168.1.0/24/3 b=/0/0 c=255.255.255.255./33/-1 ");
  for (const char* line : {"", "a", "a=1.2.3.4", "a=1.2.3.4:1"}) {
    write(kEntries, entries + line + "\n");
    EXPECT_EQ(ReadNFSShares(&head), FSH_FAILED) << line;
    EXPECT_EQ(head, nullptr);
  }
}

TEST_F(NfsTest, OneEntryIsReadByItsName) {
  write(kEntries, "[NFS]\nc= 10.0.0.1:8:4\nbad=10.0.0.1:8\nempty=\n");
  NfsShare entry{};
  const auto code_for = [&](const char* name) {
    strcpy(entry.name, name);
    return ReadNFSShare(&entry);
  };
  EXPECT_EQ(code_for("x"), FSH_FAILED);
  EXPECT_EQ(code_for("bad"), 24u);
  EXPECT_EQ(code_for("empty"), 24u);
  entry.next = &entry;
  EXPECT_EQ(code_for("c"), 0u);
  EXPECT_EQ(text_of(entry), "c=10.0.0.1/8/4 ");
  EXPECT_EQ(entry.next, nullptr);
}

TEST_F(NfsTest, EntriesAreTidiedAndChecked) {
  const struct {
    std::string host;
    int mask;
    int result;
    std::string tidied;
  } cases[] = {
      {" 192.168. 1.5 ", 32, 0, "192.168.1.5"},
      {"0.0.0.0", 0, 0, ""},
      {"...", 32, 0, ""},
      {"1.2.3.400", 24, -2, "1.2.3.400"},
      {"host", 99, -2, "host"},
      {"10.0.0.1", 33, -3, "10.0.0.1"},
      {"", -1, -3, ""},
      {std::string(17, '1'), 0, -2, std::string(16, '1')}, /* a page filled it to the end */
  };
  for (const auto& c : cases) {
    NfsShare entry{};
    memcpy(entry.host, c.host.data(), c.host.size());
    entry.mask = c.mask;
    EXPECT_EQ(CheckNFSShare(&entry), c.result) << c.host;
    EXPECT_EQ(entry.host, c.tidied);
  }
}

}  // namespace
