// Users into groups and out of them.
#include <unistd.h>

#include "conf/result.h"
#include "conf/text.h"
#include "conf/transaction.h"
#include "filesharing/conf.h"
#include "filesharing/groups.h"
#include "groups/member_edits.h"

namespace filesharing {
namespace {

// Kept: the two additions to /etc/group, and the one that puts users into the list of a group, copy
// once and through the utility library; every other copy runs twice, and the second status counts.
constexpr CopyBack kCopyOnce{.through = Through::kUtilityLibrary,
                             .sync_after = Sync::kOnSuccess,
                             .settle_seconds = 1,
                             .failure = FSH_MEMBER_NOT_ADDED};
constexpr CopyBack kCopyTwice{
    .runs = 2, .sync_after = Sync::kOnSuccess, .settle_seconds = 1, .failure = FSH_FAILED};

Result failure_of(MemberAction action) {
  return action == MemberAction::kAdd ? FSH_MEMBER_NOT_ADDED : FSH_MEMBER_NOT_REMOVED;
}

// Changes both group files as one; whatever goes wrong in it has one code.
Result change_members(const MemberChange& change, const CopyBack& group_file,
                      const CopyBack& user_groups) {
  constexpr std::uint64_t kMostMemberBytes = 32;  // with the quota
  const bool adds = change.action == MemberAction::kAdd;
  const Result failure = failure_of(change.action);
  return transact({.mask = kGroupFiles,
                   .busy = adds ? FSH_ADD_MEMBER_BUSY : failure,
                   .no_room = failure,
                   .adds = adds ? kMostMemberBytes * change.groups.size() * change.users.size() : 0,
                   .out_of_memory = failure},
                  [&] {
                    const bool changed = edit_group_file(change, group_file) == FSH_OK &&
                                         edit_user_groups(change, user_groups) == FSH_OK;
                    return changed ? FSH_OK : failure;
                  });
}

bool adds_a_member(const MemberChange& change) {
  for (const char* group : change.groups) {
    for (const char* user : change.users) {
      if (UserInGroup(user, group) == 1) {
        return true;
      }
    }
  }
  return false;
}

Result add_users_to_system_group(const MemberChange& change) {
  return edit_group_file(change, kCopyOnce);
}

Result add_users_to_group(const MemberChange& change) {
  if (adds_a_member(change)) {
    return FSH_MEMBER_EXISTS;
  }
  const Result result = change_members(change, kCopyOnce, kCopyOnce);
  if (result != FSH_ADD_MEMBER_BUSY) {
    sync();
  }
  return result;
}

Result add_user_to_groups(const MemberChange& change) {
  return adds_a_member(change) ? FSH_MEMBER_EXISTS : change_members(change, kCopyOnce, kCopyTwice);
}

Result remove_members(const MemberChange& change) {
  return change_members(change, kCopyTwice, kCopyTwice);
}

using Operation = Result (*)(const MemberChange& change);

unsigned change_group(Operation operation, MemberAction action, const char* group,
                      const char* const* users, int count) {
  if (missing(group) || !is_list(users, count)) {
    return FSH_ARGUMENT;
  }
  return guarded(failure_of(action), [&] {
    return operation({action, ChangedLines::kFirst, {group}, {users, users + count}});
  });
}

unsigned change_user(Operation operation, MemberAction action, const char* user,
                     const char* const* groups, int count) {
  if (missing(user) || !is_list(groups, count)) {
    return FSH_ARGUMENT;
  }
  return guarded(failure_of(action), [&] {
    return operation({action, ChangedLines::kAll, {groups, groups + count}, {user}});
  });
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned AddUsersToSysGroup(const char* group, const char* const* users, int count) {
  return change_group(add_users_to_system_group, MemberAction::kAdd, group, users, count);
}

unsigned AddUsersToGroup(const char* group, const char* const* users, int count) {
  return change_group(add_users_to_group, MemberAction::kAdd, group, users, count);
}

unsigned AddUserToGroups(const char* user, const char* const* groups, int count) {
  return change_user(add_user_to_groups, MemberAction::kAdd, user, groups, count);
}

unsigned DelUsersFromGroup(const char* group, const char* const* users, int count) {
  return change_group(remove_members, MemberAction::kRemove, group, users, count);
}

unsigned DelUserFromGroups(const char* user, const char* const* groups, int count) {
  return change_user(remove_members, MemberAction::kRemove, user, groups, count);
}
