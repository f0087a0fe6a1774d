// The character-based route through a whole project file: the exploration
// that answers a front end with what a project holds without loading its
// data. (The translator's opening reads the data: input/project_open_reader.h.)
#pragma once

#include <istream>
#include <string>

#include "model/profile_settings.h"

// Where an exploration writes the names of samples and groups.
struct ExploreFiles {
  std::string samples = "samples.txt";
  std::string groups = "groups.txt";
};

// Reads the profile, then walks the subsections of [Data] (at most five):
// the distance matrix's settings, the names of the samples, the groups.
// 1 on success; 0 after an ERROR (127 profile, 128 no subsection, 131 too
// many) or a failing section. NbGroups of the profile is set from the
// structure when the project has one.
int explore_project_stream(std::istream& is, ProfileSettings& profile, const ExploreFiles& files);
