// Helpers of the line-based project reader: each works on one line of the
// file, already read whole, and reports faults with the line's number.
// Also the plain text-to-number conversions that all readers share.
#pragma once

#include <string_view>

#include "model/my_string.h"

// Position of the first '=' of the line; 0 (with a WARNING 188 and a log
// line naming the keyword) if there is none.
int checkForPresenceOfEqualSign(const my_string& line, std::string_view keyword, int line_number);

// The text between the first quote mark (double, else single) behind the
// first '=' and the next mark of the same kind. 1 with the value; 0 with a
// WARNING 190 and a log line, the value untouched. An empty text is a value.
int readStringContent(const my_string& line, my_string& value, std::string_view keyword,
                      int line_number);

// The number behind the first '=', which must convert whole and be finite.
// 1 with the value; 0 with a WARNING 190 and a log line, the value untouched.
int readStringContent(const my_string& line, double& value, std::string_view keyword,
                      int line_number);

// The text behind the first '=' (the whole line if it has none). Always 1.
int read_value_text(const my_string& line, my_string& value);

// Cuts the line at its first '#'.
void strip_comment(my_string& line);

// 1 if the file name holds a ':' anywhere.
int is_absolute_path(const my_string& name);

// Digits gathered right to left, each at the running power of ten; a '-'
// negates what was gathered so far; anything else is passed over, so that
// "12a3" gives 123 and "1.5" gives 15. No digits give 0.
int ascii_to_int(std::string_view text);

// [-]int[.frac][(e|d)[-]exp], the digit parts read by ascii_to_int. An
// upper-case 'E' is no exponent letter. The empty text gives 0.0.
double ascii_to_double(std::string_view text);

// The whole part of a number read from a file, as an int: NaN gives 0 and
// values beyond the range of int give its nearest bound.
int truncate_to_int(double value);
