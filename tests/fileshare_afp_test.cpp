// The verbs of fileshare for AFP and NFS.
#include <unistd.h>

#include "tests/fileshare_run.h"

namespace {

constexpr char kSettings[] = "/etc/CGI_ds.conf";
constexpr char kEntries[] = "/etc/nfs.info";

class FileshareAfpTest : public FileshareRun {};

TEST_F(FileshareAfpTest, AfpSetChangesWhatIsNamedAndLeavesTheRest) {
  Json expected = Json::parse(R"({"enabled": true, "guests": false, "name": "",
      "code-page": "UTF8", "mac-code-page": "\"UTF8-MAC\"", "time-machine": ""})");
  EXPECT_EQ(shown({"afp", "show"}), expected);
  EXPECT_EQ(fileshare({"afp", "set", "--time-machine", "DISK 1", "--name", "NAS"}).error, "");
  expected.update({{"time-machine", "DISK 1"}, {"name", "NAS"}});
  EXPECT_EQ(shown({"afp", "show"}), expected);
  EXPECT_EQ(fileshare({"afp", "set", "--time-machine", "", "--guests", "yes"}).error, "");
  expected.update({{"time-machine", ""}, {"guests", true}});
  EXPECT_EQ(shown({"afp", "show"}), expected);
}

TEST_F(FileshareAfpTest, RefusedSettingNamesItsFieldAndChangesNothing) {
  struct Case {
    Strings arguments;
    int status;
    std::string error; /* its beginning */
  };
  const Case cases[] = {
      {{"afp", "set", "--name", "My NAS"},
       2,
       "fileshare: --name: a server name can not contain \" \"\n"},
      {{"afp", "set", "--name", "-noddp"}, 2, "fileshare: --name: "},
      {{"afp", "set", "--name", "a\nb"}, 2, "fileshare: --name: "},
      {{"afp", "set", "--name", std::string(65, 'n')}, 2, "fileshare: --name: "},
      {{"afp", "set", "--code-page", "UTF8 -guestname"}, 2, "fileshare: --code-page: "},
      {{"afp", "set", "--time-machine", "a]b"}, 2, "fileshare: --time-machine: "},
      {{"afp", "set", "--time-machine", "music"},
       1,
       "fileshare: can not save the settings of AFP: time-machine: there is no share \"music\" in "
       "this letter case\n"},
      {{"afp", "set"}, 2, "fileshare: "},
      {{"nfs", "set"}, 2, "fileshare: "},
      {{"nfs", "set", "yes"}, 2, "fileshare: STATE: "},
  };
  const Snapshot before = snapshot();
  for (const Case& one : cases) {
    const Outcome outcome = fileshare(one.arguments);
    EXPECT_EQ(outcome.status, one.status) << outcome.error;
    EXPECT_EQ(outcome.error.substr(0, one.error.size()), one.error);
    EXPECT_EQ(changes(before), Strings());
  }
}

TEST_F(FileshareAfpTest, FailureInTheBackgroundIsNotToldASecondTime) {
  fail_command("cp", 0);
  const Outcome outcome = fileshare({"afp", "apply"});
  wait_for_background();
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out + outcome.error, "");
  EXPECT_EQ(commands().back(), "/bin/cp [-f] [/tmp/tmpfile.XXXXXX] [/etc/netatalk/afpd.conf]");
  unlink(kSettings);
  EXPECT_EQ(fileshare({"afp", "apply"}).error,
            "fileshare: can not apply the settings of AFP: the settings file or one of its keys is "
            "missing (code 58)\n");
}

TEST_F(FileshareAfpTest, NfsShowsItsEntriesAlsoWithoutTheirFile) {
  EXPECT_EQ(shown({"nfs", "show"}), Json::parse(R"({"enabled": false, "entries": [
      {"name": "Music", "host": "192.168.1.20", "mask": 32, "flags": 1},
      {"name": "Projects", "host": null, "mask": 0, "flags": 0}]})"));
  EXPECT_EQ(fileshare({"nfs", "show"}).out,
            "enabled:  no\n\n"
            "NAME      HOST          MASK  FLAGS\n"
            "Music     192.168.1.20    32      1\n"
            "Projects  -                0      0\n");
  write(kEntries, "[NFS]\n\n");
  EXPECT_EQ(fileshare({"nfs", "show"}).status, 1);
  unlink(kEntries);
  EXPECT_EQ(shown({"nfs", "show"})["entries"], Json::array());
}

TEST_F(FileshareAfpTest, NfsIsSwitchedAndItsExportsRewritten) {
  EXPECT_EQ(fileshare({"nfs", "set", "on"}).error, "");
  wait_for_background();
  EXPECT_EQ(shown({"nfs", "show"})["enabled"], true);
  EXPECT_EQ(fileshare({"nfs", "set", "off"}).error, "");
  EXPECT_EQ(shown({"nfs", "show"})["enabled"], false);
  EXPECT_EQ(fileshare({"nfs", "apply"}).error, "");
  EXPECT_EQ(read("/etc/exports"),
            "/harddisk/volume_1/data/public/ *(rw,async,all_squash,anonuid=501,anongid=501)\n"
            "/harddisk/volume_1/data/Music/ *(ro,async,all_squash,anonuid=501,anongid=501)\n");
  fail_command("cp", 0);
  EXPECT_EQ(fileshare({"nfs", "apply"}).status, 1);
}

}  // namespace
