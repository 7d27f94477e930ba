// Users into groups and out of them.
#include <unistd.h>

#include "conf/result.h"
#include "conf/text.h"
#include "conf/transaction.h"
#include "filesharing/conf.h"
#include "filesharing/groups.h"
#include "groups/group_file_edit.h"
#include "groups/user_groups_edit.h"

namespace filesharing {
namespace {

constexpr int kFiles = FSH_FILE_GROUP | FSH_FILE_USER;

// Kept: the two additions to /etc/group, and the one that puts users into the list of a group, copy
// once and through the utility library; every other copy runs twice, and the second status counts.
constexpr CopyBack kCopyOnce{.through = Through::kUtilityLibrary,
                             .sync_after = Sync::kOnSuccess,
                             .settle_seconds = 1,
                             .failure = FSH_MEMBER_NOT_ADDED};
constexpr CopyBack kCopyTwice{
    .runs = 2, .sync_after = Sync::kOnSuccess, .settle_seconds = 1, .failure = FSH_FAILED};

bool arguments_given(const char* name, const char* const* names, int count) {
  return !missing(name) && is_list(names, count);
}

Names listed(const char* const* names, int count) {
  return {names, names + count};
}

Result add_to_system_group(const char* group, const Names& users) {
  // Kept: the counts live on from call to call, so that within one process a second call takes
  // users for found who are not, and puts a comma before the first member of an empty group.
  static MemberCounts counts;
  return edit_group_file({.groups = {group},
                          .users = users,
                          .action = MemberAction::kAdd,
                          .first_line_only = true,
                          .line_ends = "\r\n",
                          .keeps_every_comma = true,
                          .counts = &counts,
                          .copy_back = kCopyOnce});
}

Result remove_from_system_group(const char* group, const Names& users) {
  return edit_group_file({.groups = {group},
                          .users = users,
                          .action = MemberAction::kRemove,
                          .first_line_only = true,
                          .line_ends = "\r\n",
                          .copy_back = kCopyTwice});
}

Result edit_system_groups(const Names& groups, const char* user, MemberAction action,
                          const CopyBack& copy_back) {
  return edit_group_file({.groups = groups,
                          .users = {user},
                          .action = action,
                          .refuses_short_lines = true,
                          .ends_last_line = true,
                          .copy_back = copy_back});
}

// Changes both group files as one: whatever goes wrong in it has the code failure.
template <class Change>
Result change_members(Result busy, Result failure, int added, Change&& change) {
  constexpr std::uint64_t kMostMemberBytes = 32;  // with the quota
  return transact({.mask = kFiles,
                   .busy = busy,
                   .no_room = failure,
                   .adds = kMostMemberBytes * static_cast<std::uint64_t>(added),
                   .out_of_memory = failure},
                  [&] { return change() == FSH_OK ? FSH_OK : failure; });
}

Result add_users_to_group(const char* group, const char* const* users, int count) {
  for (int i = 0; i < count; ++i) {
    if (UserInGroup(users[i], group) == 1) {
      return FSH_MEMBER_EXISTS;
    }
  }
  const auto add = [&]() -> Result {
    STEP(AddUsersToSysGroup(group, users, count));
    return edit_user_groups(
        {.groups = {group}, .added = listed(users, count), .removed = {}, .copy_back = kCopyOnce});
  };
  const Result result = change_members(FSH_ADD_MEMBER_BUSY, FSH_MEMBER_NOT_ADDED, count, add);
  if (result != FSH_ADD_MEMBER_BUSY) {
    sync();
  }
  return result;
}

Result add_user_to_groups(const char* user, const char* const* groups, int count) {
  for (int i = 0; i < count; ++i) {
    if (UserInGroup(user, groups[i]) == 1) {
      return FSH_MEMBER_EXISTS;
    }
  }
  const Names names = listed(groups, count);
  return change_members(FSH_ADD_MEMBER_BUSY, FSH_MEMBER_NOT_ADDED, count, [&]() -> Result {
    STEP(edit_system_groups(names, user, MemberAction::kAdd, kCopyOnce));
    return edit_user_groups(
        {.groups = names, .added = {user}, .removed = {}, .copy_back = kCopyTwice});
  });
}

Result remove_users_from_group(const char* group, const char* const* users, int count) {
  const Names names = listed(users, count);
  return change_members(FSH_MEMBER_NOT_REMOVED, FSH_MEMBER_NOT_REMOVED, 0, [&]() -> Result {
    STEP(remove_from_system_group(group, names));
    return edit_user_groups(
        {.groups = {group}, .added = {}, .removed = names, .copy_back = kCopyTwice});
  });
}

Result remove_user_from_groups(const char* user, const char* const* groups, int count) {
  const Names names = listed(groups, count);
  return change_members(FSH_MEMBER_NOT_REMOVED, FSH_MEMBER_NOT_REMOVED, 0, [&]() -> Result {
    STEP(edit_system_groups(names, user, MemberAction::kRemove, kCopyTwice));
    return edit_user_groups(
        {.groups = names, .added = {}, .removed = {user}, .copy_back = kCopyTwice});
  });
}

// A member list changes: what is named first, the list of what goes into it or out of it.
using Operation = Result (*)(const char* name, const char* const* names, int count);

unsigned run(Operation operation, Result failure, const char* name, const char* const* names,
             int count) {
  if (!arguments_given(name, names, count)) {
    return FSH_ARGUMENT;
  }
  return guarded(failure, [&] { return operation(name, names, count); });
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned AddUsersToSysGroup(const char* group, const char* const* users, int count) {
  return run([](const char* name, const char* const* names,
                int number) { return add_to_system_group(name, listed(names, number)); },
             FSH_MEMBER_NOT_ADDED, group, users, count);
}

unsigned AddUsersToGroup(const char* group, const char* const* users, int count) {
  return run(add_users_to_group, FSH_MEMBER_NOT_ADDED, group, users, count);
}

unsigned AddUserToGroups(const char* user, const char* const* groups, int count) {
  return run(add_user_to_groups, FSH_MEMBER_NOT_ADDED, user, groups, count);
}

unsigned DelUsersFromGroup(const char* group, const char* const* users, int count) {
  return run(remove_users_from_group, FSH_MEMBER_NOT_REMOVED, group, users, count);
}

unsigned DelUserFromGroups(const char* user, const char* const* groups, int count) {
  return run(remove_user_from_groups, FSH_MEMBER_NOT_REMOVED, user, groups, count);
}
