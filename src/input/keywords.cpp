#include "input/keywords.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::array<std::string_view, 40> reserved_keywords = {
    "recessiveallele",    "datatype",      "distmat",
    "distmatlabel",       "exthaplfile",   "frequency",
    "genotypicdata",      "group",         "gameticphase",
    "hapllabels",         "hapllistname",  "hapllist",
    "individuallevel",    "interleave",    "labelposition",
    "locilabels",         "locuslisting",  "locusseparator",
    "matrixname",         "matrixsize",    "matrixdata",
    "missingdata",        "nbgroups",      "nbloci",
    "nbsamples",          "sampledata",    "samplename",
    "samplesize",         "structurename", "title",
    "usedhapllist",       "recessivedata", "compdistmatrix",
    "frequencythreshold", "epsilonvalue",  "distmatmantel",
    "usedymatrixlabels",  "matrixnumber",  "ymatrix",
    "ymatrixlabels"};

constexpr std::array<std::string_view, 5> subsection_names = {
    "distancematrix", "haplotypedefinition", "samples", "structure", "mantel"};

}  // namespace

int is_keyword(std::string_view word) {
  return std::find(reserved_keywords.begin(), reserved_keywords.end(), word) !=
                 reserved_keywords.end()
             ? 1
             : 0;
}

int subsection_number(std::string_view name) {
  const auto it = std::find(subsection_names.begin(), subsection_names.end(), name);
  return it == subsection_names.end() ? 0 : static_cast<int>(it - subsection_names.begin()) + 1;
}
