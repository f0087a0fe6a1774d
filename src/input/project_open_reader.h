// The data part of a project read by the route of the translator: the
// subsections of [Data] are found one after the other (at most four), and
// each is read by the same section readers as in a run.
#pragma once

#include <istream>

#include "input/project_file_reader.h"
#include "model/profile_settings.h"

// The stream stands behind the [Profile] section (read by
// get_profile_settings). 1 when every subsection was read; 0 after an ERROR
// (128 no subsection, 131 more than four, or the fault of a section).
// `directory` (with its trailing '/', or empty) is where EXTERN files are.
int open_project_data(std::istream& is, ProfileSettings& profile, ProjectSectionReaders& sections,
                      const my_string& directory);
