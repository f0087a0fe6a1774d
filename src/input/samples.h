// The samples of a project: the [[Samples]] section. For now the class
// answers an exploration (the names of the samples, without their data);
// the readers of the data and the list of samples build on it.
#pragma once

#include <istream>
#include <string>

#include "model/profile_settings.h"

class Samples : public ProfileSettings {
 public:
  // Writes NbSamples of the profile, then the name of each announced sample,
  // one a line, to `file_name`. The stream stands inside [[Samples]]; it is
  // left behind the last name read. 0 with a WARNING if the stream ends
  // before every name was found.
  int explore(std::istream& is, ProfileSettings& profile,
              const std::string& file_name = "samples.txt");
};
