// The profile written out: as the head of a project file (so that a project
// written by the program reads back) and as the answer of an exploration.
#pragma once

#include <ostream>

#include "model/profile_settings.h"

// The comment line, [Profile] with its keywords and [Data], without a final line end.
std::ostream& operator<<(std::ostream& os, const ProfileSettings& profile);

// The content of mrv_pro.txt: one property a line, the value first, then
// "=Key;" (some keys with a trailing blank, as the front end expects them).
void write_project_properties(std::ostream& os, const ProfileSettings& profile);

// "NONE", "TAB", "WHITESPACE", or the separator character itself.
my_string locus_separator_text(char separator);
