#include "input/stream_reader.h"

#include <limits>
#include <string>

#include "input/keywords.h"
#include "model/report.h"

namespace {

constexpr int end_of_file = std::char_traits<char>::eof();
constexpr std::streamsize whole_line = std::numeric_limits<std::streamsize>::max();
// Lines met while searching for a bracket are dropped this far only.
constexpr std::streamsize dropped_line_length = 79;

bool is_graphic(int c) {
  return c > ' ' && c < 127;
}
bool is_alnum(int c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}
bool may_start_item(int c) {
  return is_alnum(c) || c == '[' || c == '}' || c == '"' || c == '\'' || c == 0;
}

std::string lower_case(std::string_view text) {
  std::string result(text);
  for (char& c : result)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return result;
}

// The text up to `stop` (consumed, not kept); sets failbit if the stream ends first.
std::string read_up_to(std::istream& is, char stop) {
  std::string text;
  std::getline(is, text, stop);
  return text;
}

// Next '[' outside comments: 1 behind it, 0 at the end, -1 on a fault.
int find_bracket(std::istream& is) {
  for (;;) {
    if (!skip_comments(is)) return is.eof() ? 0 : -1;
    const int c = is.get();
    if (c == end_of_file) return 0;
    if (c == '[') return 1;
    if (is_alnum(c)) is.ignore(dropped_line_length, '\n');
  }
}

void report_not_found(std::istream& is, const char* where) {
  is.clear(is.rdstate() & ~std::ios::failbit);
  report_error(report_kind::ERROR, where, 102);
}

// Reads a quoted value behind its opening mark: to the closing mark, a line
// feed or a character 0.
int read_quoted_value(std::istream& is, char mark, my_string& value) {
  std::string text;
  for (int c = is.get(); c != end_of_file && c != mark && c != '\n' && c != 0; c = is.get())
    text.push_back(static_cast<char>(c));
  if (is.fail()) return 0;
  if (mark == '\'' && text.size() > 1) {
    report_error(report_kind::ERROR, "get_qstring(ifstream& ifs, my_string& s)", 101);
    return 0;
  }
  value = text;
  return 1;
}

// A bare word, up to white space; a '}' ends it and stays in the stream.
int read_bare_word(std::istream& is, my_string& value) {
  std::string text;
  for (int c = is.peek(); c != end_of_file; c = is.peek()) {
    if (c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '}') break;
    text.push_back(static_cast<char>(is.get()));
  }
  const std::size_t slash = text.find('/');
  if (slash != std::string::npos) text.erase(slash);
  value = text;
  return 1;
}

}  // namespace

int skip_comments(std::istream& is) {
  if (is.eof()) return 1;
  for (;;) {
    const int c = is.get();
    if (c == end_of_file) return 0;
    if (c == '#') {
      const int next = is.get();
      if (next == end_of_file) return 0;
      if (next != '\n') is.ignore(whole_line, '\n');
      if (is.fail()) return 0;
      continue;
    }
    if (!is_graphic(c) && c != 0) continue;
    if (may_start_item(c)) {
      is.unget();
      return 1;
    }
    const char shown = static_cast<char>(c);
    log_stream() << " ** a_public::skip_comments_l_253:the character is not the expected one c:"
                 << shown << '\n';
    report_error(report_kind::ERROR,
                 std::string("skip_comments(ifstream& ifs) (\"") + shown + "\")", 100);
    return 0;
  }
}

int get_qstring(std::istream& is, my_string& value) {
  bool after_comment = false;
  int c = is.get();
  for (;; c = is.get()) {
    if (c == ' ' || c == '\t' || c == '\r') continue;
    if (after_comment && (c == '\n' || c == '\v' || c == '\f')) continue;
    if (c != '#') break;
    is.ignore(whole_line, '\n');
    after_comment = true;
  }
  if (c == '"' || c == '\'') return read_quoted_value(is, static_cast<char>(c), value);
  if (c == end_of_file) return 0;
  is.unget();
  return is_alnum(c) ? read_bare_word(is, value) : 0;
}

int read_word(std::istream& is, my_string& word) {
  for (int c = is.peek();; c = is.peek()) {
    if (c == end_of_file || c == '\n') return 0;
    if (c == '#') {
      is.ignore(dropped_line_length, '\n');
      return 0;
    }
    if (is_alnum(c)) break;
    is.get();
  }
  std::string text;
  for (int c = is.peek(); is_graphic(c) && c != '#'; c = is.peek())
    text.push_back(static_cast<char>(is.get()));
  word = lower_case(text);
  return 1;
}

int next_keyword(std::istream& is, my_string& keyword) {
  while (is.good()) {
    if (!skip_comments(is)) {
      keyword = "*";
      return 0;
    }
    const int c = is.get();
    if (c == end_of_file) {
      keyword = "*";
      return 0;
    }
    if (c == '[') {
      is.unget();
      return 0;
    }
    if (!is_alnum(c)) continue;
    // The keyword runs to its '=' on the same line; a line without one leaves
    // its end in the stream for the value reader to meet.
    std::string text(1, static_cast<char>(c));
    int d = is.get();
    for (; d != end_of_file && d != '=' && d != '\n'; d = is.get())
      text.push_back(static_cast<char>(d));
    if (d == end_of_file) {
      keyword = "";
      return 0;
    }
    if (d == '\n') is.unget();
    const std::size_t blank = text.find_first_of(" \t\r");
    if (blank != std::string::npos) text.erase(blank);
    keyword = lower_case(text);
    return 1;
  }
  return 0;
}

int position_after(std::istream& is, std::string_view section, std::string_view subsection,
                   std::string_view keyword) {
  if (!section.empty()) {
    const std::string wanted = lower_case(section);
    for (;;) {
      if (find_bracket(is) <= 0) {
        report_not_found(is, "position_after() (1)");
        return 0;
      }
      const std::string name = lower_case(read_up_to(is, ']'));
      is.ignore(whole_line, '\n');
      if (name == wanted) break;
    }
  }
  if (!subsection.empty()) {
    const std::string wanted = lower_case(subsection);
    for (;;) {
      const int found = find_bracket(is);
      if (found <= 0) {
        report_not_found(is, found == 0 ? "position_after() (2)" : "position_after() (3)");
        return 0;
      }
      if (is.peek() != '[') continue;
      is.get();
      const std::string name = lower_case(read_up_to(is, ']'));
      is.ignore(whole_line, '\n');  // the second ']' and the rest of the line
      if (name == wanted) break;
    }
  }
  if (keyword.empty()) return 1;
  const std::string wanted = lower_case(keyword);
  for (;;) {
    if (is.eof()) {
      report_not_found(is, "position_after() (5)");
      return 0;
    }
    my_string found;
    if (!next_keyword(is, found)) {
      report_not_found(is, "position_after() (4)");
      return 0;
    }
    if (found == wanted) return 1;
    is.ignore(whole_line, '\n');
  }
}

int get_next_subsection(std::istream& is, my_string& name) {
  for (;;) {
    const int c = is.get();
    if (c == end_of_file) {
      is.clear(std::ios::eofbit);
      return 0;
    }
    if (c == '#') is.ignore(whole_line, '\n');
    if (c == '[') break;
  }
  if (is.peek() == '[') is.get();
  std::string text = read_up_to(is, ']');
  if (!is.good()) {  // no closing bracket before the end
    report_error(report_kind::ERROR, "get_next_subsection()", 104);
    return 0;
  }
  is.ignore(whole_line, '\n');
  text = lower_case(text);
  const int number = subsection_number(text);
  if (number == 0) {
    report_error(report_kind::ERROR, "get_next_subsection() (\"" + text + "\"", 105);
    return 0;
  }
  name = text;
  return number;
}
