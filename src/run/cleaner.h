// The cleaner: before a run reads a project, it copies the project file and
// every file that the project names by EXTERN into the result folder, with
// each line tidied, so that the readers meet one blank between tokens, no
// comments and no carriage returns. The run reads the copies and, at its end,
// the cleaner deletes them again.
//
// Tidying a line (lines of at most 10,000 characters; longer ones stay as they
// are): carriage returns, tabs and the locus separator character become
// blanks, a '#' ends the line (even inside quotes), a blank behind a blank is
// dropped and blanks at the end are dropped. In the project file a line that
// names the key LocusSeparator becomes "LocusSeparator=WHITESPACE" while a
// separator is in force and the line does not say NONE, which agrees with the
// separators having become blanks.
#pragma once

#include <string>
#include <string_view>
#include <vector>

class cleaner {
 public:
  // What a file of the list is: the project itself, or a file it names by EXTERN.
  enum class Kind { project, external };
  struct Entry {
    Kind kind;
    std::string source;  // the file as the user keeps it
    std::string target;  // its tidied copy
  };

  // Copies the project at `project_path` into its result folder (path without
  // extension + ".res/"), tidying every line with `locus_separator` (0: none),
  // and then each EXTERN file it names. False when the project or its copy
  // can't be opened; the run then goes on with the file as it stands.
  bool clean_project(const std::string& project_path, char locus_separator);

  // The result folder, with its trailing '/'.
  const std::string& folder() const { return folder_; }
  // The tidied copy of the project: folder + the project's file name.
  const std::string& clean_project_name() const { return clean_name_; }
  const std::vector<Entry>& files() const { return files_; }

  // Deletes every copy on the list that exists, and forgets the list.
  void remove_copies();

  // One line through the tidying step.
  static std::string tidy(std::string_view line, char locus_separator);
  // The text between the first two double quotes of an EXTERN line, or "".
  static std::string extern_name(std::string_view line);
  // The project's locus separator line, made to agree with the tidied data.
  static std::string separator_line(std::string_view line, char locus_separator);

  // Longest line that is tidied, and longest line searched for EXTERN.
  static constexpr std::size_t kLongestTidiedLine = 10000;
  static constexpr std::size_t kLongestExternLine = 1000;

 private:
  bool copy_project(const std::string& project_path, char locus_separator);
  bool copy_external(const Entry& entry, char locus_separator);
  void note_external(std::string_view line, const std::string& project_directory);

  std::string folder_;
  std::string clean_name_;
  std::vector<Entry> files_;
};
