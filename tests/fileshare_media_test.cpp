// The verbs of fileshare for the media servers.
#include <filesystem>
#include "tests/fileshare_run.h"

namespace {

constexpr char kSettings[] = "/etc/CGI_ds.conf";

class FileshareMediaTest : public FileshareRun {};

TEST_F(FileshareMediaTest, SetChangesWhatIsNamedAndLeavesTheRest) {
  std::filesystem::create_directory("/harddisk/volume_1/data/Music/Pop");
  EXPECT_EQ(fileshare({"itunes", "set", "--name", "Songs", "--folder", "/Music/Pop"}).status, 0);
  EXPECT_EQ(fileshare({"broadcast", "set", "--port", "8000", "--in-order", "no"}).status, 0);
  EXPECT_EQ(fileshare({"upnp", "set", "--slot", "4", "--folder", "/Music/Pop", "--content", "3",
                       "--rescan", "yes"})
                .status,
            0);
  EXPECT_EQ(fileshare({"upnp", "set", "--slot", "1", "--folder", ""}).status, 0);
  EXPECT_EQ(shown({"itunes", "show"}),
            Json::parse(R"({"enabled": true, "name": "Songs", "folder": "/Music/Pop"})"));
  EXPECT_EQ(shown({"broadcast", "show"}),
            Json::parse(R"({"enabled": false, "name": "DiskServer_MP3", "port": 8000,
      "folder": "/Music", "in-order": false})"));
  EXPECT_EQ(shown({"upnp", "show"}), Json::parse(R"({"enabled": true, "name": "DiskServer_Media",
      "rescan": true, "rescan-interval": 30,
      "folders": [{"slot": 4, "folder": "/Music/Pop", "content": 3}]})"));
  EXPECT_NE(read(kSettings).find("\nupnp_av_share_4=Music\n"), std::string::npos);
}

TEST_F(FileshareMediaTest, RefusedArgumentsChangeNothing) {
  struct Case {
    Strings arguments;
    int status;
    std::string error; /* its beginning */
  };
  const Case cases[] = {
      {{"upnp", "set", "--slot", "1", "--content", "4"}, 2, "fileshare: --content: "},
      {{"upnp", "set", "--slot", "1", "--content", "-1"}, 2, "fileshare: --content: "},
      {{"upnp", "set", "--slot", "5", "--content", "1"}, 2, "fileshare: --slot: "},
      {{"upnp", "set", "--folder", "/Music"}, 2, "fileshare: --folder requires --slot"},
      {{"upnp", "set", "--slot", "1", "--folder", "/a,+V|/b"}, 2, "fileshare: --folder: a folder "},
      {{"itunes", "set", "--folder", "Music"}, 2, "fileshare: --folder: a folder is given as "},
      {{"itunes", "set", "--folder", "/Music/../public"}, 2, "fileshare: --folder: "},
      {{"itunes", "set", "--name", "a\nport 1"}, 2, "fileshare: --name: a server name can not "},
      {{"broadcast", "set", "--port", "0"}, 2, "fileshare: --port: "},
      {{"itunes", "set", "--folder", "/Gone"},
       1,
       "fileshare: can not publish \"/Gone\": there is no such share\n"},
      {{"broadcast", "set", "--folder", "/Music/Gone"},
       1,
       "fileshare: can not publish \"/Music/Gone\": there is no such folder\n"},
      {{"media", "stop"}, 2, "fileshare: either --volume or --all is needed\n"},
      {{"media", "stop", "--all", "--persist"}, 2, "fileshare: --persist requires --volume"},
      {{"media", "start", "2"}, 2, "fileshare: MASK: a mask is the sum of "},
  };
  const Snapshot before = snapshot();
  for (const Case& one : cases) {
    const Outcome outcome = fileshare(one.arguments);
    EXPECT_EQ(outcome.status, one.status) << outcome.error;
    EXPECT_EQ(outcome.error.substr(0, one.error.size()), one.error);
    EXPECT_EQ(changes(before), Strings());
    EXPECT_EQ(commands(), Strings());
  }
}

TEST_F(FileshareMediaTest, WhatWasStoppedForAVolumeStartsAgainByItsMask) {
  const Outcome stopped = fileshare({"media", "stop", "--volume", "1", "--json"});
  EXPECT_EQ(Json::parse(stopped.out), Json::parse(R"({"mask": 9, "servers": ["itunes", "upnp"]})"));
  clear_commands();
  EXPECT_EQ(fileshare({"media", "start", "9"}).status, 0);
  wait_for_background();
  EXPECT_EQ(commands().front(), "sleep 6");
  EXPECT_EQ(commands().back(), "/etc/rc.d/mediaserver.sh [start]");
}

TEST_F(FileshareMediaTest, ApplyTellsWhatFailed) {
  std::filesystem::remove_all("/harddisk/volume_1/data/Music");
  const Outcome outcome = fileshare({"itunes", "apply"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.error,
            "fileshare: can not apply the settings of iTunes: its folder is not there, or a file "
            "can not be read or written (code -1)\n");
  std::filesystem::remove(kSettings);
  EXPECT_EQ(fileshare({"upnp", "apply"}).status, 1);
  EXPECT_EQ(fileshare({"broadcast", "show"}).status, 1);
}

}  // namespace
