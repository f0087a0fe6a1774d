// Small pieces shared by the line-based readers of the data sections:
// tokens of a data line, numbers by the standard conversion, EXTERN files,
// the clock of the "done ! (N ms)" lines and the count of loci of a text.
#pragma once

#include <fstream>
#include <string_view>
#include <vector>

#include "model/my_string.h"

namespace reader_support {

// Milliseconds of the process clock.
long long clock_ms();

// The tokens of a line, separated by blanks and tabs.
std::vector<std::string_view> split_blanks(std::string_view line);

// The tokens from `first` on, joined by the locus separator (none for 0).
my_string join_tokens(const std::vector<std::string_view>& tokens, std::size_t first,
                      char separator);

// The whole token converted by the standard conversion and finite.
bool parse_number(std::string_view token, double& value);

// True when the text holds nothing but blanks and tabs.
bool is_blank(std::string_view text);

// The loci of a definition or gamete text: one a character without a
// separator, else the texts between runs of separators.
int count_loci(std::string_view text, char separator);

// Opens the file named in quotes behind the '=' of `line` (keyword names it
// in the reports of readStringContent), relative to `directory` unless the
// name is absolute. `path` receives the name used. True if it opened.
bool open_extern(std::ifstream& file, const my_string& line, std::string_view keyword,
                 int line_number, const my_string& directory, my_string& path);

// Reads the next line into `line`: false at the end of the stream (nothing
// read). The line is counted and cut at its first '#'.
bool next_line(std::istream& is, my_string& line, int& line_number);

// The line in upper case.
my_string upper(const my_string& line);

}  // namespace reader_support
