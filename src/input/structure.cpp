#include "input/structure.h"

#include <fstream>

#include "input/line_reader.h"
#include "output/number_format.h"

namespace {

// True when the next line of the stream opens another section, or there is none.
bool at_section_end(std::istream& is) {
  is >> std::ws;
  return !is.good() || is.peek() == '[';
}

// Adds the double-quoted names of `text` up to its first '}'; true if the '}' was met.
bool take_names(const std::string& text, std::vector<my_string>& names) {
  const std::size_t brace = text.find('}');
  const std::string_view part = std::string_view(text).substr(0, brace);
  for (std::size_t open = part.find('"'); open != std::string_view::npos;) {
    const std::size_t close = part.find('"', open + 1);
    if (close == std::string_view::npos) break;
    names.emplace_back(part.substr(open + 1, close - open - 1));
    open = part.find('"', close + 1);
  }
  return brace != std::string::npos;
}

}  // namespace

void Structure::explore_group(std::istream& is, const my_string& line) {
  std::vector<my_string> names;
  my_string text = line;
  bool opened = text.contains('{');
  if (opened) text = after(text, '{');
  for (;;) {
    if (opened && take_names(text.str(), names)) break;
    if (at_section_end(is)) break;
    text.read_line(is);
    strip_comment(text);
    if (!opened && text.contains('{')) {
      opened = true;
      text = after(text, '{');
    }
  }
  explored_.push_back(std::move(names));
}

int Structure::explore(std::istream& is, ProfileSettings& profile, const std::string& file_name) {
  explored_.clear();
  bool counted = false;
  my_string line;
  while (!at_section_end(is)) {
    line.read_line(is);
    strip_comment(line);
    my_string upper = line;
    upper.to_upper();
    if (upper.contains("NBGROUPS")) {
      profile.NbGroups = ascii_to_int(after(line, '='));
      counted = true;
    } else if (upper.contains("GROUP")) {
      explore_group(is, line);
    }
  }
  if (!counted) profile.NbGroups = static_cast<int>(explored_.size());
  std::ofstream out(file_name, std::ios::trunc);
  out << fmt::integer(static_cast<long long>(explored_.size())) << '\n';
  for (const std::vector<my_string>& names : explored_) {
    out << fmt::integer(static_cast<long long>(names.size())) << '\n';
    for (const my_string& name : names) out << name << '\n';
  }
  return 1;
}

int Structure::nb_samples() const {
  int n = 0;
  for (const TGroup& g : groups) n += g.size();
  return n;
}

int Structure::group_of(int sample_index) const {
  for (std::size_t g = 0; g < groups.size(); ++g) {
    for (const int member : groups[g].members) {
      if (member == sample_index) return static_cast<int>(g);
    }
  }
  return -1;
}

void Structure::clear() {
  groups.clear();
  StructureName = "";
}
