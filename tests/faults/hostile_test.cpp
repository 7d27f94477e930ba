// Arguments that nobody should pass: each exported function with each of its texts replaced, with
// lists that are empty or longer than any other, and without its record. The sanitizers watch for
// overruns.
#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "filesharing/filesharing.h"
#include "tests/device_test.h"
#include "tests/faults/interposed.h"
#include "tests/faults/named_codes.h"
#include "tests/faults/operations.h"

namespace {

constexpr size_t kLong = 10000;

std::string control_characters() {
  std::string all;
  for (char c = 1; c < ' '; ++c) all += c;
  return all + '\x7f';
}

const Texts kHostile{
    std::nullopt,
    "",
    std::string(kLong, 'x'),
    "/" + std::string(kLong, 'x') + "/" + std::string(kLong, '/'),
    ":::::,,,,,=====",
    "//////////",
    "          ",
    control_characters(),
    "\xff\xfe\xc3(\xe2\x82\xed\xa0\x80\xf8",
    "\"`$(';|&<>*?[]{}~!#%s%n\\",
    "../../../..",
};

/* ---- Records, lists and arrays that are not there ------------------------------------------- */

struct Missing {
  std::string name;
  unsigned code;
  unsigned (*call)();
};

Missing missing(unsigned code, const char* name, unsigned (*call)()) {
  return {name, code, call};
}

#define CALL(code, function, ...) \
  missing(code, #function, [] { return static_cast<unsigned>(function(__VA_ARGS__)); })

const char* const* const kNoNames = nullptr;

const Missing kMissing[] = {
    CALL(FSH_FAILED, AddAlbumUser, nullptr),
    CALL(FSH_ARGUMENT, AddGroupToShares, "staff", kNoNames, 1, 0),
    CALL(FSH_ARGUMENT, AddGroupsToShare, "Music", kNoNames, 1, 0),
    CALL(FSH_ARGUMENT, AddShare, nullptr),
    CALL(FSH_ARGUMENT, AddShareWithGroup, nullptr),
    CALL(FSH_ARGUMENT, AddUser, nullptr),
    CALL(FSH_ARGUMENT, AddUserToGroups, "carol", kNoNames, 1),
    CALL(FSH_ARGUMENT, AddUsersToGroup, "staff", kNoNames, 1),
    CALL(FSH_ARGUMENT, AddUsersToSysGroup, "staff", kNoNames, 1),
    CALL(FSH_FAILED, CheckNFSShare, nullptr),
    CALL(FSH_ARGUMENT, DelAllGRP, kNoNames, 1, "/etc/usrgrp.info"),
    CALL(FSH_ARGUMENT, DelGroupFromShares, "family", kNoNames, 1),
    CALL(FSH_ARGUMENT, DelGroupsFromShare, "Music", kNoNames, 1),
    CALL(FSH_ARGUMENT, DelUserFromGroups, "alice", kNoNames, 1),
    CALL(FSH_ARGUMENT, DelUsersFromGroup, "staff", kNoNames, 1),
    CALL(FSH_FAILED, GetAlbumUserInfo, nullptr),
    CALL(FSH_ARGUMENT, GetAllGroup, nullptr),
    CALL(FSH_ARGUMENT, GetAllShare, nullptr),
    CALL(FSH_ARGUMENT, GetAllUser, nullptr),
    CALL(FSH_ARGUMENT, GetExtShare, nullptr),
    CALL(FSH_ARGUMENT, GetGroupShareInfo, nullptr),
    CALL(FSH_ARGUMENT, GetGroupUserInfo, nullptr),
    CALL(FSH_ARGUMENT, GetGrpNameList, nullptr),
    CALL(FSH_ARGUMENT, GetShareGroup, nullptr),
    CALL(FSH_ARGUMENT, GetShareInfo, nullptr),
    CALL(FSH_ARGUMENT, GetShareNameList, nullptr),
    CALL(FSH_ARGUMENT, GetShareWithGroup, nullptr),
    CALL(FSH_ARGUMENT, GetUserGroupInfo, nullptr),
    CALL(FSH_ARGUMENT, GetUserInfo, nullptr),
    CALL(FSH_ARGUMENT, GetUserNameList, nullptr),
    CALL(FSH_ARGUMENT, ReadAFPConf, nullptr),
    CALL(FSH_FAILED, ReadBroadConf, nullptr),
    CALL(FSH_FAILED, ReadFTPConf, nullptr),
    CALL(FSH_FAILED, ReadNFSConf, nullptr),
    CALL(FSH_ARGUMENT, ReadNFSShare, nullptr),
    CALL(FSH_ARGUMENT, ReadNFSShares, nullptr),
    CALL(FSH_FAILED, ReadPhotoAlbumConf, nullptr),
    CALL(FSH_ARGUMENT, ReadSambaConf, nullptr),
    CALL(FSH_FAILED, ReadUPnPAVConf, nullptr),
    CALL(FSH_FAILED, ReadiTuneConf, nullptr),
    CALL(FSH_AFP_NOT_SAVED, SaveAFPConf, nullptr),
    CALL(FSH_FAILED, SaveBroadConf, nullptr),
    CALL(FSH_FAILED, SaveFTPConf, nullptr),
    CALL(FSH_FAILED, SaveNFSConf, nullptr),
    CALL(FSH_FAILED, SavePhotoAlbumConf, nullptr),
    CALL(FSH_ARGUMENT, SaveSambaConf, nullptr),
    CALL(FSH_FAILED, SaveUPnPAVConf, nullptr),
    CALL(FSH_FAILED, SaveiTuneConf, nullptr),
    CALL(FSH_ARGUMENT, SetAFPShare, nullptr, 0),
    CALL(FSH_ARGUMENT, SetSmbShare, nullptr, 0),
    CALL(FSH_ARGUMENT, ShareStringPar, "0:1:Songs:/Music/", nullptr),
    CALL(FSH_ARGUMENT, SysDelAllGroup, kNoNames, 1),
    CALL(FSH_FAILED, UpdateAlbumUser, "alice", nullptr),
    CALL(FSH_ARGUMENT, UpdateShare, "Music", nullptr),
    CALL(FSH_ARGUMENT, UpdateUser, "bob", nullptr),
    CALL(FSH_ARGUMENT, WriteAFPShare, nullptr),
    CALL(FSH_ARGUMENT, WriteSmbShare, nullptr),
};

/* The arguments of one call. */
struct Call {
  Texts texts;
  Strings list;
};

class HostileTest : public DeviceTest {
 protected:
  /* Makes the calls one after another in one process, which a leak check of its own ends. */
  void make(const Operation& operation, const std::vector<Call>& calls) {
    SCOPED_TRACE(operation.name);
    SetUp();
    operation.prepare();
    (void)named_codes(operation.name); /* read once, not by each process */
    unnamed_ += in_process([&] {
      unsigned unnamed = 0;
      for (const Call& call : calls) unnamed += returns_named_code(operation, call) ? 0 : 1;
      return unnamed;
    });
    stop_interposing();
    wait_for_background();
  }

  unsigned unnamed_ = 0;

 private:
  static bool returns_named_code(const Operation& operation, const Call& call) {
    const pid_t self = getpid();
    Arguments arguments(call.texts, call.list);
    start_interposing(Interposing::kCommands);
    const unsigned code = operation.call(arguments);
    if (getpid() != self) _exit(0); /* a background process that came back */
    stop_interposing();
    const bool named = operation.counts || named_codes(operation.name).contains(code);
    if (!named) std::printf("%s returns %u:", operation.name.c_str(), code);
    for (const Text& text : call.texts) {
      if (!named) std::printf(" %.20s", text.value_or("missing").c_str());
    }
    return named;
  }
};

TEST_F(HostileTest, TextsAreTakenOrRefused) {
  for (const Operation& operation : operations()) {
    std::vector<Call> calls;
    for (size_t number = 0; number < operation.texts.size(); ++number) {
      for (const Text& text : kHostile) {
        calls.push_back({operation.texts, operation.list});
        calls.back().texts[number] = text;
      }
    }
    make(operation, calls);
  }
  EXPECT_EQ(unnamed_, 0u) << "codes that the header does not name";
}

TEST_F(HostileTest, ListsAreTakenOrRefused) {
  Strings names;
  for (int number = 0; number < 300; ++number) names.push_back("name" + std::to_string(number));
  for (const Operation& operation : operations()) {
    if (operation.list.empty()) continue;
    make(operation, {{operation.texts, {}},
                     {operation.texts, Strings(names.begin(), names.begin() + 255)},
                     {operation.texts, names},
                     {operation.texts, Strings(255, operation.list.front())},
                     {operation.texts, Strings(2, std::string(kLong, 'x'))},
                     {operation.texts, Strings(3)}});
  }
  EXPECT_EQ(unnamed_, 0u) << "codes that the header does not name";
}

/* Records in a list, with names as long as their fields. */
template <class Record>
std::vector<Record> linked(size_t count) {
  std::vector<Record> records(count);
  for (size_t number = 0; number < count; ++number) {
    std::string name = std::to_string(number);
    name.resize(sizeof Record::name - 1, 'n');
    name.copy(records[number].name, name.size());
    records[number].next = number + 1 < count ? &records[number + 1] : nullptr;
  }
  return records;
}

TEST_F(HostileTest, AccessListsOfAnyLengthAreKeptWhole) {
  for (const size_t count : {0u, 255u, 300u}) {
    SCOPED_TRACE(count);
    SetUp();
    std::vector<ShareGroup> groups = linked<ShareGroup>(count);
    for (ShareGroup& group : groups) group.rights = FSH_READ_WRITE;
    ShareInfo films{"Films", "", "/Films/", 1, 0, groups.data(), nullptr};
    in_process([&] {
      EXPECT_EQ(AddShareWithGroup(&films), 0u);
      const std::string registry = read("/etc/share.info");
      EXPECT_EQ(AddGroupToShare("staff", "Films", 0), 0u);
      EXPECT_EQ(DelGroupFromShare("staff", "Films"), 0u);
      EXPECT_TRUE(read("/etc/share.info") == registry);
      EXPECT_EQ(UpdateShare("Films", &films), 0u);
      EXPECT_EQ(SetSmbShare(&films, 1) + SetAFPShare(&films, 1), 0u);
      EXPECT_TRUE(read("/etc/share.info") == registry);
      EXPECT_EQ(std::ranges::count(registry.substr(registry.find("Films=")), ','),
                count < 2 ? 0 : static_cast<long>(count) - 1);
      return 0u;
    });
  }
}

TEST_F(HostileTest, AnyNumberOfSharesIsExported) {
  for (const size_t count : {255u, 300u}) {
    std::vector<ShareInfo> shares = linked<ShareInfo>(count);
    ShareGroup everyone{"everyone", FSH_READ_ONLY, nullptr};
    for (ShareInfo& share : shares) {
      share.groups = &everyone;
      share.volume = 1;
      std::ranges::fill(share.path, 'p');
    }
    EXPECT_EQ(UpdateNFSConf(shares.data()), 0u);
    EXPECT_EQ(std::ranges::count(read("/etc/exports"), '\n'), static_cast<long>(count));
  }
}

/* Lines that begin with "[" are listed, but not found again to be written: they are tried once. */
TEST_F(HostileTest, GroupIsRenamedAndDeletedOnAnyNumberOfShares) {
  const auto shares = [](int count, const std::string& first, const std::string& groups) {
    std::string lines;
    for (int i = 0; i < count; ++i) lines += first + std::to_string(i) + "=0:1::/:" + groups + "\n";
    return lines;
  };
  start_interposing(Interposing::kCommands);
  for (const int count : {255, 300}) {
    write("/etc/share.info", shares(count, "s", "staff:5,family:7"));
    EXPECT_EQ(RenameGroup("staff", "team"), 0u);
    EXPECT_EQ(DelGroup("family"), 0u);
    EXPECT_EQ(read("/etc/share.info"), shares(count, "s", "team:5"));
    SetUp();
  }
  write("/etc/share.info", shares(300, "[s", "staff:5"));
  EXPECT_EQ(RenameGroup("staff", "team"), 0u);
  EXPECT_EQ(std::ranges::count(commands(), "sleep 2"), 2 * 255);
  stop_interposing();
}

TEST_F(HostileTest, WhatIsMissingIsToldAndNothingDone) {
  const Snapshot before = snapshot();
  for (const auto& [name, code, call] : kMissing) {
    SCOPED_TRACE(name);
    EXPECT_TRUE(named_codes(name).contains(code));
    EXPECT_EQ(in_process(call), code);
    EXPECT_EQ(changes(before), Strings());
  }
}

}  // namespace
