/* Samba itself reads what the library writes. */
#include <cstring>

#include "filesharing/services.h"
#include "tests/device_test.h"

namespace {

class RealSambaTest : public DeviceTest {
 protected:
  /* The fixture waits for every process, daemons too. */
  void TearDown() override {
    (void)run({"/bin/killall", "-9", "smbd", "nmbd"});
    DeviceTest::TearDown();
  }
};

TEST_F(RealSambaTest, SambaAcceptsTheGlobalSectionWithoutAWarning) {
  if (!exists("/usr/bin/testparm")) GTEST_SKIP() << "samba is not installed: testparm is missing";
  const Outcome factory = run({"testparm", "-s"});
  write("/etc/CGI_ds.conf",
        "[network]\nrecycle=yes\nguest_access=yes\nprinter_icon=no\nprinter_comment=Printer\n"
        "disk_server_comment=Network disk server\n");
  SambaSettings settings = {};
  strcpy(settings.msn_enable, "yes");
  settings.code_page = 852;
  strcpy(settings.wins_enable, "yes");
  strcpy(settings.wins_server, "192.168.1.250");
  strcpy(settings.w_d_name, "ABCDEFGHIJKLMNOP");
  strcpy(settings.printer_name, "Laser");
  ASSERT_EQ(SaveSambaConf(&settings), 0u);
  EXPECT_EQ(SetSMB(), 0u);
  EXPECT_EQ(ResetGuest(), 0u);
  EXPECT_EQ(ResetPrinter(), 0u);
  const Outcome outcome = run({"testparm", "-s"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.error, factory.error) << "no warning but those about the factory's own lines";
  for (const char* line :
       {"\tworkgroup = ABCDEFGHIJKLMNOP\n", "\tdos charset = CP852\n",
        "\tserver string = Network disk server\n", "\twins server = 192.168.1.250\n",
        "\tusername map = no\n", "\tvfs objects = recycle\n"}) {
    EXPECT_NE(outcome.out.find(line), std::string::npos) << line << outcome.out;
  }
}

}  // namespace
