// The genetic structure of a project: the [[Structure]] section, groups of
// samples. For now the class answers an exploration (the groups and the
// names of their samples); the reader of a run builds on it.
#pragma once

#include <istream>
#include <string>
#include <vector>

#include "model/my_string.h"
#include "model/profile_settings.h"

class Structure : public ProfileSettings {
 public:
  // Reads the section up to the next section or the end of the stream and
  // writes to `file_name` the number of groups, then for each group its
  // number of samples and their names, one a line. NbGroups of the profile
  // takes the value of the section's NbGroups (the number of groups read if
  // it has none). Always 1.
  int explore(std::istream& is, ProfileSettings& profile,
              const std::string& file_name = "groups.txt");

  // The groups met by the last exploration, each a list of sample names.
  const std::vector<std::vector<my_string>>& explored_groups() const { return groups_; }

 private:
  // Reads the names of one group, from the text behind its '{' on to its '}'.
  void explore_group(std::istream& is, const my_string& line);

  std::vector<std::vector<my_string>> groups_;
};
