/* The FTP service: its settings, the three files that it is in, and the restart of inetd. */
#include <csignal>
#include <filesystem>

#include "filesharing/services.h"
#include "tests/device_test.h"
#include "tests/process_state.h"

namespace {

namespace fs = std::filesystem;

constexpr char kSettings[] = "/etc/CGI_ds.conf";
constexpr char kServices[] = "/etc/services";
constexpr char kVsftpd[] = "/etc/vsftpd.conf";
constexpr char kInetd[] = "/etc/inetd.conf";
const char kCopyServices[] = "/bin/cp [-f] [/tmp/tmpfile.XXXXXX] [/etc/services]";
const char kCopyVsftpd[] = "/bin/cp [-f] [/tmp/tmpfile.XXXXXX] [/etc/vsftpd.conf]";
const char kCopyInetd[] = "/bin/cp [-f] [/tmp/tmpfile.XXXXXX] [/etc/inetd.conf]";

class FtpTest : public DeviceTest {
 protected:
  static void settings(const std::string& lines) {
    write(kSettings, "[network]\nguest_access=no\n" + lines);
  }

  /* What the service makes of one file. */
  static std::string rewritten(const std::string& path, const std::string& text) {
    write(path, text);
    EXPECT_EQ(in_process(ResetFTP), 0u);
    wait_for_background();
    return read(path);
  }
};

using Fields = std::vector<std::int32_t>;

Fields fields(const FtpSettings& s) {
  return {s.enabled, s.reserved, s.anonymous, s.language, s.port, s.data_port, s.ssl, s.bandwidth};
}

TEST_F(FtpTest, ReadsKeysWithTheirDefaultsAndRanges) {
  const std::pair<const char*, Fields> cases[] = {
      {"", {0, 0, 0, 437, 7777, 20, 0, 0}},
      {"ftp_server=yesterday\nftp_anony=YES\nftp_lang=850x\nftp_port=1024\nftp_data_port=65535\n"
       "ftp_ssl=-3\nftp_bandwidth=100\n",
       {1, 0, 0, 850, 1024, 65535, -3, 100}},
      {"ftp_server=no\nftp_anony=yes\nftp_lang=0\nftp_port=80\nftp_data_port=21\n",
       {0, 0, 1, 437, 21, 20, 0, 0}},
      {"ftp_lang=1\nftp_port=65536\nftp_data_port=1023\n", {0, 0, 0, 1, 21, 20, 0, 0}},
  };
  for (const auto& [lines, want] : cases) {
    settings(lines);
    FtpSettings record = {9, 9, 9, 9, 7777, 80, 9, 9}; /* missing ports stay, if they may */
    const long descriptors = open_descriptors();
    EXPECT_EQ(ReadFTPConf(&record), 0);
    EXPECT_EQ(open_descriptors(), descriptors + 1) << "the settings file stays open";
    EXPECT_EQ(fields(record), want) << lines;
  }
}

TEST_F(FtpTest, SavesItsKeysInTheirOrderAndUnchecked) {
  write(kSettings, "[network]\nport=80\n");
  const FtpSettings record = {7, 5, 0, -1, 80, 0, 3, 100};
  EXPECT_EQ(SaveFTPConf(&record), 0);
  EXPECT_EQ(read(kSettings),
            "[network]\nport=80\nftp_server=yes\nftp_anony=no\nftp_lang=-1\nftp_port=80\n"
            "ftp_data_port=0\nftp_bandwidth=100\nftp_ssl=3\n");
}

/* ---- The three files ---- */

TEST_F(FtpTest, FactoryFilesGetThePortsRatesAndSwitchesAndInetdStartsASecondLater) {
  settings(
      "ftp_server=yes\nftp_anony=yes\nftp_port=2121\nftp_data_port=2020\nftp_ssl=1\n"
      "ftp_bandwidth=100\n");
  fs::permissions(kInetd, fs::perms(0600));
  const Snapshot before = snapshot();
  at_sleep(1, note_process_state("/tmp/state"));
  EXPECT_EQ(ResetFTP(), 0u);
  wait_for_background();
  EXPECT_EQ(commands(),
            Strings({kCopyServices, kCopyVsftpd, kCopyInetd, kCopyInetd, "/bin/killall [inetd]",
                     "/bin/killall [bftpd]", "sleep 1", "/etc/rc.d/rc.xinetd"}));
  EXPECT_EQ(read("/tmp/state"), "folder /, umask 0, session own, SIGCHLD default, 0-63 open");
  EXPECT_EQ(changes(before),
            Strings({"~/etc/inetd.conf", "~/etc/services", "~/etc/vsftpd.conf", "+/tmp/state"}));
  EXPECT_EQ(
      read(kVsftpd),
      "# FTP daemon, started by inetd\nlisten=NO\nanonymous_enable=YES\n"
      "anon_root=/home/ftp\nftp_username=guest\nlocal_enable=YES\n"
      "local_root=/harddisk/volume_1/data\nwrite_enable=YES\n"
      "userlist_enable=YES\nuserlist_file=/etc/ftpusers\nchroot_local_user=YES\n"
      "allow_writeable_chroot=YES\nlocal_umask=000\nssl_enable=YES\nrsa_cert_file=/etc/"
      "stunnel.pem\n"
      "listen_port=2121\nftp_data_port=2020\nsecure_chroot_dir=/var/empty\nanon_max_rate=102400\n"
      "local_max_rate=102400\n");
  EXPECT_EQ(mode(kInetd), 0644u);
}

TEST_F(FtpTest, LineOfServices) {
  settings("ftp_port=2121\n");
  const std::string line = "ftp\t\t2121/tcp\n";
  const std::string letters(125, 'x');
  const std::pair<std::string, std::string> cases[] = {
      {"http\t80/tcp", "http\t80/tcp"}, /* never added, and no line feed either */
      {"\n#\r\nftp\t\t21/tcp", "\n#\r\n" + line},
      {"tftp\t\t69/udp\nftp\t\t21/tcp # old\n", line + line},
      /* Longer lines are taken in pieces of 127 characters. */
      {letters + "ftp\t\t21/tcp\n", letters + "ftp\t\t21/tcp\n"},
      {"ftp\t\t" + letters + "\n", line + "xxx\n"},
  };
  for (const auto& [before, after] : cases) {
    EXPECT_EQ(rewritten(kServices, before), after) << before;
  }
}

TEST_F(FtpTest, LinesOfVsftpd) {
  settings("ftp_server=yes\nftp_bandwidth=-1\n");
  const std::string rates =
      "anon_max_rate=18446744073709550592\nlocal_max_rate=18446744073709550592\n";
  const std::string ports = "listen_port=21\nftp_data_port=20\n";
  const std::pair<std::string, std::string> cases[] = {
      {"a\r\n\n# b", "a\r\n\n# b\n" + rates + ports}, /* switches are never added */
      {"#ssl_enable\nlocal_max_rate\n x anonymous_enable=\nuserlist_enable=NO",
       "ssl_enable=NO\nlocal_max_rate=18446744073709550592\nanonymous_enable=NO\n"
       "userlist_enable=YES\nanon_max_rate=18446744073709550592\n" +
           ports},
      /* One rule a line: the ones for later marks have then had no line. */
      {"# listen_port ftp_data_port anon_max_rate\n",
       "listen_port=21\n" + rates + "ftp_data_port=20\n"},
      {"pasv_" + std::string(200, 'x') + "ftp_data_port\n",
       "ftp_data_port=20\n" + rates + "listen_port=21\n"},
  };
  for (const auto& [before, after] : cases) EXPECT_EQ(rewritten(kVsftpd, before), after);
}

TEST_F(FtpTest, GuestsSwitchTheListOfUsersOff) {
  for (const auto& [guests, list] : {std::pair("yes", "NO"), {"yesx", "YES"}}) {
    write(kSettings, std::string("[network]\nguest_access=") + guests + "\n");
    EXPECT_TRUE(rewritten(kVsftpd, "userlist_enable=x\n")
                    .starts_with(std::string("userlist_enable=") + list + "\n"));
  }
}

TEST_F(FtpTest, LineOfInetd) {
  const std::string line = "ftp\tstream\ttcp\tnowait\troot\t/usr/sbin/vsftpd\n";
  const std::string others = "telnet x\n\ntftp y\n# ftp: " + std::string(300, 'x') + "\nlast";
  settings("ftp_server=yes\n");
  EXPECT_EQ(rewritten(kInetd, others), "telnet x\n\n" + line + line + "last");
  EXPECT_EQ(rewritten(kInetd, "telnet x"), "telnet x\n" + line);
  settings("ftp_server=no\n");
  EXPECT_EQ(rewritten(kInetd, others), "telnet x\n\nlast");
}

/* ---- Failures ---- */

TEST_F(FtpTest, CallerWhoIgnoresChildrenFailsAtInetdAlone) {
  settings("ftp_port=2121\n");
  const Snapshot before = snapshot();
  EXPECT_EQ(in_process([] {
              (void)signal(SIGCHLD, SIG_IGN);
              return ResetFTP();
            }),
            36u);
  EXPECT_EQ(commands(), Strings({kCopyServices, kCopyVsftpd, kCopyInetd, kCopyInetd}));
  EXPECT_EQ(changes(before), Strings({"~/etc/inetd.conf", "~/etc/services", "~/etc/vsftpd.conf"}));
}

TEST_F(FtpTest, WithoutTheSwitchForGuestsOnlyServicesIsWritten) {
  write(kSettings, "[network]\nftp_port=2121\n");
  const Snapshot before = snapshot();
  EXPECT_EQ(ResetFTP(), 56u);
  EXPECT_EQ(changes(before), Strings({"~/etc/services"}));
}

}  // namespace
