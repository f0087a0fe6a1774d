#include "model/my_string.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace {

std::string text_of(int n, char c = 'a') {
  return std::string(static_cast<std::size_t>(n), c);
}

// --- The 150,000-character limit, operation by operation ----------------------

struct LimitCase {
  const char* operation;
  int start;        // length of the target before
  int added;        // length of the operand
  int want_length;  // length after
};

TEST(MyStringLimit, AssignmentKeepsOldTextBeyondLimit) {
  const std::vector<LimitCase> cases = {
      {"assign char*", 3, 150000, 150000},
      {"assign char*", 3, 150001, 3},
      {"assign std::string", 3, 150000, 150000},
      {"assign std::string", 3, 150001, 3},
  };
  for (const auto& c : cases) {
    my_string target(text_of(c.start, 'x'));
    const std::string operand = text_of(c.added);
    if (std::string(c.operation) == "assign char*") {
      target = operand.c_str();
    } else {
      target = operand;
    }
    EXPECT_EQ(target.length(), c.want_length) << c.operation << " of " << c.added;
    if (c.want_length == c.start) {
      EXPECT_EQ(target, text_of(c.start, 'x'));
    }
  }
  // A my_string never exceeds the limit, so the longest one can be assigned.
  my_string longest;
  longest = text_of(150000).c_str();
  my_string target("x");
  target = longest;
  EXPECT_EQ(target.length(), 150000);
}

TEST(MyStringLimit, AppendDoesNothingBeyondLimit) {
  const std::vector<LimitCase> cases = {
      {"my_string", 149990, 10, 150000}, {"my_string", 149990, 11, 149990},
      {"char*", 149990, 10, 150000},     {"char*", 149990, 11, 149990},
      {"char", 149999, 1, 150000},       {"char", 150000, 1, 150000},
  };
  for (const auto& c : cases) {
    my_string target;
    target = text_of(c.start).c_str();
    const std::string op = c.operation;
    if (op == "my_string") {
      target += my_string(text_of(c.added, 'b'));
    } else if (op == "char*") {
      target += text_of(c.added, 'b').c_str();
    } else {
      target += 'b';
    }
    EXPECT_EQ(target.length(), c.want_length) << op << " onto " << c.start;
  }
}

TEST(MyStringLimit, ConcatenationBeyondLimitIsEmpty) {
  my_string a;
  a = text_of(149990).c_str();
  EXPECT_EQ((a + my_string(text_of(10))).length(), 150000);
  EXPECT_TRUE((a + my_string(text_of(11))).is_empty());
  EXPECT_TRUE((a + text_of(11).c_str()).is_empty());
  EXPECT_EQ((a + text_of(10).c_str()).length(), 150000);
}

TEST(MyStringLimit, ConstructionAdmitsOneCharacterLessThanAssignment) {
  EXPECT_EQ(my_string(text_of(149999).c_str()).length(), 149999);
  EXPECT_TRUE(my_string(text_of(150000).c_str()).is_empty());
  my_string assigned;
  assigned = text_of(150000).c_str();
  EXPECT_EQ(assigned.length(), 150000);
}

// --- Recorded capacity --------------------------------------------------------

TEST(MyStringCapacity, FollowsBufferRules) {
  my_string s;
  EXPECT_EQ(s.capacity(), 10);
  EXPECT_EQ(s.delta(), 100);
  s = "abcdefgh";  // 8 + 2 fits in 10
  EXPECT_EQ(s.capacity(), 10);
  s = "abcdefghi";  // 9 + 2 does not
  EXPECT_EQ(s.capacity(), 11);
  s += "xyz";  // append: exactly new length + 2
  EXPECT_EQ(s.capacity(), 14);
  s += 'q';  // 13 + 2 <= 14? no: 15 > 14, grows to delta + new length
  EXPECT_EQ(s.capacity(), 100 + 13);
  my_string n;
  n = -123;
  EXPECT_EQ(n, "-123");
  EXPECT_EQ(n.capacity(), 22);
  my_string c;
  c = 'z';
  EXPECT_EQ(c, "z");
  EXPECT_EQ(c.capacity(), 10);
}

// --- Editing and searching ------------------------------------------------------

TEST(MyStringEdit, Erase) {
  struct Case {
    const char* text;
    int position, count;
    const char* want;
  };
  const std::vector<Case> cases = {
      {"abcdef", 1, 2, "adef"},   {"abcdef", 3, 3, "abc"},     {"abcdef", 3, 99, "abc"},
      {"abcdef", 0, 0, "abcdef"}, {"abcdef", -1, 2, "abcdef"}, {"abcdef", 2, -4, "abcdef"},
      {"abcdef", 6, 1, "abcdef"},
  };
  for (const auto& c : cases) {
    my_string s(c.text);
    s.erase(c.position, c.count);
    EXPECT_EQ(s, c.want) << c.text << " erase(" << c.position << ", " << c.count << ")";
  }
}

TEST(MyStringEdit, PathOperations) {
  struct Case {
    const char* text;
    const char* stripped_path;
    const char* path;
    const char* no_extension;
  };
  const std::vector<Case> cases = {
      {"dir/sub/file.mvp", "file.mvp", "dir/sub/", "dir/sub/file"},
      {"c:\\dir\\file.a.b", "file.a.b", "c:\\dir\\", "c:\\dir\\file.a"},
      {"file", "file", "", "file"},
      {"mixed\\a/b.txt", "b.txt", "mixed\\a/", "mixed\\a/b"},
      {"", "", "", ""},
  };
  for (const auto& c : cases) {
    my_string a(c.text), b(c.text), e(c.text);
    a.strip_path();
    b.path_only();
    e.strip_extension();
    EXPECT_EQ(a, c.stripped_path) << c.text;
    EXPECT_EQ(b, c.path) << c.text;
    EXPECT_EQ(e, c.no_extension) << c.text;
  }
  my_string long_name(text_of(600, 'n') + ".mvp");
  long_name.strip_extension();
  EXPECT_EQ(long_name, text_of(600, 'n'));
}

TEST(MyStringEdit, CharacterMaps) {
  my_string s("Ab Z\tz:/\\x");
  my_string lower = s, upper = s, ident = s, slash = s, blanks = s, rev = s;
  lower.to_lower();
  upper.to_upper();
  ident.to_identifier();
  slash.backslash_to_slash();
  blanks.remove_blanks();
  rev.reverse_string();
  EXPECT_EQ(lower, "ab z\tz:/\\x");
  EXPECT_EQ(upper, "AB Z\tZ:/\\X");
  EXPECT_EQ(ident, "Ab Z\tz___x");
  EXPECT_EQ(slash, "Ab Z\tz://x");
  EXPECT_EQ(blanks, "AbZz:/\\x");
  EXPECT_EQ(rev, "x\\/:z\tZ bA");
  my_string empty;
  empty.reverse_string();
  EXPECT_TRUE(empty.is_empty());
  EXPECT_EQ(my_string("a b  c").escape_for_link(), "a%20b%20%20c");
  EXPECT_EQ(my_string("a b").escape_for_shell(), "a\\ b");
}

TEST(MyStringEdit, CaseChangeStopsAtCharacterZero) {
  my_string s("AB");
  s += '\0';
  s += "CD";
  s.to_lower();
  EXPECT_EQ(s.str(), std::string("ab\0CD", 5));
}

TEST(MyStringSearch, FindContainsLastIndex) {
  const my_string s("abcabc");
  EXPECT_EQ(s.find('c'), 2);
  EXPECT_EQ(s.find('z'), -1);
  EXPECT_EQ(s.find("bc"), 1);
  EXPECT_EQ(s.find(""), -1);
  EXPECT_EQ(s.find("abcabcd"), -1);
  EXPECT_EQ(s.find("cab"), 2);
  EXPECT_TRUE(s.contains("ca"));
  EXPECT_FALSE(s.contains(""));
  EXPECT_FALSE(s.contains('z'));
  EXPECT_TRUE(s.contains('a'));
  EXPECT_EQ(s.last_index('a'), 3);
  EXPECT_EQ(s.last_index('z'), -1);
}

TEST(MyStringTokens, NextToken) {
  struct Case {
    const char* source;
    char separator;
    const char* token;
    const char* rest;
  };
  const std::vector<Case> cases = {
      {"  ab cd", ' ', "ab", " cd"}, {"ab", ' ', "ab", ""}, {"   ", ' ', "", ""}, {"", ' ', "", ""},
      {",,x,,y", ',', "x", ",,y"},
  };
  for (const auto& c : cases) {
    my_string source(c.source);
    const my_string token = next_token(source, c.separator);
    EXPECT_EQ(token, c.token) << '"' << c.source << '"';
    EXPECT_EQ(source, c.rest) << '"' << c.source << '"';
  }
}

TEST(MyStringTokens, AfterAndBefore) {
  struct Case {
    const char* source;
    char c;
    const char* after;
    const char* before;
  };
  const std::vector<Case> cases = {
      {"key=value=x", '=', "value=x", "key"},
      {"novalue", '=', "novalue", "novalue"},
      {"=lead", '=', "lead", ""},
      {"trail=", '=', "", "trail"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(after(my_string(c.source), c.c), c.after) << c.source;
    EXPECT_EQ(before(my_string(c.source), c.c), c.before) << c.source;
  }
}

// --- Readers ------------------------------------------------------------------

std::vector<std::string> read_all(const std::string& input, char delimiter) {
  std::istringstream is(input);
  std::vector<std::string> out;
  my_string s;
  while (s.getline(is, delimiter)) out.push_back(s.str());
  return out;
}

TEST(MyStringRead, Getline) {
  using V = std::vector<std::string>;
  EXPECT_EQ(read_all("a\nb\n", '\n'), (V{"a", "b"}));
  EXPECT_EQ(read_all("a\r\nb\r\n", '\n'), (V{"a", "b"}));
  EXPECT_EQ(read_all("a\nlast", '\n'), (V{"a", "last"}));
  EXPECT_EQ(read_all("k=v\nw", '='), (V{"k", "v", "w"}));
  EXPECT_EQ(read_all(std::string("x\0y", 3), '\n'), (V{"x", "y"}));
  EXPECT_EQ(read_all("\n\n", '\n'), (V{"", ""}));
  EXPECT_EQ(read_all("", '\n'), V{});
}

TEST(MyStringRead, GetlineKeepsFirst150000Characters) {
  std::istringstream is(text_of(150010) + "\nnext\n");
  my_string s;
  s.getline(is);
  EXPECT_EQ(s.length(), 150000);
  s.getline(is);
  EXPECT_EQ(s, "next");
}

TEST(MyStringRead, ReadWord) {
  std::istringstream is("one two\tthree\r\nfour");
  my_string s;
  std::vector<std::string> words;
  while (s.read_word(is)) words.push_back(s.str());
  EXPECT_EQ(words, (std::vector<std::string>{"one", "two", "three", "four"}));
}

TEST(MyStringRead, ReadNextWordSkipsLineEnds) {
  std::istringstream is("  \n\t alpha  beta\r\n\r\n gamma");
  my_string s;
  std::vector<std::string> words;
  while (s.read_next_word(is) && !s.is_empty()) words.push_back(s.str());
  EXPECT_EQ(words, (std::vector<std::string>{"alpha", "beta", "gamma"}));
}

TEST(MyStringRead, ReadLine) {
  std::istringstream is("first line\r\nsecond\nthird");
  my_string s;
  EXPECT_EQ(s.read_line(is), 1);
  EXPECT_EQ(s, "first line");
  s.read_line(is);
  EXPECT_EQ(s, "second");
  s.read_line(is);
  EXPECT_EQ(s, "third");
  EXPECT_FALSE(is.fail());
  EXPECT_EQ(s.read_line(is), 1);
  EXPECT_TRUE(is.fail());
}

TEST(MyStringRead, ReadLineLongerThanLimitFails) {
  std::istringstream is(text_of(150001) + "\n");
  my_string s;
  s.read_line(is);
  EXPECT_EQ(s.length(), 150000);
  EXPECT_TRUE(is.fail());
}

TEST(MyStringRead, ReadQuoted) {
  struct Case {
    const char* input;
    int result;
    const char* text;
  };
  const std::vector<Case> cases = {
      {"Name= \"a b\" rest\n", 1, "a b"}, {"\"\"", 1, ""},
      {"no quote\n\"later\"", 0, ""},     {"open \"never closed\nx\"", 0, "never closed"},
      {"open \"at end", 0, "at end"},
  };
  for (const auto& c : cases) {
    std::istringstream is(c.input);
    my_string s("old");
    EXPECT_EQ(s.read_quoted(is), c.result) << c.input;
    EXPECT_EQ(s, c.text) << c.input;
  }
}

TEST(MyStringRead, StreamExtraction) {
  struct Case {
    const char* input;
    const char* word;
    int next;  // next character left in the stream, -1 at end
  };
  const std::vector<Case> cases = {
      {"  word rest", "word", 'r'}, {"\t\tword\nrest", "word", '\n'},
      {"word\r\nx", "word", '\n'},  {"a\tb c", "a\tb", 'c'},
      {"last", "last", -1},         {"\nx", "", '\n'},
  };
  for (const auto& c : cases) {
    std::istringstream is(c.input);
    my_string s("old");
    is >> s;
    EXPECT_EQ(s, c.word) << c.input;
    EXPECT_EQ(is.peek(), c.next) << c.input;
  }
}

TEST(MyStringInterop, ComparesAndConverts) {
  my_string s(std::string("abc"));
  std::string_view view = s;
  EXPECT_EQ(view, "abc");
  EXPECT_TRUE(s == "abc");
  EXPECT_TRUE("abc" == s);
  EXPECT_TRUE(s == std::string("abc"));
  EXPECT_TRUE(s < my_string("abd"));
  EXPECT_EQ(std::string(s.c_str()), "abc");
  std::ostringstream os;
  os << s;
  EXPECT_EQ(os.str(), "abc");
  my_string copy = s;
  copy += 'd';
  EXPECT_EQ(s, "abc");
  EXPECT_EQ(copy, "abcd");
  my_string self("xy");
  self += self;
  EXPECT_EQ(self, "xyxy");
}

}  // namespace
