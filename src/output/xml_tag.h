// The fixed pieces of a result document: element tags, anchors, the title
// block, and the head and end of the document in its two dresses.
//
// An XML document is a root element "Morvalin" whose running text lies in
// "data" elements. An element that a style sheet lays out as a table stands
// between two "data" elements: open_text() closes the running "data" and opens
// the element, close_text() closes it and opens the next "data". An HTML
// document is one preformatted block and gets none of these elements.
#pragma once

#include <ostream>
#include <string>
#include <string_view>

// Name of an element of the XML document, with at most one attribute besides
// "time". Analyses make one as a local; an element that belongs to a sample
// sets attr_name "pop" and attr_value the sample's name.
class TXmlTag {
 public:
  TXmlTag() = default;
  explicit TXmlTag(std::string tag_name, std::string attribute_name = {},
                   std::string attribute_value = {});

  std::string name;
  std::string attr_name;
  std::string attr_value;

  // "</data> <name attr=\"value\" time=\"stamp\">\n"; the attribute only when both
  // its name and its value are set. The value, a name from the project, is escaped
  // (&, <, > and the quote).
  std::string open_text(std::string_view time_stamp) const;
  // "</name> <data>\n".
  std::string close_text() const;
  // "<name>\n" and "</name>\n".
  std::string start_tag() const;
  std::string end_tag() const;
};

// The root element and the element of running text.
const TXmlTag& root_tag();
const TXmlTag& data_tag();

// Anchors: a target of the tree menu inside the document.
struct html_anchor {
  std::string name;
};
struct xml_anchor {
  std::string name;
};
std::ostream& operator<<(std::ostream& os, const html_anchor& anchor);
std::ostream& operator<<(std::ostream& os, const xml_anchor& anchor);

// The title block, in both dresses: the header element around the title.
void result_title(std::ostream& os, std::string_view title);

// Head of a new document. The XML head names the style sheet in `style_folder`
// (the core directory, with its trailing '/').
void write_document_head(std::ostream& os, bool xml, std::string_view style_folder);
// What a new run writes where an appended document continues: a reopened
// "data" element (XML) or a new preformatted block (HTML).
void write_document_continuation(std::ostream& os, bool xml);
// The root of an XML document begun behind text that does not end as a
// document of ours does: the head without the prolog.
void write_document_body_start(std::ostream& os);
// End of the document; the XML end is "...</Morvalin>\n\n" (see document_closing()).
void write_document_end(std::ostream& os, bool xml);
// The bytes that end every XML document the program writes, which a later run
// steps back over to continue inside the same root.
std::string_view document_closing();
