#include "output/run_files.h"

#include <algorithm>

namespace {

std::string forward_slashes(std::string_view name) {
  std::string out(name);
  std::replace(out.begin(), out.end(), '\\', '/');
  return out;
}

// R: the document's name without its extension (an extension is a '.' behind the last '/').
std::string without_extension(const std::string& path) {
  const size_t dot = path.find_last_of('.');
  const size_t slash = path.find_last_of('/');
  if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return path;
  return path.substr(0, dot);
}

}  // namespace

RunFiles RunFiles::derive(std::string_view document, std::string_view core_directory) {
  RunFiles files;
  files.document = forward_slashes(document);
  const std::string base = without_extension(files.document);
  files.tree_script = base + ".js";
  files.tree_page = base + "_tree.htm";
  files.frame_page = base + "_main.htm";
  const std::string core = forward_slashes(core_directory);
  files.tree_style = core + "ftie4style.css";
  files.tree_code = core + "ftiens4.js";
  const size_t slash = files.document.find_last_of('/');
  const std::string folder = slash == std::string::npos ? "" : files.document.substr(0, slash + 1);
  files.log = folder + "Morvalin_log.txt";
  return files;
}
