// Lines, fields of account lines, names of member lists, the system log.
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>

#include "filesharing/conf.h"
#include "tests/device_test.h"

namespace {

class TextLinesTest : public DeviceTest {
 protected:
  // A stream of text, closed with the test.
  std::FILE* stream(const std::string& text) {
    text_ = text;
    stream_.reset(text_.empty() ? std::fopen("/dev/null", "r")
                                : fmemopen(text_.data(), text_.size(), "r"));
    return stream_.get();
  }

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  std::string text_;
  std::unique_ptr<std::FILE, Close> stream_;
};

TEST_F(TextLinesTest, EndingSpaceLeavesOneLineFeedOrNone) {
  const std::pair<const char*, const char*> cases[] = {
      {"abc  \r\n", "abc\n"}, {"abc   ", "abc"}, {"abc\r", "abc\n"},
      {"   ", " "},           {"\n", "\n"},      {"", ""},
      {"a\t \n", "a\t\n"},    {"a b", "a b"},    {"\r\n", "\r\n"},
  };
  for (const auto& [text, expected] : cases) {
    std::string buffer(text);
    buffer.resize(buffer.size() + 1);
    StripEndingSpace(buffer.data());
    EXPECT_STREQ(buffer.c_str(), expected) << '"' << text << '"';
  }
}

// Lengths round the sizes at which the buffer grows, a byte that looks like the end of a file, and
// a last line without its end.
TEST_F(TextLinesTest, LinesOfAnyLengthComeWhole) {
  std::string text = "\n\xff\n";
  for (const std::size_t length : {125, 126, 127, 128, 254, 255, 100000}) {
    text += std::string(length, 'x') + '\n';
  }
  text += "last";
  std::FILE* file = stream(text);
  std::string read_back;
  char* line = nullptr;
  int count = 0;
  while (GetLineFromFile(&line, file) == FSH_OK) {
    read_back += line;
    ++count;
    std::free(line);
  }
  EXPECT_EQ(read_back, text);
  EXPECT_EQ(count, 10);
  EXPECT_EQ(line, nullptr);
  EXPECT_EQ(GetLineFromFile(&line, file), 25u);
}

TEST_F(TextLinesTest, ItemExistComparesTheFirstFieldInAnyCase) {
  write("/tmp/items", "plain\nBob:x\n:empty\n\nalice:1:2\nlast");
  const std::pair<const char*, int> cases[] = {{"bob", 1},   {"BOB", 1},   {"bo", 0},   {"bobx", 0},
                                               {"alice", 1}, {"plain", 0}, {"last", 0}, {"", 0}};
  for (const auto& [name, found] : cases) {
    EXPECT_EQ(ItemExist(name, "/tmp/items"), found) << name;
  }
}

TEST_F(TextLinesTest, MemberListOfAGroupLineIsReadNameByName) {
  std::FILE* file = stream("staff:x:2000: alice, b b ,,c\nshort\nnext:x:1:");
  char buf[16];
  int last = 0;
  EXPECT_EQ(GotoUserName(buf, sizeof buf, file), 1);
  EXPECT_STREQ(buf, "staff:x:2000:");
  const std::pair<const char*, int> names[] = {{"alice", 0}, {"b b ", 0}, {"", 1}, {"c", 0}};
  for (const auto& [name, result] : names) {
    EXPECT_EQ(GetUserName(buf, sizeof buf, &last, file), result) << name;
    EXPECT_STREQ(buf, name);
    EXPECT_EQ(last, std::strcmp(name, "c") == 0 ? 1 : 0);
  }
  EXPECT_EQ(GotoUserName(buf, sizeof buf, file), 2);
  EXPECT_STREQ(buf, "short");
  EXPECT_EQ(GotoUserName(buf, sizeof buf, file), 1);
  EXPECT_EQ(GetUserName(buf, sizeof buf, &last, file), 2);
  EXPECT_EQ(last, 1);
  EXPECT_EQ(GotoUserName(buf, sizeof buf, file), 3);
  EXPECT_STREQ(buf, "");
}

// A full buffer ends a read without losing the character that did not fit.
TEST_F(TextLinesTest, FullBuffersLoseNothing) {
  std::FILE* file = stream("abcdef,gh:ij:kl:mn\nop");
  char buf[4];
  int last = 0;
  int status = 0;
  EXPECT_EQ(GetUserName(buf, sizeof buf, &last, file), 0);
  EXPECT_STREQ(buf, "abc");
  EXPECT_EQ(last, 1);
  EXPECT_EQ(GetUserName(buf, sizeof buf, &last, file), 0);
  EXPECT_STREQ(buf, "def");
  EXPECT_EQ(GetUserName(buf, sizeof buf, &last, file), 1);  // the comma alone
  EXPECT_EQ(last, 0);
  EXPECT_EQ(GotoUserName(buf, sizeof buf, file), 2);
  EXPECT_STREQ(buf, "gh:");
  EXPECT_EQ(ReadGroup(buf, sizeof buf, file, &status), 3);
  EXPECT_STREQ(buf, "ij:");
  EXPECT_EQ(status, 1);
  EXPECT_EQ(readvkey(buf, sizeof buf, file), 3);
  EXPECT_STREQ(buf, "kl:");
  EXPECT_EQ(readvkey(buf, sizeof buf, file), 3);
  EXPECT_STREQ(buf, "mn\n");
  EXPECT_EQ(readvkey(buf, sizeof buf, file), 2);
  EXPECT_EQ(readvkey(buf, sizeof buf, file), 0);
  EXPECT_STREQ(buf, "");
}

TEST_F(TextLinesTest, FieldReadersDoWithoutABuffer) {
  const int least = std::numeric_limits<int>::min();  // a size that a subtraction would overflow
  char buf[16] = "before";
  std::FILE* file = stream("a,b:c:d:e");
  EXPECT_EQ(GetUserName(nullptr, 16, nullptr, file), 1);
  EXPECT_EQ(ReadGroup(buf, least, file, nullptr), 0);
  EXPECT_EQ(GotoUserName(buf, least, file), 2);
  EXPECT_EQ(readvkey(nullptr, 16, file), 0);
}

TEST_F(TextLinesTest, ReadGroupTellsHowTheLineStopped) {
  std::FILE* file = stream("a:x:1:m\nab\r\nxy");
  char buf[41];
  int status = 7;
  EXPECT_EQ(ReadGroup(buf, sizeof buf, file, &status), 6);
  EXPECT_STREQ(buf, "a:x:1:");
  EXPECT_EQ(status, 0);
  EXPECT_EQ(ReadGroup(buf, sizeof buf, file, &status), 1);
  EXPECT_EQ(status, 1);
  EXPECT_EQ(ReadGroup(buf, sizeof buf, file, &status), 2);
  EXPECT_STREQ(buf, "ab");
  EXPECT_EQ(status, 1);
  EXPECT_EQ(ReadGroup(buf, sizeof buf, file, &status), 0);  // the line feed after the return
  EXPECT_EQ(ReadGroup(buf, sizeof buf, file, &status), 2);
  EXPECT_STREQ(buf, "xy");
  EXPECT_EQ(status, 2);
}

TEST_F(TextLinesTest, TemporaryFilesGoToTheConfigurationVolume) {
  char buf[44];
  GetTmpFileName(buf);
  EXPECT_STREQ(buf, "/harddisk/volume_1/conf//tmp/tmpfile.XXXXXX");
  mount_volume(5);
  write("/harddisk/volume_5/conf/.qv27", "");
  unlink("/harddisk/volume_1/conf/.qv27");
  GetTmpFileName(buf);
  EXPECT_STREQ(buf, "/harddisk/volume_5/conf/tmp/tmpfile.XXXXXX");
  mount_volume(2);
  write("/harddisk/volume_2/conf/.qv27", "");
  GetTmpFileName(buf);
  EXPECT_STREQ(buf, "/harddisk/volume_2/conf//tmp/tmpfile.XXXXXX");
  unmount_volume(2);
  unmount_volume(5);
  GetTmpFileName(buf);
  EXPECT_STREQ(buf, "/tmp/tmpfile.XXXXXX");
}

// The message is a format, but a page's user may have put anything into it.
TEST_F(TextLinesTest, LogMessagesReachTheSystemLog) {
  const int log = socket(AF_UNIX, SOCK_DGRAM, 0);
  sockaddr_un address{.sun_family = AF_UNIX, .sun_path = "/dev/log"};
  unlink("/dev/log");
  ASSERT_EQ(bind(log, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  const std::pair<const char*, const char*> cases[] = {
      {"can't open", "can't open"}, {"50%% done", "50% done"}, {"%s%n%999999d%", "%s%n%999999d%"}};
  for (const auto& [message, logged] : cases) {
    logerr(message);
    char text[256] = {};
    ASSERT_GT(recv(log, text, sizeof text - 1, MSG_DONTWAIT), 0);
    EXPECT_EQ(std::string(text).substr(0, 4), "<11>");  // facility user, priority error
    EXPECT_TRUE(std::string(text).ends_with(std::string(" FILE_SHARE: ") + logged)) << text;
  }
  close(log);
  unlink("/dev/log");
}

}  // namespace
