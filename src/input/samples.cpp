#include "input/samples.h"

#include <fstream>

#include "model/my_string.h"
#include "model/report.h"
#include "output/number_format.h"

namespace {

// A line whose first word, in lower case, begins with "samplename".
bool names_a_sample(my_string line) {
  line.to_lower();
  const std::string& text = line.str();
  const std::size_t first = text.find_first_not_of(" \t");
  return first != std::string::npos && text.compare(first, 10, "samplename") == 0;
}

// The text between the first two double quotes behind the '='; empty without them.
my_string quoted_name(const my_string& line) {
  const std::string value = after(line, '=').str();
  const std::size_t open = value.find('"');
  if (open == std::string::npos) return my_string();
  const std::size_t close = value.find('"', open + 1);
  if (close == std::string::npos) return my_string();
  return my_string(std::string_view(value).substr(open + 1, close - open - 1));
}

}  // namespace

int Samples::explore(std::istream& is, ProfileSettings& profile, const std::string& file_name) {
  std::ofstream out(file_name, std::ios::trunc);
  out << fmt::integer(profile.NbSamples) << '\n';
  my_string line;
  for (int sample = 0; sample < profile.NbSamples; ++sample) {
    for (;;) {
      if (!is.good()) {
        report_error(report_kind::WARNING,
                     "Samples::explore(): Unable to extract all population names", 62);
        return 0;
      }
      line.read_line(is);
      if (names_a_sample(line)) break;
    }
    out << quoted_name(line) << '\n';
  }
  return 1;
}
