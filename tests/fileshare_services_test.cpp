// The verbs of fileshare for Samba, FTP and the HTTPS tunnel.
#include <nlohmann/json.hpp>

#include "tests/device_test.h"

namespace {

using Json = nlohmann::json;

constexpr char kSettings[] = "/etc/CGI_ds.conf";

class FileshareServicesTest : public DeviceTest {
 protected:
  static Outcome fileshare(Strings arguments) {
    arguments.insert(arguments.begin(), "fileshare");
    return run(arguments);
  }

  static Json shown(const char* service) {
    return Json::parse(fileshare({service, "show", "--json"}).out);
  }
};

TEST_F(FileshareServicesTest, ShowsWhatTheSettingsHold) {
  EXPECT_EQ(shown("samba"), Json::parse(R"({"enabled": true, "workgroup": "WORKGROUP",
      "code-page": 437, "wins": false, "wins-server": "", "printer": "lp"})"));
  EXPECT_EQ(shown("ftp"), Json::parse(R"({"enabled": true, "anonymous": false, "language": 437,
      "port": 21, "data-port": 20, "ssl": false, "bandwidth": 0})"));
  EXPECT_EQ(shown("https"), Json::parse(R"({"enabled": false, "port": "80"})"));
}

TEST_F(FileshareServicesTest, SetChangesWhatIsNamedAndLeavesTheRest) {
  Json samba = shown("samba");
  Json ftp = shown("ftp");
  EXPECT_EQ(fileshare({"samba", "set", "--wins", "yes", "--wins-server", "10. 0.0.1"}).status, 0);
  EXPECT_EQ(fileshare({"ftp", "set", "--port", "2121", "--ssl", "yes"}).status, 0);
  EXPECT_EQ(fileshare({"https", "set", "--enabled", "yes"}).status, 0);
  samba.update({{"wins", true}, {"wins-server", "10.0.0.1"}});
  ftp.update({{"port", 2121}, {"ssl", true}});
  EXPECT_EQ(shown("samba"), samba);
  EXPECT_EQ(shown("ftp"), ftp);
  EXPECT_EQ(shown("https")["enabled"], true);
}

TEST_F(FileshareServicesTest, RefusedSettingNamesItsFieldAndChangesNothing) {
  struct Case {
    Strings arguments;
    int status;
    std::string error; /* its beginning */
  };
  const Case cases[] = {
      {{"samba", "set", "--workgroup", "a/b"},
       1,
       "fileshare: can not save the settings of Samba: workgroup: it can not contain any of "
       "\"/\\[]:;|=.,+*?<> (code 7)\n"},
      {{"samba", "set", "--workgroup", "ABCDEFGHIJKLMNOPQ"},
       2,
       "fileshare: --workgroup: a workgroup is 16 bytes long at most, this is 17\n"},
      {{"samba", "set", "--printer", "a\nport=1"}, 2, "fileshare: --printer: a printer can not "},
      {{"samba", "set", "--wins-server", "10.0.0.1\tx"}, 2, "fileshare: --wins-server: "},
      {{"samba", "set", "--wins", "on"}, 2, "fileshare: --wins: on not in {yes,no}\n"},
      {{"samba", "set"}, 2, "fileshare: "},
      {{"ftp", "set", "--port", "80"}, 2, "fileshare: --port: this port is 21 or 1024 to 65535\n"},
      {{"ftp", "set", "--data-port", "65536"}, 2, "fileshare: --data-port: this port is 20 or "},
      {{"ftp", "set", "--bandwidth", "-1"}, 2, "fileshare: --bandwidth: "},
      {{"https", "set"}, 2, "fileshare: "},
  };
  const Snapshot before = snapshot();
  for (const Case& one : cases) {
    const Outcome outcome = fileshare(one.arguments);
    EXPECT_EQ(outcome.status, one.status) << outcome.error;
    EXPECT_EQ(outcome.error.substr(0, one.error.size()), one.error);
    EXPECT_EQ(changes(before), Strings());
  }
}

TEST_F(FileshareServicesTest, FailureOfAStepOfApplyIsTheExitStatusThoughLaterOnesSucceed) {
  fail_command("killall", 0); /* no daemon runs */
  EXPECT_EQ(fileshare({"samba", "apply"}).status, 0);
  fail_command("smbd", 0);
  const Outcome outcome = fileshare({"samba", "apply"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.error,
            "fileshare: can not apply the settings of Samba: a setting is missing, or Samba did "
            "not follow (code 13)\n");
  fail_command("cp", 1);
  EXPECT_EQ(fileshare({"ftp", "apply"}).status, 1);
  write(kSettings, "[network]\n");
  EXPECT_EQ(fileshare({"https", "apply"}).status, 1);
  EXPECT_EQ(fileshare({"https", "show"}).status, 1);
}

TEST_F(FileshareServicesTest, ApplyOfFtpRestartsInetdOnce) {
  EXPECT_EQ(fileshare({"ftp", "apply"}).status, 0);
  wait_for_background();
  EXPECT_EQ(commands().back(), "/etc/rc.d/rc.xinetd");
  EXPECT_EQ(commands().size(), 8u);
}

}  // namespace
