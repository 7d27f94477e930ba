// The verbs of fileshare for the media servers.
#include <filesystem>
#include "tests/fileshare_run.h"

namespace {

class FileshareMediaTest : public FileshareRun {};

TEST_F(FileshareMediaTest, SetChangesWhatIsNamedAndLeavesTheRest) {
  std::filesystem::create_directory("/harddisk/volume_1/data/Music/Pop");
  expect({"itunes", "set", "--name", "Songs", "--folder", "/Music/Pop"});
  expect({"broadcast", "set", "--port", "8000", "--in-order", "no"});
  expect({"upnp", "set", "--slot", "4", "--folder", "/Music/Pop", "--content", "3", "--rescan",
          "yes"});
  expect({"upnp", "set", "--slot", "1", "--folder", ""});
  EXPECT_EQ(shown({"itunes", "show"}),
            Json::parse(R"({"enabled": true, "name": "Songs", "folder": "/Music/Pop"})"));
  EXPECT_EQ(shown({"broadcast", "show"}),
            Json::parse(R"({"enabled": false, "name": "DiskServer_MP3", "port": 8000,
      "folder": "/Music", "in-order": false})"));
  EXPECT_EQ(shown({"upnp", "show"}), Json::parse(R"({"enabled": true, "name": "DiskServer_Media",
      "rescan": true, "rescan-interval": 30,
      "folders": [{"slot": 4, "folder": "/Music/Pop", "content": 3}]})"));
  EXPECT_NE(read("/etc/CGI_ds.conf").find("\nupnp_av_share_4=Music\n"), std::string::npos);
}

TEST_F(FileshareMediaTest, RefusedArgumentsChangeNothing) {
  expect_refused({
      {{"upnp", "set", "--slot", "1", "--content", "4"}, 2, "--content: "},
      {{"upnp", "set", "--slot", "5", "--content", "1"}, 2, "--slot: "},
      {{"upnp", "set", "--folder", "/Music"}, 2, "--folder requires --slot"},
      {{"upnp", "set", "--slot", "1", "--folder", "/a,+V|/b"}, 2, "--folder: a folder "},
      {{"itunes", "set", "--folder", "Music"}, 2, "--folder: a folder is given as "},
      {{"itunes", "set", "--folder", "/Music/../public"}, 2, "--folder: "},
      {{"itunes", "set", "--name", "a\nport 1"}, 2, "--name: a server name can not "},
      {{"broadcast", "set", "--port", "0"}, 2, "--port: "},
      {{"itunes", "set", "--folder", "/Gone"},
       1,
       "can not publish \"/Gone\": there is no such share\n"},
      {{"broadcast", "set", "--folder", "/Music/Gone"},
       1,
       "can not publish \"/Music/Gone\": there is no such folder\n"},
      {{"media", "stop"}, 2, "either --volume or --all is needed\n"},
      {{"media", "stop", "--all", "--persist"}, 2, "--persist requires --volume"},
      {{"media", "start", "2"}, 2, "MASK: a mask is the sum of "},
  });
  EXPECT_EQ(commands(), Strings());
}

TEST_F(FileshareMediaTest, WhatWasStoppedForAVolumeStartsAgainByItsMask) {
  const Outcome stopped = fileshare({"media", "stop", "--volume", "1", "--json"});
  EXPECT_EQ(Json::parse(stopped.out), Json::parse(R"({"mask": 9, "servers": ["itunes", "upnp"]})"));
  clear_commands();
  expect({"media", "start", "9"});
  wait_for_background();
  EXPECT_EQ(commands().front(), "sleep 6");
  EXPECT_EQ(commands().back(), "/etc/rc.d/mediaserver.sh [start]");
}

TEST_F(FileshareMediaTest, ApplyTellsWhatFailed) {
  std::filesystem::remove_all("/harddisk/volume_1/data/Music");
  EXPECT_EQ(fileshare({"itunes", "apply"}).error,
            "fileshare: can not apply the settings of iTunes: its folder is not there, or a file "
            "can not be read or written (code -1)\n");
}

}  // namespace
