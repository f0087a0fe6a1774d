// Fuzz target for the readers of a project file: the input is written to a
// .mvp file and read the three ways a batch reads a project (the line-based
// reading of a run, the exploration, the translator's reading), and once
// more by the line-based driver with section readers that consume their
// sections, so that the lines after [[Samples]] are reached too. A project
// that reads goes on through the checks that a run makes of its samples.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "input/project_file_reader.h"
#include "model/settings.h"
#include "run/project.h"

namespace {

std::filesystem::path& work_dir() {
  static std::filesystem::path dir;
  return dir;
}

void remove_work_dir() {
  std::error_code ignored;
  std::filesystem::current_path(std::filesystem::temp_directory_path(), ignored);
  std::filesystem::remove_all(work_dir(), ignored);
}

// Consumes each section up to the line that opens the next one.
class ConsumingSections : public ProjectSectionReaders {
 public:
  int read_haplotype_list(std::istream& is, const ProfileSettings&, int, int& n) override {
    return to_brace(is, n);
  }
  int read_distance_matrix(std::istream& is, int, int& n) override { return to_brace(is, n); }
  int read_samples(std::istream& is, ProfileSettings&, int& n, my_string& line,
                   ProjectFileFlags& flags) override {
    flags.sample_name = flags.sample_size = flags.sample_data = 1;
    count_ = 1;
    return to_section(is, n, line, "[STRUCTURE]");
  }
  int sample_count() const override { return count_; }
  int read_structure(std::istream& is, ProfileSettings&, int& n, my_string& line,
                     ProjectFileFlags& flags) override {
    flags.nb_groups = flags.group = 1;
    return to_section(is, n, line, "[MANTEL]");
  }
  int read_mantel(std::istream& is, ProfileSettings&, int& n, my_string& line,
                  ProjectFileFlags&) override {
    return to_section(is, n, line, "\x01");
  }

 private:
  static int to_brace(std::istream& is, int& n) {
    my_string line;
    while (is.good()) {
      line.read_line(is);
      ++n;
      if (line.contains('}')) break;
    }
    return 1;
  }
  static int to_section(std::istream& is, int& n, my_string& line, const char* stop) {
    while (is.good()) {
      line.read_line(is);
      ++n;
      my_string upper = line;
      upper.to_upper();
      if (upper.contains(stop) || upper.contains("[MANTEL]")) break;
    }
    return 1;
  }
  int count_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  // The readers write samples.txt, groups.txt and mrv_pro.txt into the
  // current folder: give them one of their own.
  work_dir() =
      std::filesystem::temp_directory_path() / ("morvcore_fuzz_" + std::to_string(::getpid()));
  std::filesystem::create_directories(work_dir());
  std::filesystem::current_path(work_dir());
  std::atexit(remove_work_dir);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  {
    std::ofstream file("fuzz.mvp", std::ios::binary | std::ios::trunc);
    file << text;
  }
  project_file_name = "fuzz.mvp";
  Project project;
  if (project.newOpen()) {
    // What a run asks of the samples next, and the report of haplotype classes.
    project.samples->convert_dna_upper();
    project.samples->rm_separators();
    project.samples->verify_data();
    std::ostream discard(nullptr);
    project.samples->print_out_haplo_cl(discard, project.dist_mat, project.haplo_db);
    project.samples->merge_haplotype_classes(project.dist_mat, project.haplo_db);
  }
  project.reset_profile();
  project.explore(my_string(""));
  project.reset_profile();
  project.open();

  std::istringstream is(text);
  ProfileSettings profile;
  ConsumingSections sections;
  read_project_file(is, profile, sections, "");
  return 0;
}
