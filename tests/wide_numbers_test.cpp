/* Dates and inodes that take more than 32 bits, which a device of 32 bits meets too. */
#include <sys/mount.h>
#include <sys/stat.h>

#include <cstdint>

#include "filesharing/shares.h"
#include "platform/profile/profile.h"
#include "tests/fileshare_run.h"

namespace {

class WideNumbersTest : public FileshareRun {
 protected:
  static void expect_changed(const std::string& path) {
    EXPECT_EQ(PRO_SetStr("s", "k", "new", path.c_str()), 0);
    EXPECT_EQ(read(path), "[s]\nk=new\n");
  }
};

TEST_F(WideNumbersTest, FilesOfTheYear2040AreReadChangedAndListed) {
  for (const char* path : {"/etc/sample.conf", "/tmp/pass.lck"}) {
    write(path, "[s]\nk=old\n");
    ASSERT_EQ(run({"touch", "-d", "2040-01-01 00:00:00", path}).status, 0);
  }
  expect_changed("/etc/sample.conf");
  expect({"lock", "list"},
         "LOCK  FILE           SINCE                GUARDS\n"
         "pass  /tmp/pass.lck  2040-01-01 00:00:00  the system password file\n");
}

TEST_F(WideNumbersTest, FoldersOfLargeInodesAreListedAndTheirFilesChanged) {
  for (const char* folder : {"/tmp/lower", "/tmp/upper", "/tmp/large"}) {
    ASSERT_EQ(mkdir(folder, 0755), 0);
    ASSERT_EQ(mount("disk", folder, "tmpfs", 0, ""), 0);
  }
  for (const char* folder : {"/tmp/lower/Photos", "/tmp/upper/files", "/tmp/upper/work"}) {
    ASSERT_EQ(mkdir(folder, 0755), 0);
  }
  write("/tmp/lower/Photos/sample.conf", "[s]\nk=old\n");
  /* It tells the files of the lower folder from its own by the highest bits of their inodes. */
  const char* const layers =
      "lowerdir=/tmp/lower,upperdir=/tmp/upper/files,workdir=/tmp/upper/work,xino=on";
  struct stat file {};
  if (mount("large", "/tmp/large", "overlay", 0, layers) != 0) GTEST_SKIP() << "no overlays here";
  ASSERT_EQ(stat("/tmp/large/Photos/sample.conf", &file), 0);
  if (file.st_ino <= UINT32_MAX) GTEST_SKIP() << "no large inodes here";

  char path[] = "/tmp/large/photos/SAMPLE.conf";
  EXPECT_EQ(trans_dir(path), 0);
  EXPECT_STREQ(path, "/tmp/large/Photos/sample.conf");
  expect_changed(path);
}

}  // namespace
