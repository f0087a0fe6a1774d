#include "output/frame_pages.h"

#include <fstream>

#include "output/tree_menu.h"

namespace {

constexpr const char* tree_comment =
    "\n<!-- The menu on the left is built in the browser by the tree code (ftiens4.js in the"
    "\n     core directory) from the entries of the run's tree script. -->";

}  // namespace

void write_frame_page(std::ostream& os, const RunFiles& files, std::string_view project_file) {
  os << "\n<html>"
     << "\n<!--Morvalin results frame file-->\n"
     << "\n<head>"
     << "\n<title> Morvalin Result Browser - " << web_name(file_name_of(project_file))
     << "\n</title>"
     << "\n<script>"
     << "\nfunction op() { //This function is used with folders that do not open pages "
        "themselves. See online docs."
     << "\n}"
     << "\n</script>"
     << "\n</head>" << tree_comment << "\n<FRAMESET cols=\"200,*\">"
     << "\n  <FRAME src=\"" << web_name(file_name_of(files.tree_page)) << "\" name=\"treeframe\">"
     << "\n  <FRAME SRC=\"" << web_name(file_name_of(files.document)) << "\" name=\"basefrm\">"
     << "\n</FRAMESET>"
     << "\n\n"
     << "\n</html>"
     << "\n";
}

void write_tree_page(std::ostream& os, const RunFiles& files) {
  const std::string code = web_name(files.tree_code);
  os << tree_comment << "\n<html>"
     << "\n<head>";
  os << "\n<style>"
     << "\n   BODY {background-color: white}"
     << "\n   TD {font-size: 8pt;"
     << "\n       font-family: verdana,helvetica;"
     << "\n\t   text-decoration: none;}"
     << "\n   A  {text-decoration: none;"
     << "\n       color: black}"
     << "\n    .specialClass {font-family:garamond; font-size:12pt;color:green;"
        "font-weight:bold;text-decoration:underline}"
     << "\n</style>";
  os << "\n<!-- Code for browser detection -->"
     << "\n<script src=\"file:///" << folder_of(code) << "ua.js"
     << "\"></script>";
  os << "\n<!-- Infrastructure code for the tree -->"
     << "\n<script src=\"file:///" << code << "\"></script>";
  os << "\n<!-- Execution of the code that actually builds the specific tree."
     << "\n     The variable foldersTree creates its structure with calls to"
     << "\n\t  gFld, insFld, and insDoc -->"
     << "\n<script src=\"" << web_name(file_name_of(files.tree_script)) << "\"></script>";
  os << "\n</head>"
     << "\n<body topmargin=16 marginheight=16>";
  os << "\n<!-- Removing this link will make the script stop from working -->"
     << "\n<div style=\"position:absolute; top:0; left:0;\"><a style=\"font-size:7pt; "
        "color:silver\" href=\"file:///"
     << code << "\" target=\"_blank\">JavaScript Tree Menu</a></div>";
  os << "\n<!-- Build the browser's objects and display default view of the tree. -->"
     << "\n<script>initializeDocument()</script>"
     << "\n<noscript>"
     << "\nA tree for site navigation will open here if you enable JavaScript in your browser."
     << "\n</noscript>"
     << "\n</html>"
     << "\n";
}

void write_frame_pages(const RunFiles& files, std::string_view project_file) {
  std::ofstream frame(files.frame_page, std::ios::binary | std::ios::trunc);
  if (frame) write_frame_page(frame, files, project_file);
  std::ofstream tree(files.tree_page, std::ios::binary | std::ios::trunc);
  if (tree) write_tree_page(tree, files);
}
