// The verbs of fileshare for Samba, FTP and the HTTPS tunnel.
#include "tests/fileshare_run.h"

namespace {

class FileshareServicesTest : public FileshareRun {};

TEST_F(FileshareServicesTest, RefusedSettingNamesItsFieldAndChangesNothing) {
  expect_refused({
      {{"samba", "set", "--workgroup", "a/b"},
       1,
       "can not save the settings of Samba: workgroup: "},
      {{"samba", "set", "--workgroup", std::string(17, 'w')},
       2,
       "--workgroup: a workgroup is 16 b"},
      {{"samba", "set", "--printer", "a\nport=1"}, 2, "--printer: a printer can not "},
      {{"samba", "set", "--wins-server", "10.0.0.1\tx"}, 2, "--wins-server: "},
      {{"samba", "set", "--wins", "on"}, 2, "--wins: on not in {yes,no}\n"},
      {{"samba", "set"}, 2, ""},
      {{"ftp", "set", "--port", "80"}, 2, "--port: this port is 21 or 1024 to 65535\n"},
      {{"ftp", "set", "--data-port", "65536"}, 2, "--data-port: this port is 20 or "},
      {{"ftp", "set", "--bandwidth", "-1"}, 2, "--bandwidth: "},
      {{"https", "set"}, 2, ""},
  });
}

TEST_F(FileshareServicesTest, FailureOfAStepOfApplyIsTheExitStatusThoughLaterOnesSucceed) {
  fail_command("killall", 0);  // no daemon runs
  expect({"samba", "apply"});
  fail_command("smbd", 0);
  EXPECT_EQ(fileshare({"samba", "apply"}).error,
            "fileshare: can not apply the settings of Samba: a setting is missing, or Samba did "
            "not follow (code 13)\n");
}

}  // namespace
