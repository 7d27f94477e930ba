/* The tunnel for the management pages: when it runs, and where it leads. */
#include <csignal>
#include <filesystem>

#include "filesharing/services.h"
#include "tests/device_test.h"
#include "tests/process_state.h"

namespace {

namespace fs = std::filesystem;

constexpr char kSettings[] = "/etc/CGI_ds.conf";
constexpr char kStunnel[] = "/etc/stunnel.conf";

class HttpsTest : public DeviceTest {};

/* It is told before it starts. */
TEST_F(HttpsTest, TunnelLeadsToThePortOfTheWebServer) {
  const std::pair<const char*, const char*> cases[] = {
      {"port=8080\n", "8080"}, {"", "80"}, {"port=123456789\n", "12345678"}, {"port=\n", ""}};
  for (const auto& [line, connect] : cases) {
    write(kSettings, std::string("[network]\nhttps=yes\n") + line);
    write(kStunnel, "; ours\ncert = /etc/stunnel.pem\nconnect=1\naccept=443");
    fs::remove("/tmp/told");
    at_sleep(2, [] { fs::copy_file(kStunnel, "/tmp/told"); });
    EXPECT_EQ(ResetHttps(), 0);
    wait_for_background();
    EXPECT_EQ(read("/tmp/told"),
              std::string("; ours\ncert = /etc/stunnel.pem\nconnect=") + connect + "\naccept=443");
  }
}

TEST_F(HttpsTest, StepsComeInOrderInAProcessOfItsOwn) {
  write(kSettings, "[network]\nport=8080\nhttps=yes\n");
  at_sleep(1, note_process_state("/tmp/state"));
  (void)signal(SIGCHLD, SIG_IGN);
  EXPECT_EQ(ResetHttps(), 0);
  EXPECT_EQ(signal(SIGCHLD, SIG_DFL), SIG_DFL) << "the caller's own action";
  wait_for_background();
  EXPECT_EQ(commands(), Strings({"sleep 10", "/bin/killall [stunnel]", "sleep 4",
                                 "/usr/sbin/stunnel [/etc/stunnel.conf]"}));
  EXPECT_EQ(read("/tmp/state"), "folder /, umask 0, session own, SIGCHLD default, 0-63 closed");
}

TEST_F(HttpsTest, AnythingButYesOnlyStopsTheTunnel) {
  write(kSettings, "[network]\nport=8080\nhttps=yess\n");
  const Snapshot before = snapshot();
  EXPECT_EQ(ResetHttps(), 0);
  wait_for_background();
  EXPECT_EQ(commands(), Strings({"sleep 10", "/bin/killall [stunnel]"}));
  EXPECT_EQ(changes(before), Strings());
}

TEST_F(HttpsTest, MissingSettingsStartNothing) {
  const long before = open_descriptors();
  write(kSettings, "[network]\nport=8080\n[media]\nhttps=yes\n");
  EXPECT_EQ(ResetHttps(), -1);
  EXPECT_EQ(open_descriptors(), before + 1) << "the settings file stays open";
  wait_for_background();
  EXPECT_EQ(commands(), Strings());
}

}  // namespace
