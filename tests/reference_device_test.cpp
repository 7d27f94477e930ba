/* The reference device and the fixture themselves: what every other test relies on. */
#include <unistd.h>

#include <cstdlib>

#include "tests/device_test.h"

namespace {

class ReferenceDeviceTest : public DeviceTest {};

TEST_F(ReferenceDeviceTest, CommandsAndWaitsAreLoggedInOrderWithEachArgumentOnItsOwn) {
  EXPECT_EQ(system("/bin/cp -f /etc/hosts '/tmp/a b'"), 0);
  sleep(2);
  sync();
  EXPECT_EQ(system("/usr/sbin/smbpasswd -a \"$(printf 'x\\ny')\" ''"), 0);
  EXPECT_EQ(system("echo secret | /usr/bin/smbpasswd -s"), 0);
  EXPECT_EQ(commands(), Strings({"/bin/cp [-f] [/etc/hosts] [/tmp/a b]", "sleep 2", "sync",
                                 "/usr/sbin/smbpasswd [-a] [x\\x0Ay] []",
                                 "/usr/bin/smbpasswd [-s] <secret\\x0A>"}));
  EXPECT_EQ(read("/tmp/a b"), read("/etc/hosts"));
}

/* Two halves of one test: what the first leaves behind must be gone in the second. */
class RenewalTest : public DeviceTest {
 protected:
  static inline Snapshot first_;
};

TEST_F(RenewalTest, First) {
  first_ = snapshot();
  mount_volume(2);
  EXPECT_NE(read("/proc/mounts").find(" /harddisk/volume_2 tmpfs "), std::string::npos);
  unmount_volume(1);
  write("/harddisk/volume_2/conf/passwd", "x");
  EXPECT_EQ(system("mkdir -p '/harddisk/volume_3/data/a b' && mount -t tmpfs x "
                   "'/harddisk/volume_3/data/a b'"),
            0);
  EXPECT_EQ(system("rm -r /etc/samba /home; mkdir /etc/hosts2; chmod 0 /etc/share.info;"
                   "chown 7:7 /var/run; rm /etc/passwd; echo > /etc/passwd; mkdir -p /tmp/a/b"),
            0);
  fail_command("cp", 0);
  EXPECT_NE(changes(first_), Strings());
}

TEST_F(RenewalTest, Second) {
  EXPECT_EQ(changes(first_), Strings());
  EXPECT_EQ(commands(), Strings());
  EXPECT_EQ(system("/bin/cp /etc/hosts /tmp/a"), 0);
}

TEST_F(ReferenceDeviceTest, DetachedProcessIsWaitedForWhateverItCloses) {
  const unsigned result = in_process([] {
    if (fork() != 0) return 7u;
    for (int descriptor = 0; descriptor < 64; ++descriptor) close(descriptor);
    (void)setsid();
    if (fork() != 0) _exit(0);
    sleep(1);
    (void)system("/bin/killall inetd");
    return 8u; /* comes back out of the call, as a copy of the caller */
  });
  EXPECT_EQ(result, 7u);
  wait_for_background();
  EXPECT_EQ(commands(), Strings({"sleep 1", "/bin/killall [inetd]"}));
}

}  // namespace
