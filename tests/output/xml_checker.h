// A small well-formedness checker for the XML documents the program writes:
// one root element, balanced tags, quoted and unique attributes, '&' only as
// an entity, no '<' in text, comments and processing instructions closed.
#pragma once

#include <string>
#include <string_view>
#include <vector>

struct XmlCheck {
  std::string error;                  // empty when the document is well-formed
  std::vector<std::string> elements;  // names of the elements, in document order
  std::vector<std::string> texts;     // character data, entities resolved, one per run
};

XmlCheck check_xml(std::string_view document);
