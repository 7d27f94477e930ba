/* The test fixture: each test finds the reference device as the first set-up left it.
 *
 * How to write a test:
 *
 *   class AddUserTest : public DeviceTest {};          // tests/users_test.cpp, and in
 *                                                      // tests/CMakeLists.txt one line:
 *                                                      // add_device_test(users users_test.cpp)
 *   TEST_F(AddUserTest, GroupFileCopyFails) {
 *     const Snapshot before = snapshot();
 *     fail_command("cp", 3);                           // the third cp from now on exits with 1
 *     EXPECT_EQ(AddUser(&dave), 34u);
 *     EXPECT_EQ(changes(before), Strings({"+/tmp/edquota.tmp"}));
 *     EXPECT_EQ(commands(), Strings({"/bin/cp [-f] [/tmp/tmpfile.XXXXXX] [/etc/group]", "sleep
 * 1"}));
 *   }
 *
 * - The program runs as root inside the device and may change any file by its own path.
 *   Run one by hand: device/enter build/dev users_test --gtest_filter=...
 * - Outside programs are stand-ins that log their arguments and exit with 0 (cp, chown, chmod,
 *   mkdir and rm work); sleep, usleep and sync are logged and return at once.
 * - What a function does in a detached process: call wait_for_background(), then look.
 * - Passwords: admin "Harbour-29", guest none, alice "sesame42", bob "correcthorsebattery",
 *   carol "tea4two". Volume 1 alone is mounted and is the configuration volume.
 * - What is leaked on purpose is told to the leak checker in device_test.cpp, nowhere else.
 */
#ifndef TESTS_DEVICE_TEST_H
#define TESTS_DEVICE_TEST_H

#include <gtest/gtest.h>
#include <sys/types.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

using Strings = std::vector<std::string>;

/* A file as it lies on the device; links are not followed. */
struct FileState {
  mode_t mode; /* type and permissions */
  uid_t owner;
  gid_t group;
  std::string content; /* of a file; what a link leads to */

  bool operator==(const FileState&) const = default;
};

/* All of /etc, /harddisk, /home, /tmp, /usr/local/CGI_ds.conf and /var by path; not the log of
 * commands. */
using Snapshot = std::map<std::string, FileState>;

/* How a program ended (128 and the signal's number when one killed it) and what it printed. */
struct Outcome {
  int status;
  std::string out;
  std::string error;
};

class DeviceTest : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  /* ---- Files; a failure of one of these fails the test. ---- */
  static std::string read(const std::string& path);
  static void write(const std::string& path, const std::string& content);
  static bool exists(const std::string& path);       /* a link that leads nowhere exists too */
  static unsigned mode(const std::string& path);     /* permissions alone: 0644 */
  static std::string owner(const std::string& path); /* "0:0" */

  static Snapshot snapshot();
  /* "+path" for each new file, "-path" for each that is gone, "~path" for each that changed, in
   * order of the paths; the random part of temporary names reads XXXXXX. */
  static Strings changes(const Snapshot& before);
  /* Makes all files as they were; mounts and the log of commands stay as they are. */
  static void restore(const Snapshot& before);

  /* ---- Outside programs and waits ---- */
  /* Every call of a stand-in and every wait so far, in order: "/bin/cp [-f] [from] [to]",
   * "sleep 2", "sync". */
  static Strings commands();
  static void clear_commands();
  /* The nth call of the program from now on (0: each call) does nothing but exit. */
  static void fail_command(const std::string& name, int nth, int status = 1);
  /* The nth call of any program does no work, or as a copy half of it, and the group of processes
   * that it belongs to dies. */
  static void cut_power(int nth, bool half_copied);
  /* Runs `action` within the nth sleep from now on, in the process that sleeps. */
  static void at_sleep(int nth, std::function<void()> action);
  /* Runs `action` within each sync from now on. */
  static void at_sync(std::function<void()> action);

  /* ---- Processes ---- */
  /* The result of a call made in a process of its own; a leak or a crash there fails the test. */
  static unsigned in_process(const std::function<unsigned()>& call);
  /* Waits until every process that the test has started, detached ones too, has ended. */
  static void wait_for_background();
  /* Runs a program ("fileshare" and such by name) with the text as its standard input, without
   * waits. */
  static Outcome run(const Strings& arguments, const std::string& input = "");

  /* ---- Volumes, 1 to 5 ---- */
  /* Mounts an empty volume with its folders data and conf/tmp; only volume 1 is mounted when a
   * test starts. It is a configuration volume only with conf/.qv27. `size` as for tmpfs: "64k". */
  static void mount_volume(int number, const std::string& size = "64m");
  static void unmount_volume(int number);
};

#endif
