// The bibliography of the result document: each analysis names the works
// that describe its method by key, and the document prints them behind the
// section's title.
//
// Keys are the first author's surname and initials, "_and_" and the second
// author's (for a work of two or more authors), and a number behind where
// one pair of names has several works: "Excoffier_L_and_Slatkin_M",
// "Excoffier_L_and_Slatkin_M2", "Tajima_F", "Tajima_F2". The keys are listed
// in references.cpp. An unknown key gives an empty citation, silently.
#pragma once

#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

class References {
 public:
  struct Row {
    std::string_view key;
    std::string_view text;
  };

  // The citation of `key` (exact comparison, case included), or "".
  std::string citation(std::string_view key) const;
  // All rows, in table order.
  static std::span<const Row> table();
};

// A list of citations behind a section's title. HTML: each as
// "           <i>text</i>\n". XML: the list stands between two "data"
// elements as Reference elements.
void write_citations(std::ostream& os, bool xml, const std::vector<std::string>& texts);
// A citation led by the label "Reference: ". HTML: "Reference: <i>text</i>" (the
// caller writes the line end its section needs); XML: the label, then the
// Reference element between two "data" elements.
std::string labelled_citation(bool xml, std::string_view text);
