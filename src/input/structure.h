// The genetic structure of a project: the [[Structure]] section, groups of
// the project's samples.
//
// A TGroup lists its samples by their index in the project's Samples, in
// the order of the section. A sample stands in one group at most.
#pragma once

#include <istream>
#include <string>
#include <vector>

#include "model/my_string.h"
#include "model/profile_settings.h"

class Samples;

class TGroup {
 public:
  int size() const { return static_cast<int>(members.size()); }
  std::vector<int> members;  // indices of the samples in the project's Samples
};

class Structure : public ProfileSettings {
 public:
  Structure() = default;
  Structure(const Structure&) = delete;
  Structure& operator=(const Structure&) = delete;

  int nb_groups() const { return static_cast<int>(groups.size()); }
  // The samples of all groups.
  int nb_samples() const;
  // The group that holds the sample of this index, or -1.
  int group_of(int sample_index) const;
  // No groups, no name; the profile stays.
  void clear();

  // Reads the section from the line behind [[Structure]] up to a line that
  // holds [MANTEL] (left in `line`) or the end of the stream. The structure
  // is emptied first and takes the profile; NbGroups of `profile` takes the
  // section's value. Group members must be samples of `samples`, each in one
  // group only. The four flags tell what the section held. 1, or 0 after an
  // ERROR.
  int NewReadStructure(std::istream& is, ProfileSettings& profile, const Samples* samples,
                       int& line_number, my_string& line, unsigned char& name_seen,
                       unsigned char& nb_seen, unsigned char& label_seen,
                       unsigned char& group_seen);

  // Reads the section up to the next section or the end of the stream and
  // writes to `file_name` the number of groups, then for each group its
  // number of samples and their names, one a line. NbGroups of the profile
  // takes the value of the section's NbGroups (the number of groups read if
  // it has none). Always 1.
  int explore(std::istream& is, ProfileSettings& profile,
              const std::string& file_name = "groups.txt");

  // The groups met by the last exploration, each a list of sample names.
  const std::vector<std::vector<my_string>>& explored_groups() const { return explored_; }

  my_string StructureName;
  std::vector<TGroup> groups;

 private:
  // Reads the names of one group, from the text behind its '{' on to its '}'.
  void explore_group(std::istream& is, const my_string& line);

  std::vector<std::vector<my_string>> explored_;
};
