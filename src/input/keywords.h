// The reserved words of a project file: the keywords that may stand before
// an '=' and the names of the five subsections of [Data]. All lower case;
// callers lower-case what they read before looking it up.
#pragma once

#include <string_view>

// 1 if the (lower-case) word is one of the reserved keywords.
int is_keyword(std::string_view word);

// Subsections of [Data], numbered as get_next_subsection() returns them.
namespace subsection {
constexpr int DISTANCE_MATRIX = 1;
constexpr int HAPLOTYPE_DEFINITION = 2;
constexpr int SAMPLES = 3;
constexpr int STRUCTURE = 4;
constexpr int MANTEL = 5;
}  // namespace subsection

// The number of the (lower-case) subsection name, 1 to 5, or 0 if it is none.
int subsection_number(std::string_view name);
