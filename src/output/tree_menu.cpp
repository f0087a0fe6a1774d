#include "output/tree_menu.h"

#include "output/number_format.h"

std::string web_name(std::string_view name) {
  std::string out;
  out.reserve(name.size());
  for (const char c : name) {
    if (c == ' ') {
      out += "%20";
    } else if (c == '\\') {
      out += '/';
    } else {
      out += c;
    }
  }
  return out;
}

std::string file_name_of(std::string_view path) {
  const size_t slash = path.find_last_of("/\\");
  return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

std::string folder_of(std::string_view path) {
  const size_t slash = path.find_last_of("/\\");
  return slash == std::string_view::npos ? std::string() : std::string(path.substr(0, slash + 1));
}

void tree_head(std::ostream& os, std::string_view icon_dir, std::string_view title,
               std::string_view link) {
  os << "\nUSETEXTLINKS = 1"
     << "\nSTARTALLOPEN = 0"
     << "\nWRAPTEXT = 1"
     << "\nPRESERVESTATE = 0"
     << "\nHIGHLIGHT = 1"
     << "\nICONPATH = 'file:///" << web_name(icon_dir)
     << "'    //change if the gif's folder is a subfolder, for example: 'images/'"
     << "\n\n"
     << "foldersTree = gFld(\"<i>" << title << "</i>\", \"" << web_name(link) << "\")\n";
}

void tree_folder(std::ostream& os, int level, std::string_view caption, std::string_view link) {
  os << std::string(static_cast<size_t>(level > 0 ? level : 0), '\t') << "aux"
     << fmt::integer(level) << " = insFld(";
  if (level == 1) {
    os << "foldersTree";
  } else {
    os << "aux" << fmt::integer(level - 1);
  }
  os << ", gFld(\"" << caption << "\", \"" << web_name(link) << "\"))\n";
}

void tree_leaf(std::ostream& os, int level, std::string_view caption, std::string_view link) {
  os << std::string(static_cast<size_t>(level > 0 ? level : 0), '\t') << "insDoc(";
  if (level == 0) {
    os << "foldersTree";
  } else {
    os << "aux" << fmt::integer(level);
  }
  os << ", gLnk(\"R\", \"" << caption << "\", \"" << web_name(link) << "\"))\n";
}

void tree_log_leaf(std::ostream& os, std::string_view log_file) {
  tree_leaf(os, 0, "Morvalin log file", file_name_of(log_file));
}
