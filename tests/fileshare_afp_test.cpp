// The verbs of fileshare for AFP and NFS.
#include <unistd.h>

#include "tests/fileshare_run.h"

namespace {

constexpr char kEntries[] = "/etc/nfs.info";

class FileshareAfpTest : public FileshareRun {};

TEST_F(FileshareAfpTest, AfpSetChangesWhatIsNamedAndLeavesTheRest) {
  Json expected = Json::parse(R"({"enabled": true, "guests": false, "name": "",
      "code-page": "UTF8", "mac-code-page": "\"UTF8-MAC\"", "time-machine": ""})");
  EXPECT_EQ(shown({"afp", "show"}), expected);
  expect({"afp", "set", "--time-machine", "DISK 1", "--name", "NAS"});
  expected.update({{"time-machine", "DISK 1"}, {"name", "NAS"}});
  EXPECT_EQ(shown({"afp", "show"}), expected);
  expect({"afp", "set", "--time-machine", "", "--guests", "yes"});
  expected.update({{"time-machine", ""}, {"guests", true}});
  EXPECT_EQ(shown({"afp", "show"}), expected);
}

TEST_F(FileshareAfpTest, RefusedSettingNamesItsFieldAndChangesNothing) {
  expect_refused({
      {{"afp", "set", "--name", "My NAS"}, 2, "--name: a server name can not contain \" \"\n"},
      {{"afp", "set", "--name", "-noddp"}, 2, "--name: "},
      {{"afp", "set", "--name", std::string(65, 'n')}, 2, "--name: "},
      {{"afp", "set", "--code-page", "UTF8 -guestname"}, 2, "--code-page: "},
      {{"afp", "set", "--time-machine", "a]b"}, 2, "--time-machine: "},
      {{"afp", "set", "--time-machine", "music"},
       1,
       "can not save the settings of AFP: time-machine: there is no share \"music\" in "
       "this letter case\n"},
      {{"afp", "set"}, 2, ""},
      {{"nfs", "set", "yes"}, 2, "STATE: "},
  });
}

TEST_F(FileshareAfpTest, FailureInTheBackgroundIsNotToldASecondTime) {
  fail_command("cp", 0);
  expect({"afp", "apply"});
  wait_for_background();
  EXPECT_EQ(commands().back(), "/bin/cp [-f] [/tmp/tmpfile.XXXXXX] [/etc/netatalk/afpd.conf]");
}

TEST_F(FileshareAfpTest, NfsShowsItsEntriesAlsoWithoutTheirFile) {
  EXPECT_EQ(shown({"nfs", "show"}), Json::parse(R"({"enabled": false, "entries": [
      {"name": "Music", "host": "192.168.1.20", "mask": 32, "flags": 1},
      {"name": "Projects", "host": null, "mask": 0, "flags": 0}]})"));
  expect({"nfs", "show"},
         "enabled:  no\n\n"
         "NAME      HOST          MASK  FLAGS\n"
         "Music     192.168.1.20    32      1\n"
         "Projects  -                0      0\n");
  write(kEntries, "[NFS]\n\n");
  EXPECT_EQ(fileshare({"nfs", "show"}).status, 1);
  unlink(kEntries);
  EXPECT_EQ(shown({"nfs", "show"})["entries"], Json::array());
}

}  // namespace
