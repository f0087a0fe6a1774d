// The names of the files of one run's result, R being the result folder plus
// the project's base name: the document R + ".htm" or R + ".xml", the tree
// script, the tree page and the frame page beside it, the log of the folder,
// and the viewer files that the pages expect in the core directory.
#pragma once

#include <string>
#include <string_view>

struct RunFiles {
  std::string document;     // R + ".htm" or R + ".xml"
  std::string tree_script;  // R + ".js"
  std::string tree_page;    // R + "_tree.htm"
  std::string frame_page;   // R + "_main.htm"
  std::string tree_style;   // core directory + "ftie4style.css"
  std::string tree_code;    // core directory + "ftiens4.js"
  std::string log;          // result folder + "Morvalin_log.txt"

  // From the document's name and the core directory (which ends with '/').
  // Every '\' becomes '/'.
  static RunFiles derive(std::string_view document, std::string_view core_directory);
};
