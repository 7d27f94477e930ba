/* Writes docs/faults.md to descriptor 3, if it is open: each operation that changes the device, run
 * again with each of its steps failing once, and with folders that are full or can not be written.
 */
#include <fcntl.h>
#include <sys/mount.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <regex>
#include <sstream>

#include "tests/device_test.h"
#include "tests/faults/devices.h"
#include "tests/faults/interposed.h"
#include "tests/faults/named_codes.h"
#include "tests/faults/operations.h"

namespace {

constexpr int kTable = 3;
constexpr unsigned long kPlenty = 4096; /* of pages */
const bool table_is_wanted = fcntl(kTable, F_GETFD) != -1;

/* A run of an operation: its code, and the device afterwards. */
struct Aftermath {
  unsigned code;
  Snapshot after;
};

/* What is written of one fault. */
struct Row {
  std::string code;
  std::string changed;
  std::vector<size_t> steps;
};

/* Paths without what is the same in all, and without random parts. */
std::string shown(const std::string& text) {
  static const std::pair<std::regex, const char*> shorter[] = {
      {std::regex("(tmpfile|\\.profile)[.-][A-Za-z0-9]{6}"), "$1"},
      {std::regex("/harddisk/volume_"), "volume_"},
      {std::regex("volume_1/conf\\b"), "conf"},
      {std::regex("/+"), "/"},
      {std::regex("^run "), ""},
  };
  std::string result = text;
  for (const auto& [long_form, form] : shorter)
    result = std::regex_replace(result, long_form, form);
  return result;
}

std::string joined(const Strings& list, const char* separator) {
  std::string text;
  for (const std::string& item : list) text += (text.empty() ? "" : separator) + item;
  return text;
}

/* Steps of the same words are told apart by their number, where not all of them are meant. */
std::string joined_steps(const Strings& all, const std::vector<size_t>& steps) {
  Strings list;
  std::map<std::string, Strings> numbers;
  for (const size_t step : steps) {
    const auto end = all.begin() + static_cast<std::ptrdiff_t>(step) + 1;
    Strings& those = numbers[all[step]];
    if (those.empty()) list.push_back(all[step]);
    those.push_back("#" + std::to_string(std::count(all.begin(), end, all[step])));
  }
  for (std::string& step : list) {
    const auto times = static_cast<size_t>(std::count(all.begin(), all.end(), step));
    if (numbers[step].size() < times) step += " " + joined(numbers[step], " ");
  }
  return joined(list, "; ");
}

std::vector<std::string> lines_of(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  std::ranges::sort(lines);
  return lines;
}

/* " (+2 -1)": lines that are new, and that are gone; nothing for none. */
std::string lines_changed(const std::string& from, const std::string& to) {
  const auto old_lines = lines_of(from), new_lines = lines_of(to);
  Strings more, less;
  std::ranges::set_difference(new_lines, old_lines, std::back_inserter(more));
  std::ranges::set_difference(old_lines, new_lines, std::back_inserter(less));
  if (more.empty() && less.empty()) return "";
  return " (+" + std::to_string(more.size()) + " -" + std::to_string(less.size()) + ")";
}

/* What two snapshots differ in, by the paths as shown. */
using States = std::map<std::string, FileState>;

States states_of(const Snapshot& snapshot) {
  States states;
  for (const auto& [path, state] : snapshot) {
    if (!path.ends_with(".ttt")) states.emplace(shown(path), state);
  }
  return states;
}

const FileState* find(const States& states, const std::string& path) {
  const auto at = states.find(path);
  return at == states.end() ? nullptr : &at->second;
}

bool same(const FileState* one, const FileState* other) {
  return one == other || (one != nullptr && other != nullptr && *one == *other);
}

/* "+path" and such. */
std::string change_of(const std::string& path, const FileState* old, const FileState* now) {
  return (now == nullptr ? "-" : old == nullptr ? "+" : "~") + path;
}

class FaultTable : public DeviceTest {
 protected:
  /* Given the device as it is. */
  using Environment = std::function<void(const Snapshot& device)>;

  /* Runs the operation on the device as prepared for it, with the nth of its steps failing. */
  Aftermath run(const Operation& operation, int nth, const Environment* change = nullptr,
                Interposing what = Interposing::kFaults) {
    set_free_pages("/harddisk/volume_1", kPlenty);
    restore(good_before_);
    if (change != nullptr) (*change)(good_before_);
    before_ = change != nullptr ? snapshot() : good_before_;
    Arguments arguments(operation.texts, operation.list);
    const unsigned code = in_process([&] {
      start_interposing(what, nth);
      const unsigned result = operation.call(arguments);
      stop_interposing();
      return result;
    });
    stop_interposing();
    wait_for_background();
    return {code, snapshot()};
  }

  void add(const Operation& operation) {
    SetUp();
    operation.prepare();
    good_before_ = snapshot();
    good_ = run(operation, 0);
    const Strings steps = interposed_calls();
    const bool commands =
        std::ranges::any_of(steps, [](auto& step) { return step.starts_with("run "); });
    if (changes(before_).empty() && !commands) return;
    codes_ = named_codes(operation.name);
    rows_.clear();
    steps_ = {"none"};
    for (const std::string& step : steps) steps_.push_back(shown(step));
    note(operation, 0, good_);
    for (size_t step = 1; step <= steps.size(); ++step) {
      note(operation, step, run(operation, static_cast<int>(step)));
    }
    for (size_t step = 1; step <= steps.size(); ++step) {
      if (!steps[step - 1].starts_with("run cp ")) continue;
      steps_.push_back("cut " + steps_[step]);
      note(operation, steps_.size() - 1,
           run(operation, static_cast<int>(step), nullptr, Interposing::kCuts));
    }
    for (const auto& [name, environment] : kEnvironments) {
      const Aftermath aftermath = run(operation, 0, &environment);
      for (const std::string& point : mounted()) (void)umount2(point.c_str(), MNT_DETACH);
      mounted().clear();
      steps_.push_back(name);
      note(operation, steps_.size() - 1, aftermath);
    }
    print(operation);
  }

  static inline std::string text_;
  Strings unnamed_;

 private:
  static const std::vector<std::pair<const char*, Environment>> kEnvironments;

  static Strings& mounted() {
    static Strings points;
    return points;
  }

  static void mount_at(const std::string& folder, const char* from, unsigned long flags,
                       const char* options) {
    ASSERT_EQ(mount(from, folder.c_str(), "tmpfs", flags, options), 0) << folder;
    mounted().insert(mounted().begin(), folder);
  }

  /* Files can be made there, but not filled. */
  static void fill_up(const std::string& folder) {
    mount_at(folder, "full", 0, "size=4k,mode=777");
    std::ofstream(folder + "/full") << std::string(8192, 'f');
  }

  static void fill_etc_up(const Snapshot& device) {
    mount_at("/etc", "full", 0, "mode=755");
    restore(device);
    set_free_pages("/etc", 0);
  }

  static void make_read_only(const std::string& folder) {
    mount_at(folder, folder.c_str(), MS_BIND, nullptr);
    ASSERT_EQ(mount(nullptr, folder.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr),
              0);
  }

  void note(const Operation& operation, size_t step, const Aftermath& aftermath) {
    const auto code = codes_.find(aftermath.code);
    const bool named = operation.counts || code != codes_.end();
    if (!named) unnamed_.push_back(steps_[step] + ": " + std::to_string(aftermath.code));
    const std::string result =
        operation.counts || !named ? std::to_string(aftermath.code) : code->second;
    const std::string change =
        step == 0 ? changed_at_all() : changed(states_of(aftermath.after), steps_[step]);
    for (Row& row : rows_) {
      if (row.code != result || row.changed != change) continue;
      row.steps.push_back(step);
      return;
    }
    rows_.push_back({result, change, {step}});
  }

  std::string changed_at_all() const {
    const States was = states_of(good_before_), is = states_of(good_.after);
    Strings list;
    for (const auto& [path, state] : was) {
      const FileState* const now = find(is, path);
      if (!same(&state, now)) list.push_back(change_of(path, &state, now));
    }
    for (const auto& [path, state] : is) {
      if (!was.contains(path)) list.push_back("+" + path);
    }
    return "all: " + (list.empty() ? "nothing" : joined(list, ", "));
  }

  /* "nothing", "all" as without a fault, "all but" what is otherwise, or what is changed: the
   * shorter one. "all but this file": the one that the step was about. */
  std::string changed(const States& is, const std::string& step) const {
    const States was = states_of(before_), good_was = states_of(good_before_),
                 wanted = states_of(good_.after);
    Strings changed, but;
    States paths = is;
    for (const States* more : {&was, &good_was, &wanted}) paths.insert(more->begin(), more->end());
    for (const auto& [path, unused] : paths) {
      const FileState *const now = find(is, path), *const old = find(was, path);
      const bool as_before = same(now, old);
      const bool as_wanted = same(now, find(wanted, path)) ||
                             (as_before && same(find(good_was, path), find(wanted, path)));
      std::string change = change_of(path, old, now);
      if (!as_wanted && now != nullptr) {
        change += lines_changed(old == nullptr ? "" : old->content, now->content);
      }
      if (!as_before) changed.push_back(change);
      if (!as_wanted) but.push_back(as_before ? "=" + path : change);
    }
    if (changed.empty()) return "nothing";
    if (but.empty()) return "all";
    if (but.size() == 1 && step.ends_with(" " + but[0].substr(1, but[0].find(" (") - 1))) {
      return "all but this file";
    }
    const std::string all_but = "all but " + joined(but, ", ");
    return but.size() < changed.size() ? all_but : joined(changed, ", ");
  }

  void print(const Operation& operation) {
    text_ += std::string("\n### ") + operation.name;
    Strings texts;
    for (const Text& text : operation.texts) texts.push_back("\"" + text.value_or("") + "\"");
    for (const std::string& text : operation.list) texts.push_back("\"" + text + "\"");
    if (!texts.empty()) text_ += " of " + joined(texts, ", ");
    text_ += "\n\n| fails | result | changed |\n|---|---|---|\n";
    for (const Row& row : rows_) {
      text_ +=
          "| " + joined_steps(steps_, row.steps) + " | " + row.code + " | " + row.changed + " |\n";
    }
  }

  Snapshot before_, good_before_;
  Aftermath good_;
  std::map<unsigned, std::string> codes_;
  Strings steps_;
  std::vector<Row> rows_;
};

const std::vector<std::pair<const char*, FaultTable::Environment>> FaultTable::kEnvironments{
    {"folders for temporary files are full",
     [](const Snapshot&) {
       fill_up("/tmp");
       fill_up("/harddisk/volume_1/conf/tmp");
     }},
    {"folders for temporary files are read-only",
     [](const Snapshot&) {
       make_read_only("/tmp");
       make_read_only("/harddisk/volume_1/conf/tmp");
     }},
    {"/etc is full", fill_etc_up},
    {"volume_1 is full", [](const Snapshot&) { set_free_pages("/harddisk/volume_1", 0); }},
    {"/etc is read-only", [](const Snapshot&) { make_read_only("/etc"); }},
    {"volume_1 is read-only", [](const Snapshot&) { make_read_only("/harddisk/volume_1"); }},
};

constexpr char kIntroduction[] =
    "# What is left when a step fails\n\n"
    "Each function that changes the device is run on a new one, and then again with each of its\n"
    "steps failing once: the calls to the system that can fail, and the outside commands, those "
    "of\n"
    "its background processes too. Steps of the same words are told apart as #1, #2. `cut cp` is "
    "a\n"
    "copy that has cut its target and written half of it when it fails, as a full disk, a killed\n"
    "copy and a dying disk do. The last ones are whole folders and disks that can not be written.\n"
    "`tests/faults/table renew build/dev` writes this page from such runs, and a test compares it\n"
    "with one. What happens with any number of free pages is a test of its own, `full_disk`.\n\n"
    "*changed* is against the device before the call. `all` is what changes without a fault; else\n"
    "each path that is new (+), gone (-), different (~) or, in what `all but` lists, as before "
    "(=).\n"
    "Where a file is neither as before nor as without a fault, the lines that it has more and "
    "less\n"
    "than before are counted. `all but this file`: the step's own file is as before, or stays.\n"
    "Backups (NAME.ttt) are not mentioned. `volume_N` is `/harddisk/volume_N`, `conf`\n"
    "`volume_1/conf`, which holds the files of `/etc` with the same names; `tmpfile` and "
    "`.profile`\n"
    "have a random end.\n";

TEST_F(FaultTable, EachStepOfEachOperationFailsOnce) {
  text_ = kIntroduction;
  std::string header;
  for (const Operation& operation : operations()) {
    SCOPED_TRACE(operation.name);
    const std::string& its_header = exported_functions().at(operation.name);
    if (header != its_header) text_ += "\n## " + (header = its_header) + "\n";
    add(operation);
    EXPECT_EQ(Strings(), std::exchange(unnamed_, {})) << "codes that the header does not name";
  }
  if (table_is_wanted) {
    EXPECT_EQ(::write(kTable, text_.data(), text_.size()), static_cast<ssize_t>(text_.size()));
  }
}

TEST_F(FaultTable, OperationsAreAllThatIsExported) {
  std::map<std::string, std::string> missing = exported_functions();
  for (const Operation& operation : operations()) missing.erase(operation.name);
  EXPECT_EQ(missing, (std::map<std::string, std::string>()));
}

}  // namespace
