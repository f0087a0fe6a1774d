// The lines of the tree script R + ".js": one line per menu entry, read by
// the tree code "ftiens4.js" that the tree page loads. A leaf at a level hangs
// in the folder last opened at that level, a folder in the one last opened at
// the level above, so the shape of the menu follows the order of the calls.
//
// Captions go out as they stand; links have each blank written as "%20" and
// each '\' as '/'.
#pragma once

#include <ostream>
#include <string>
#include <string_view>

// A file name or link as pages and the tree script write it: '\' as '/', blank as "%20".
std::string web_name(std::string_view name);
// The part of a path behind its last '/' or '\' (the whole text when it has none).
std::string file_name_of(std::string_view path);
// The folder of a path with its trailing separator ("" when it has none).
std::string folder_of(std::string_view path);

// Head of a new tree: the switches of the tree code, the icon folder and the root folder.
void tree_head(std::ostream& os, std::string_view icon_dir, std::string_view title,
               std::string_view link);
// "\t..auxN = insFld(parent, gFld(\"caption\", \"link\"))\n".
void tree_folder(std::ostream& os, int level, std::string_view caption, std::string_view link);
// "\t..insDoc(parent, gLnk(\"R\", \"caption\", \"link\"))\n".
void tree_leaf(std::ostream& os, int level, std::string_view caption, std::string_view link);
// The root leaf that shows the run's log; `log_file` is the log's path.
void tree_log_leaf(std::ostream& os, std::string_view log_file);
