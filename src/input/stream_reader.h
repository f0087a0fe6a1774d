// Helpers of the character-based project reader, which the translator and
// the exploration of a project use: they walk the stream itself, skipping
// comments ('#' to the line end) and reporting faults without line numbers.
// Each returns 1 on success and 0 at the end of the stream or on a fault.
#pragma once

#include <istream>
#include <string_view>

#include "model/my_string.h"

// Skips white space and comments. 1 with the stream on a legal character
// (a letter or digit, '[', '}', '"', '\'' or the character 0, left unread) or
// when the stream is already at its end; 0 at the end or at any other
// character, which raises ERROR 100.
int skip_comments(std::istream& is);

// A value: "text" (to the closing quote or the line end), 'c' (one character
// or none, else ERROR 101), or a bare word, cut at '/' and at '}' (the brace
// stays in the stream). 0 when no value starts here.
int get_qstring(std::istream& is, my_string& value);

// A bare word on the current line, lower-cased (such as "none").
int read_word(std::istream& is, my_string& word);

// The lower-cased keyword in front of the next '=', cut at its first blank.
// 0 at a '[' (left unread), at the end (keyword "*") or on a fault.
int next_keyword(std::istream& is, my_string& keyword);

// Positions the stream behind [section], then [[subsection]], then behind the
// '=' of keyword, each level searched only if its name is not empty. 0 with
// an ERROR 102 when a level is not found.
int position_after(std::istream& is, std::string_view section, std::string_view subsection,
                   std::string_view keyword);

// The next [[subsection]]: 1 to 5 (see input/keywords.h) with its lower-case
// name; 0 at the end of the stream (only eofbit then set) or on a fault
// (ERROR 104 or 105).
int get_next_subsection(std::istream& is, my_string& name);
