// fileshare album user ...: the users of the photo album.
#include <optional>

#include "cli/album_parts.h"
#include "cli/failure.h"
#include "cli/names.h"
#include "cli/output.h"
#include "cli/record_text.h"
#include "cli/verbs.h"
#include "filesharing/album.h"
#include "platform/samba/samba.h"

namespace fileshare {
namespace {

constexpr TextRule kText1{"text 1", 50, ":", false};
constexpr TextRule kText2{"text 2", 15, ":", false};
constexpr const char* kNotWritten = "the file of the album's users can not be written";

struct ChangeArguments {
  std::string name;
  std::optional<std::string> new_name;
  std::optional<std::string> text1;
  std::optional<std::string> text2;
  std::optional<int32_t> number1;
  std::optional<int32_t> number2;
};

std::string operation_on(const char* verb, const std::string& name) {
  return std::string(verb) + " album user " + in_quotes(name);
}

int refuse_operation(const std::string& operation, const char* reason) {
  return refuse("can not " + operation + ": " + reason, kFailed);
}

Json described(const AlbumUserInfo& user) {
  return {{"name", user.name},
          {"text1", user.information1},
          {"text2", user.information2},
          {"number1", user.number1},
          {"number2", user.number2}};
}

int list_users(const JsonArguments& arguments) {
  AlbumUserInfo* users = nullptr;
  // A server that never had users of the album has no file of them.
  if (GetAllAlbumUsers(&users) != 0 && NumOfAlbumUser() != 0) {
    return refuse_operation("list the album's users", "a user's information is malformed");
  }
  Json list = Json::array();
  for (const AlbumUserInfo* user = users; user != nullptr; user = user->next) {
    list.push_back(described(*user));
  }
  FreeAlbumUserList(users);
  print_list(list, {"name", "text1", "text2", "number1", "number2"}, arguments.json);
  return kDone;
}

int look_up(const std::string& operation, const std::string& name, AlbumUserInfo& user) {
  if (const int status = require_album_user(operation, name); status != kDone) return status;
  fill(user.name, name);
  if (GetAlbumUserInfo(&user) == 0) return kDone;
  return refuse_operation(operation, "the user's information is missing or malformed");
}

int show_user(const ShowArguments& arguments) {
  AlbumUserInfo user{};
  const int status = look_up(operation_on("show", arguments.name), arguments.name, user);
  if (status != kDone) return status;
  Json shown = described(user);
  shown["folders"] = Json::array();
  for (const AlbumFolder& folder : folders_of(arguments.name)) {
    shown["folders"].push_back(folder.path);
  }
  print_record(shown, arguments.json);
  return kDone;
}

void change(const ChangeArguments& arguments, AlbumUserInfo& user) {
  if (arguments.text1) fill(user.information1, *arguments.text1);
  if (arguments.text2) fill(user.information2, *arguments.text2);
  user.number1 = arguments.number1.value_or(user.number1);
  user.number2 = arguments.number2.value_or(user.number2);
}

int add_user(const ChangeArguments& arguments) {
  const std::string operation = operation_on("add", arguments.name);
  AlbumUserInfo user{};
  fill(user.name, arguments.name);
  change(arguments, user);
  if (AddAlbumUser(&user) != 0) {
    return refuse_operation(operation, "a user of this name exists");
  }
  // A file that can not be opened has no code of its own.
  return AlbumUserExist(user.name) == 1 ? kDone : refuse_operation(operation, kNotWritten);
}

// The name as the file has it: a section is renamed in its own letter case only.
std::string stored_name(const std::string& name) {
  AlbumUserInfo* users = nullptr;
  std::string stored = name;
  if (GetAllAlbumUsers(&users) != 0) return stored;
  for (const AlbumUserInfo* user = users; user != nullptr; user = user->next) {
    if (strequal(user->name, name.c_str()) != 0) stored = user->name;
  }
  FreeAlbumUserList(users);
  return stored;
}

int update_user(const ChangeArguments& arguments) {
  const std::string operation = operation_on("update", arguments.name);
  AlbumUserInfo user{};
  if (const int status = look_up(operation, arguments.name, user); status != kDone) return status;
  const std::string old_name = stored_name(arguments.name);
  const std::string new_name = arguments.new_name.value_or(old_name);
  // The library would give two users one name.
  if (strequal(new_name.c_str(), old_name.c_str()) == 0 && AlbumUserExist(new_name.c_str()) == 1) {
    return refuse_operation(operation, "name: a user of this name exists");
  }
  fill(user.name, new_name);
  change(arguments, user);
  return report(operation, static_cast<unsigned>(UpdateAlbumUser(old_name.c_str(), &user)),
                {{FSH_FAILED, kNotWritten}});
}

int delete_user(const NameArguments& arguments) {
  const std::string operation = operation_on("delete", arguments.name);
  if (const int status = require_album_user(operation, arguments.name); status != kDone) {
    return status;
  }
  return DelAlbumUser(arguments.name.c_str()) == 0 ? kDone
                                                   : refuse_operation(operation, kNotWritten);
}

void add_user_name(CLI::App& verb, std::string& name) {
  add_name(verb, name, "NAME", "The user's name", kUserName);
}

void add_information(CLI::App& verb, ChangeArguments& arguments) {
  verb.footer("What the texts and numbers mean is up to the album's pages.");
  add_user_name(verb, arguments.name);
  verb.add_option("--text1", arguments.text1, "Text 1, at most 50 bytes")->check(follows(kText1));
  verb.add_option("--text2", arguments.text2, "Text 2, at most 15 bytes")->check(follows(kText2));
  verb.add_option("--number1", arguments.number1, "Number 1");
  verb.add_option("--number2", arguments.number2, "Number 2");
}

}  // namespace

int require_album_user(const std::string& operation, const std::string& user) {
  if (AlbumUserExist(user.c_str()) == 1) return kDone;
  return refuse_operation(operation, "the album has no user of this name");
}

void add_album_user_verbs(CLI::App& album) {
  CLI::App& group = add_group(album, "user", "Users of the album, who need no account");
  auto& list = add_verb(group, "list", "List the users", list_users);
  add_json(list, list.arguments.json);
  auto& show = add_verb(group, "show", "Show a user", show_user);
  add_user_name(show, show.arguments.name);
  add_json(show, show.arguments.json);
  auto& add = add_verb(group, "add", "Add a user", add_user);
  add_information(add, add.arguments);
  auto& update = add_verb(group, "update", "Change a user; what is not given stays", update_user);
  add_information(update, update.arguments);
  update.add_option("--name", update.arguments.new_name, "Another name")->check(follows(kUserName));
  auto& remove = add_verb(group, "delete", "Delete a user; the pictures stay", delete_user);
  add_user_name(remove, remove.arguments.name);
}

}  // namespace fileshare
