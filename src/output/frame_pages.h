// The two pages that show a result: the frame page R + "_main.htm" puts the
// tree page R + "_tree.htm" beside the document; the tree page loads the tree
// code from the core directory and the run's tree script, and builds the menu.
// Both are written anew at the start of every run.
#pragma once

#include <ostream>
#include <string_view>

#include "output/run_files.h"

// The frame page; `project_file` is the project's file name (its folder is dropped).
void write_frame_page(std::ostream& os, const RunFiles& files, std::string_view project_file);
void write_tree_page(std::ostream& os, const RunFiles& files);
// Writes both pages to their files; a page that can't be opened is skipped.
void write_frame_pages(const RunFiles& files, std::string_view project_file);
