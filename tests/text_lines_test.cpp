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

TEST_F(TextLinesTest, EndOfTheFileIsNoLineThoughAByteLooksLikeIt) {
  std::FILE* file = stream("\xff");
  char* line = nullptr;
  ASSERT_EQ(GetLineFromFile(&line, file), 0u);
  EXPECT_STREQ(line, "\xff");
  std::free(line);
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

int go(char* buf, int size, int*, std::FILE* file) {
  return GotoUserName(buf, size, file);
}
int name(char* buf, int size, int* last, std::FILE* file) {
  return GetUserName(buf, size, last, file);
}
int group(char* buf, int size, int* status, std::FILE* file) {
  return ReadGroup(buf, size, file, status);
}
int key(char* buf, int size, int*, std::FILE* file) {
  return readvkey(buf, size, file);
}

// One field after another: how the read ended, what it gave, what else it told.
TEST_F(TextLinesTest, FieldsOfAccountLines) {
  constexpr int kNothing = 7;
  struct Read {
    int (*function)(char*, int, int*, std::FILE*);
    int result;
    const char* text;
    int told = kNothing;
  };
  const std::tuple<std::string, int, std::vector<Read>> lines[] = {
      {"staff:x:2000: alice, b b ,,c\nshort\nnext:x:1:",
       16,
       {{go, 1, "staff:x:2000:"},
        {name, 0, "alice", 0},
        {name, 0, "b b ", 0},
        {name, 1, "", 0},
        {name, 0, "c", 1},
        {go, 2, "short"},
        {go, 1, "next:x:1:"},
        {name, 2, "", 1},
        {go, 3, ""}}},
      // a full buffer ends a read without losing the character that did not fit
      {"abcdef,gh:ij:kl:mn\nop",
       4,
       {{name, 0, "abc", 1},
        {name, 0, "def", 1},
        {name, 1, "", 0},
        {go, 2, "gh:"},
        {group, 3, "ij:", 1},
        {key, 3, "kl:"},
        {key, 3, "mn\n"},
        {key, 2, "op"},
        {key, 0, ""}}},
      // the line feed behind a carriage return is a line of its own
      {"a:x:1:m\nab\r\nxy",
       41,
       {{group, 6, "a:x:1:", 0},
        {group, 1, "m", 1},
        {group, 2, "ab", 1},
        {group, 0, "", 1},
        {group, 2, "xy", 2}}},
      // a size that a subtraction would overflow
      {"a,b:c", std::numeric_limits<int>::min(), {{group, 0, "~", 1}, {go, 2, "~"}, {key, 0, "~"}}},
  };
  for (const auto& [text, size, reads] : lines) {
    std::FILE* file = stream(text);
    for (const Read& read : reads) {
      SCOPED_TRACE(text + read.text);
      char buf[48] = "~";
      int told = kNothing;
      EXPECT_EQ(read.function(buf, size, &told, file), read.result);
      EXPECT_STREQ(buf, read.text);
      EXPECT_EQ(told, read.told);
    }
  }
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
