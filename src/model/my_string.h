// my_string: the text class of the program.
//
// A text holds at most 150,000 characters. Operations that would go beyond
// that do so silently, and not all in the same way:
//   - assignment (from my_string, char pointer or std::string) and append
//     leave the target unchanged;
//   - operator+ gives the empty text;
//   - construction from a char pointer (or std::string) gives the empty text
//     already at 150,000 characters (149,999 at most are kept).
// The recorded capacity follows the program's buffer rules (assignment to
// length + 2, single-character append by a step of 100, and so on), so that
// it can be inspected; the characters themselves live in a std::string.
//
// The readers accept CR LF line ends: a carriage return that ends a line
// read by getline, read_word, read_next_word or read_line is dropped.
#pragma once

#include <compare>
#include <istream>
#include <ostream>
#include <string>
#include <string_view>

class my_string {
 public:
  // Longest text that a my_string holds.
  static constexpr int max_length = 150000;

  my_string();
  my_string(const char* text);         // NOLINT: implicit on purpose
  my_string(const std::string& text);  // NOLINT: implicit on purpose
  explicit my_string(std::string_view text);
  my_string(const my_string& other);
  my_string(my_string&& other) noexcept;
  ~my_string() = default;

  my_string& operator=(const my_string& other);
  my_string& operator=(my_string&& other) noexcept;
  my_string& operator=(const char* text);
  my_string& operator=(const std::string& text);
  my_string& operator=(std::string_view text);
  // Writes the number in decimal ("%d").
  my_string& operator=(int value);
  // The text of one character.
  my_string& operator=(char c);

  my_string& operator+=(const my_string& other);
  my_string& operator+=(const char* text);
  my_string& operator+=(const std::string& text);
  my_string& operator+=(std::string_view text);
  my_string& operator+=(char c);

  // Interop.
  const char* c_str() const { return text_.c_str(); }
  const std::string& str() const { return text_; }
  operator std::string_view() const { return text_; }  // NOLINT: implicit on purpose
  int length() const { return static_cast<int>(text_.size()); }
  int size() const { return length(); }
  int capacity() const { return capacity_; }
  int delta() const { return kDelta; }

  // Cells 0 .. length() - 1; cell length() is the terminating 0. Any other
  // index reads 0 and writes nowhere.
  char& operator[](int i);
  char operator[](int i) const;

  // --- Reading from a stream ------------------------------------------------
  // Each returns the stream (or 1/0 where noted). A read that consumed
  // characters and then met the end of the file leaves only eofbit set, so
  // that the last line or word of a file without a final line end counts; a
  // read that met the end before any character fails.

  // Empties the text, then appends up to (not including) `delimiter`, a line
  // feed, character 0 or the end of the file; the stopping character is
  // consumed.
  std::istream& getline(std::istream& is, char delimiter = '\n');
  // getline with blank, tab, line feed and character 0 as delimiters.
  std::istream& read_word(std::istream& is);
  // Skips blanks, tabs and line ends, then reads up to a blank, tab or line
  // feed, which is consumed.
  std::istream& read_next_word(std::istream& is);
  // One line of at most 150,000 characters, up to a line feed. Always 1.
  int read_line(std::istream& is);
  // Reads up to the first '"' of the current line and then the text up to
  // the closing '"'. 1 if the closing quote was found; 0 at the end of the
  // file or at a line feed before it (the text keeps what was read).
  int read_quoted(std::istream& is);

  // --- Editing -------------------------------------------------------------
  // Removes `count` characters from `position`; reaching the end cuts the
  // text at `position`; count < 1, a negative position or one at or past the
  // end does nothing.
  void erase(int position, int count);
  void remove_blanks();  // deletes all blanks and tabs
  void to_lower();       // A-Z only, up to the first character 0
  void to_upper();       // a-z only, up to the first character 0
  void strip_path();     // keeps what follows the last '/' or '\'
  void path_only();      // keeps up to and including the last '/' or '\'; else empty
  // Removes the last '.' and what follows it; a text without '.' is kept.
  void strip_extension();
  void backslash_to_slash();
  void to_identifier();  // '\', ':' and '/' become '_'
  void reverse_string();
  my_string escape_for_link() const;   // blank -> "%20"
  my_string escape_for_shell() const;  // blank -> "\ "

  // --- Searching -----------------------------------------------------------
  int find(char c) const;                 // first index or -1
  int find(std::string_view text) const;  // -1 also for an empty or too long pattern
  int find(const char* text) const { return find(std::string_view(text ? text : "")); }
  int find(const my_string& text) const { return find(std::string_view(text)); }
  bool contains(char c) const;
  bool contains(std::string_view text) const;  // false for an empty pattern
  bool contains(const char* text) const { return contains(std::string_view(text ? text : "")); }
  bool contains(const my_string& text) const { return contains(std::string_view(text)); }
  bool is_empty() const { return text_.empty(); }
  int last_index(char c) const;  // last index or -1

  friend my_string operator+(const my_string& a, const my_string& b);
  friend my_string operator+(const my_string& a, const char* b);
  friend my_string operator+(const char* a, const my_string& b);
  friend my_string operator+(const my_string& a, char b);

  friend bool operator==(const my_string& a, const my_string& b) { return a.text_ == b.text_; }
  friend bool operator==(const my_string& a, const char* b) {
    return a.text_ == std::string_view(b ? b : "");
  }
  friend bool operator==(const my_string& a, const std::string& b) { return a.text_ == b; }
  friend bool operator==(const my_string& a, std::string_view b) { return a.text_ == b; }
  friend std::strong_ordering operator<=>(const my_string& a, const my_string& b) {
    return a.text_.compare(b.text_) <=> 0;
  }

 private:
  static constexpr int kDelta = 100;

  // The one place that replaces the text under the assignment rules.
  void assign_checked(std::string_view text);
  void append_checked(std::string_view text);
  // Appends a character without the limit test (callers test first).
  void push(char c);
  void drop_trailing_cr();

  std::string text_;
  int capacity_ = 10;
};

// The text up to the next `separator` in `source` after skipping leading
// separators. What was consumed (the leading separators and the token) is
// removed from `source`; the stopping separator stays.
my_string next_token(my_string& source, char separator);
// The text behind the first `c`; all of `source` if it has none.
my_string after(const my_string& source, char c);
// The text in front of the first `c`; all of `source` if it has none.
my_string before(const my_string& source, char c);

// Empties the text, reads a character, skips further blanks and tabs, then
// appends up to the end of the file, a carriage return, a line feed or a
// blank. A line feed that stopped it is put back.
std::istream& operator>>(std::istream& is, my_string& s);
// Writes the text up to its first character 0.
std::ostream& operator<<(std::ostream& os, const my_string& s);

template <>
struct std::hash<my_string> {
  size_t operator()(const my_string& s) const noexcept { return std::hash<std::string>()(s.str()); }
};
