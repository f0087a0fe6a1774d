#include "model/my_string.h"

#include <algorithm>
#include <cstring>

namespace {

bool is_blank_or_tab(char c) {
  return c == ' ' || c == '\t';
}

constexpr int kEnd = std::char_traits<char>::eof();

// Reads characters one at a time through the stream buffer, handing each to
// `keep` until `stop` accepts one (consumed, not kept). Returns that
// character, or kEnd at the end of the file. The end of the file sets eofbit,
// and failbit too when no character at all was consumed in this read, so that
// a last line without a line end still counts as read.
template <class Stop, class Keep>
int scan(std::istream& is, bool& consumed, Stop stop, Keep keep) {
  const std::istream::sentry guard(is, true);
  if (!guard) return kEnd;
  std::streambuf* buffer = is.rdbuf();
  for (;;) {
    const int ch = buffer->sbumpc();
    if (ch == kEnd) {
      is.setstate(consumed ? std::ios::eofbit : std::ios::eofbit | std::ios::failbit);
      return kEnd;
    }
    consumed = true;
    const char c = static_cast<char>(ch);
    if (stop(c)) return ch;
    keep(c);
  }
}

}  // namespace

my_string::my_string() = default;

my_string::my_string(const char* text) {
  if (text == nullptr) return;
  const std::size_t n = std::strlen(text);
  if (n < static_cast<std::size_t>(max_length)) assign_checked(std::string_view(text, n));
}

my_string::my_string(const std::string& text) : my_string(std::string_view(text)) {}

my_string::my_string(std::string_view text) {
  if (text.size() < static_cast<std::size_t>(max_length)) assign_checked(text);
}

my_string::my_string(const my_string& other) {
  assign_checked(other.text_);
}

my_string::my_string(my_string&& other) noexcept
    : text_(std::move(other.text_)), capacity_(other.capacity_) {
  other.text_.clear();
  other.capacity_ = 10;
}

my_string& my_string::operator=(const my_string& other) {
  if (this != &other) assign_checked(other.text_);
  return *this;
}

my_string& my_string::operator=(my_string&& other) noexcept {
  if (this != &other) {
    text_ = std::move(other.text_);
    capacity_ = other.capacity_;
    other.text_.clear();
    other.capacity_ = 10;
  }
  return *this;
}

my_string& my_string::operator=(const char* text) {
  assign_checked(std::string_view(text ? text : ""));
  return *this;
}

my_string& my_string::operator=(const std::string& text) {
  assign_checked(text);
  return *this;
}

my_string& my_string::operator=(std::string_view text) {
  assign_checked(text);
  return *this;
}

my_string& my_string::operator=(int value) {
  if (capacity_ < 20) capacity_ = 22;
  text_ = std::to_string(value);
  return *this;
}

my_string& my_string::operator=(char c) {
  if (capacity_ < 4) capacity_ = 12;
  text_.assign(1, c);
  return *this;
}

my_string& my_string::operator+=(const my_string& other) {
  append_checked(other.text_);
  return *this;
}

my_string& my_string::operator+=(const char* text) {
  append_checked(std::string_view(text ? text : ""));
  return *this;
}

my_string& my_string::operator+=(const std::string& text) {
  append_checked(text);
  return *this;
}

my_string& my_string::operator+=(std::string_view text) {
  append_checked(text);
  return *this;
}

my_string& my_string::operator+=(char c) {
  if (length() + 1 <= max_length) push(c);
  return *this;
}

char& my_string::operator[](int i) {
  static thread_local char nowhere;
  if (i >= 0 && i < length()) return text_[static_cast<std::size_t>(i)];
  nowhere = '\0';
  return nowhere;
}

char my_string::operator[](int i) const {
  if (i >= 0 && i < length()) return text_[static_cast<std::size_t>(i)];
  return '\0';
}

void my_string::assign_checked(std::string_view text) {
  const std::size_t n = text.size();
  if (n > static_cast<std::size_t>(max_length)) return;
  if (capacity_ < static_cast<int>(n) + 2) capacity_ = static_cast<int>(n) + 2;
  if (text.data() >= text_.data() && text.data() < text_.data() + text_.size() + 1) {
    text_ = std::string(text);  // the source lies inside this text
  } else {
    text_.assign(text);
  }
}

void my_string::append_checked(std::string_view text) {
  const std::size_t n = text_.size() + text.size();
  if (n > static_cast<std::size_t>(max_length)) return;
  if (capacity_ < static_cast<int>(n) + 2) capacity_ = static_cast<int>(n) + 2;
  if (text.data() >= text_.data() && text.data() < text_.data() + text_.size() + 1) {
    text_ += std::string(text);
  } else {
    text_.append(text);
  }
}

void my_string::push(char c) {
  const int n = length() + 1;
  if (capacity_ < n + 2) capacity_ = kDelta + n;
  text_.push_back(c);
}

void my_string::drop_trailing_cr() {
  if (!text_.empty() && text_.back() == '\r') text_.pop_back();
}

// --- Reading -----------------------------------------------------------------

std::istream& my_string::getline(std::istream& is, char delimiter) {
  text_.clear();
  bool consumed = false;
  const int stopped = scan(
      is, consumed, [delimiter](char c) { return c == delimiter || c == '\n' || c == '\0'; },
      [this](char c) { *this += c; });
  if (stopped != static_cast<unsigned char>(delimiter) || delimiter == '\n') drop_trailing_cr();
  return is;
}

std::istream& my_string::read_word(std::istream& is) {
  text_.clear();
  bool consumed = false;
  scan(
      is, consumed, [](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\0'; },
      [this](char c) { *this += c; });
  drop_trailing_cr();
  return is;
}

std::istream& my_string::read_next_word(std::istream& is) {
  text_.clear();
  bool consumed = false;
  const int first = scan(
      is, consumed, [](char c) { return c != ' ' && c != '\t' && c != '\n' && c != '\r'; },
      [](char) {});
  if (first == kEnd) return is;
  // The word grows by its capacity plus delta plus 2 when full.
  auto keep = [this](char c) {
    if (length() + 1 > max_length) return;
    if (capacity_ < length() + 3) capacity_ += kDelta + 2;
    text_.push_back(c);
  };
  keep(static_cast<char>(first));
  scan(
      is, consumed, [](char c) { return c == ' ' || c == '\t' || c == '\n'; }, keep);
  drop_trailing_cr();
  return is;
}

int my_string::read_line(std::istream& is) {
  // A bounded line read: a longer line keeps its first max_length characters,
  // sets failbit and leaves the rest in the stream.
  std::string line;
  const std::istream::sentry guard(is, true);
  if (!guard) return 1;
  std::streambuf* buffer = is.rdbuf();
  bool consumed = false;
  for (;;) {
    const int next = buffer->sgetc();
    if (next == kEnd) {
      is.setstate(std::ios::eofbit);
      break;
    }
    if (static_cast<int>(line.size()) == max_length && next != '\n') {
      is.setstate(std::ios::failbit);
      break;
    }
    buffer->sbumpc();
    consumed = true;
    if (next == '\n') break;
    line.push_back(static_cast<char>(next));
  }
  if (!consumed) is.setstate(std::ios::failbit);
  if (!line.empty() && line.back() == '\r') line.pop_back();
  assign_checked(line);
  return 1;
}

int my_string::read_quoted(std::istream& is) {
  text_.clear();
  bool consumed = false;
  const int opening = scan(
      is, consumed, [](char c) { return c == '\n' || c == '"'; }, [](char) {});
  if (opening != '"') return 0;
  const int closing = scan(
      is, consumed, [](char c) { return c == '\n' || c == '"'; }, [this](char c) { *this += c; });
  return closing == '"' ? 1 : 0;
}

// --- Editing -----------------------------------------------------------------

void my_string::erase(int position, int count) {
  if (count < 1 || position < 0 || position >= length()) return;
  if (position + static_cast<long long>(count) >= length()) {
    text_.resize(static_cast<std::size_t>(position));
  } else {
    text_.erase(static_cast<std::size_t>(position), static_cast<std::size_t>(count));
  }
}

void my_string::remove_blanks() {
  std::erase_if(text_, is_blank_or_tab);
}

void my_string::to_lower() {
  for (char& c : text_) {
    if (c == '\0') break;
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
}

void my_string::to_upper() {
  for (char& c : text_) {
    if (c == '\0') break;
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
}

void my_string::strip_path() {
  const std::size_t pos = text_.find_last_of("/\\");
  if (pos != std::string::npos) text_.erase(0, pos + 1);
}

void my_string::path_only() {
  const std::size_t pos = text_.find_last_of("/\\");
  if (pos == std::string::npos) {
    text_.clear();
  } else {
    text_.resize(pos + 1);
  }
}

void my_string::strip_extension() {
  const std::size_t pos = text_.rfind('.');
  if (pos != std::string::npos) text_.resize(pos);
}

void my_string::backslash_to_slash() {
  std::replace(text_.begin(), text_.end(), '\\', '/');
}

void my_string::to_identifier() {
  for (char& c : text_) {
    if (c == '\\' || c == ':' || c == '/') c = '_';
  }
}

void my_string::reverse_string() {
  std::reverse(text_.begin(), text_.end());
}

namespace {

std::string replace_blanks(const std::string& text, std::string_view with) {
  std::string out;
  out.reserve(text.size());
  for (char c : text) {
    if (c == ' ') {
      out += with;
    } else {
      out += c;
    }
  }
  return out;
}

}  // namespace

my_string my_string::escape_for_link() const {
  return my_string(replace_blanks(text_, "%20"));
}

my_string my_string::escape_for_shell() const {
  return my_string(replace_blanks(text_, "\\ "));
}

// --- Searching ---------------------------------------------------------------

int my_string::find(char c) const {
  const std::size_t pos = text_.find(c);
  return pos == std::string::npos ? -1 : static_cast<int>(pos);
}

int my_string::find(std::string_view text) const {
  if (text.empty() || text.size() > text_.size()) return -1;
  const std::size_t pos = text_.find(text);
  return pos == std::string::npos ? -1 : static_cast<int>(pos);
}

bool my_string::contains(char c) const {
  return text_.find(c) != std::string::npos;
}

bool my_string::contains(std::string_view text) const {
  return !text.empty() && text_.find(text) != std::string::npos;
}

int my_string::last_index(char c) const {
  const std::size_t pos = text_.rfind(c);
  return pos == std::string::npos ? -1 : static_cast<int>(pos);
}

// --- Free operations ----------------------------------------------------------

my_string operator+(const my_string& a, const my_string& b) {
  if (a.length() + b.length() > my_string::max_length) return my_string();
  my_string result(a);
  result += b;
  return result;
}

my_string operator+(const my_string& a, const char* b) {
  return a + my_string(b);
}

my_string operator+(const char* a, const my_string& b) {
  return my_string(a) + b;
}

my_string operator+(const my_string& a, char b) {
  if (a.length() + 1 > my_string::max_length) return my_string();
  my_string result(a);
  result += b;
  return result;
}

my_string next_token(my_string& source, char separator) {
  const std::string& text = source.str();
  const std::size_t start = text.find_first_not_of(separator);
  if (start == std::string::npos) {
    source = "";
    return my_string();
  }
  const std::size_t end = text.find(separator, start);
  my_string token(std::string_view(text).substr(start, end - start));
  source = end == std::string::npos ? std::string() : text.substr(end);
  return token;
}

my_string after(const my_string& source, char c) {
  const int pos = source.find(c);
  if (pos < 0) return source;
  return my_string(std::string_view(source).substr(static_cast<std::size_t>(pos) + 1));
}

my_string before(const my_string& source, char c) {
  const int pos = source.find(c);
  if (pos < 0) return source;
  return my_string(std::string_view(source).substr(0, static_cast<std::size_t>(pos)));
}

std::istream& operator>>(std::istream& is, my_string& s) {
  s = "";
  bool consumed = false;
  const int first = scan(
      is, consumed, [](char c) { return c != ' ' && c != '\t'; }, [](char) {});
  if (first == kEnd) return is;
  int stopped = first;
  if (first != '\r' && first != '\n' && first != ' ') {
    s += static_cast<char>(first);
    stopped = scan(
        is, consumed, [](char c) { return c == '\r' || c == '\n' || c == ' '; },
        [&s](char c) { s += c; });
  }
  if (stopped == '\n') is.rdbuf()->sungetc();
  return is;
}

std::ostream& operator<<(std::ostream& os, const my_string& s) {
  return os << s.c_str();
}
