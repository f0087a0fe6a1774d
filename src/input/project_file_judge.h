// The end of the line-based reading of a project: what must have been seen.
#pragma once

#include "input/project_file_reader.h"

// Logs a message for each required keyword or section that the file lacks,
// and for the optional ones whose default is used. True if one was required.
bool log_missing_keywords(const ProjectFileFlags& flags, const ProfileSettings& profile);
