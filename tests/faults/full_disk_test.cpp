/* Each operation that changes account, group or share files, with any number of free pages on the
 * configuration volume, on the mirror's volume and on the file system of /etc: no file is ever less
 * than what it was or what the operation makes of it. Prints from how many pages on it is done. */
#include <sys/mount.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <regex>

#include "filesharing/filesharing.h"
#include "tests/device_test.h"
#include "tests/faults/devices.h"
#include "tests/faults/interposed.h"
#include "tests/faults/named_codes.h"
#include "tests/faults/operations.h"

namespace {

constexpr unsigned long kPage = 4096;
constexpr const char* kFileSystems[] = {"/harddisk/volume_1", "/harddisk/volume_2", "/etc"};

/* The files that a failing operation leaves as they were, all of them. */
const std::map<std::string, Strings>& whole_or_not_at_all() {
  static const Strings groups{"group", "usrgrp.info"}, shares{"share.info", "smb.conf"},
      users{"passwd", "group", "usrgrp.info", "smbpasswd", ".htpasswd"};
  static const std::map<std::string, Strings> changes{
      {"AddUser", users},
      {"UpdateUser", users},
      {"DelUser", users},
      {"AddGroup", groups},
      {"DelGroup", {"group", "usrgrp.info", "smb.conf"}},
      {"DelAllGroup", {"group", "usrgrp.info", "smb.conf"}},
      {"RenameGroup", groups},
      {"AddUserToGroups", groups},
      {"AddUsersToGroup", groups},
      {"DelUserFromGroups", groups},
      {"DelUsersFromGroup", groups},
      {"AddShare", shares},
      {"UpdateShare", shares},
      {"DelShare", shares},
      {"AddGroupToShares", shares},
      {"AddGroupsToShare", shares},
      {"DelGroupFromShares", shares},
      {"DelGroupsFromShare", shares},
  };
  return changes;
}

bool is_guarded(const std::string& path) {
  for (const char* end : {"/conf/passwd", "/conf/group", "/conf/usrgrp.info", "/conf/smb.conf",
                          "/conf/smbpasswd", "/conf/.htpasswd", "/share.info",
                          "/etc/win_share.info", "/AppleVolumes.conf", "/user_smb.conf"}) {
    if (path.ends_with(end)) return true;
  }
  return false;
}

/* Puts lines before those of a file, so that it ends ten bytes before the end of a page. */
void fill_page(const std::string& path, const std::string& begin, const std::string& end) {
  constexpr size_t kLeft = 10, kLine = 100;
  const std::string text = Fixture::read(path);
  std::string more;
  for (size_t missing = (2 * kPage - kLeft - text.size() % kPage) % kPage; missing > 0;) {
    const size_t length = missing < 2 * kLine ? missing : kLine;
    const std::string number = std::to_string(more.size() / kLine);
    const size_t fixed = begin.size() + number.size() + end.size() + 1;
    more += begin + number + std::string(length - fixed, 'x') + end + "\n";
    missing -= length;
  }
  put(path, more + text);
}

std::string last_lines(const std::string& text) {
  constexpr size_t kShown = 300;
  return text.substr(text.size() - std::min(text.size(), kShown));
}

void fill_pages() {
  const std::string conf = "/harddisk/volume_1/conf/";
  fill_page(conf + "passwd", "system", ":x:400:400::/:/bin/false");
  fill_page(conf + "group", "system", ":x:400:");
  fill_page(conf + "usrgrp.info", "system", "=somebody:0");
  fill_page(conf + "smbpasswd", "system", ":400:XX:XX:[U]:LCT-00000000:");
  fill_page(conf + "share.info", "Share", "=Comment:/share/:nobody:7");
  fill_page(conf + "smb.conf", "# ", "");
  fill_page("/etc/share.info", "S", "=0:1:Comment:/share/:nobody:7");
  fill_page("/etc/netatalk/AppleVolumes.conf", "# ", "");
  for (const char* name : {"passwd", "smbpasswd", "group", "usrgrp.info"}) {
    put(std::string("/harddisk/volume_2/conf/") + name, "of the change before\n");
  }
}

struct Trial {
  unsigned code;
  Strings calls;
  Snapshot after;
};

class FullDisk : public DeviceTest {
 protected:
  /* A device whose /etc is a file system of its own. */
  void make_device(const Operation& operation) {
    SetUp();
    if (!exists("/harddisk/volume_2/conf")) second_disk();
    operation.prepare();
    fill_pages();
    before_ = snapshot();
    ASSERT_EQ(mount("etc", "/etc", "tmpfs", 0, "mode=755"), 0);
    restore(before_);
  }

  Trial run(const Operation& operation, const std::string& file_system, unsigned long pages) {
    constexpr unsigned long kPlenty = 4096;
    for (const char* each : kFileSystems) set_free_pages(each, kPlenty);
    restore(before_);
    set_free_pages(file_system, pages);
    Arguments arguments(operation.texts, operation.list);
    const unsigned code = in_process([&] {
      start_interposing(Interposing::kFaults);
      const unsigned result = operation.call(arguments);
      stop_interposing();
      return result;
    });
    stop_interposing();
    wait_for_background();
    set_free_pages(file_system, kPlenty);
    Strings calls = interposed_calls();
    static const std::regex random("(tmpfile\\.|profile-)[A-Za-z0-9]{6}");
    for (std::string& call : calls) call = std::regex_replace(call, random, "$1");
    return {code, calls, snapshot()};
  }

  void expect_nothing_lost(const Operation& operation, const Trial& trial, const Trial& good) {
    const bool done = trial.code == good.code;
    EXPECT_TRUE(done || named_codes(operation.name).contains(trial.code)) << trial.code;
    for (const auto& [path, state] : trial.after) {
      const bool lock_or_temporary =
          path.ends_with(".lck") || path.find("tmpfile.") != std::string::npos;
      EXPECT_FALSE(lock_or_temporary && !before_.contains(path)) << path;
    }
    Snapshot all = before_;
    all.insert(good.after.begin(), good.after.end());
    for (const auto& [path, state] : all) {
      if (!is_guarded(path)) continue;
      const FileState* const is = find(trial.after, path);
      EXPECT_TRUE(same(is, find(before_, path)) || same(is, find(good.after, path)))
          << path << (is == nullptr ? " is gone" : " ends with " + last_lines(is->content));
    }
    const auto files = whole_or_not_at_all().find(operation.name);
    if (done || files == whole_or_not_at_all().end()) return;
    for (const std::string& name : files->second) {
      const std::string path = "/harddisk/volume_1/conf/" + name;
      EXPECT_TRUE(same(find(trial.after, path), find(before_, path))) << path;
    }
  }

  void sweep(const Operation& operation, const std::string& file_system) {
    constexpr unsigned long kMost = 64;
    const Trial good = run(operation, file_system, 4 * kMost);
    if (std::ranges::none_of(changes(before_), [](auto& change) { return is_guarded(change); })) {
      return;
    }
    for (unsigned long pages = 0; pages < kMost; ++pages) {
      SCOPED_TRACE(operation.name + " with " + std::to_string(pages) + " pages on " + file_system);
      const Trial now = run(operation, file_system, pages);
      expect_nothing_lost(operation, now, good);
      if (HasFailure()) return;
      /* Enough: as ever, command for command. */
      if (now.calls != good.calls || now.code != good.code) continue;
      std::printf("%-20s | %-18s | from %2lu pages on\n", operation.name.c_str(),
                  file_system.c_str(), pages);
      return;
    }
    ADD_FAILURE() << operation.name << " is never done";
  }

  void TearDown() override {
    DeviceTest::TearDown();
    (void)umount2("/etc", MNT_DETACH);
  }

 private:
  static const FileState* find(const Snapshot& snapshot, const std::string& path) {
    const auto at = snapshot.find(path);
    return at == snapshot.end() ? nullptr : &at->second;
  }

  static bool same(const FileState* one, const FileState* other) {
    if (one == nullptr || other == nullptr) return one == other;
    return one->content == other->content;
  }

  Snapshot before_;
};

TEST_F(FullDisk, LosesNothing) {
  for (const Operation& operation : operations()) {
    /* A restore by itself copies whatever is there. */
    if (operation.name == "RestoreConFiles" || operation.name == "BackupConFiles") continue;
    make_device(operation);
    for (const char* file_system : kFileSystems) sweep(operation, file_system);
    (void)umount2("/etc", MNT_DETACH);
    if (HasFailure()) return;
  }
}

}  // namespace
