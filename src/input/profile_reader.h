// The [Profile] section read by the character-based route, which the
// translator and the exploration of a project use. Each keyword of the
// profile has its own reader; an invalid value either falls back on the
// default with a WARNING or, for the counts and the title, fails the read.
#pragma once

#include <istream>

#include "model/my_string.h"
#include "model/profile_settings.h"

// Positions behind [Profile] and reads its keywords up to the next section.
// 1 if every keyword was read (or fell back on its default); 0 otherwise.
int get_profile_settings(std::istream& is, ProfileSettings& profile);

// Reads the value of one reserved keyword, the stream standing behind its
// '='. Keywords that do not belong to the profile are passed over.
int read_profile_id_content(const my_string& keyword, std::istream& is, ProfileSettings& profile);

// The separator that a LocusSeparator value names, shared by both routes:
// 1 with the code for TAB, WHITESPACE, NONE or "\0" (the upper-case text is
// searched for them), 0 if the value names none of them.
int named_locus_separator(const my_string& upper_text, char& separator);
