#include "output/xml_tag.h"

#include <utility>

#include "output/number_format.h"

namespace {

// A name inside an attribute's quotes: its quotes too must not end the value.
std::string attribute_text(std::string_view value) {
  std::string out;
  for (const char c : fmt::xml_escape(value)) {
    if (c == '"') {
      out += "&quot;";
    } else {
      out += c;
    }
  }
  return out;
}

}  // namespace

TXmlTag::TXmlTag(std::string tag_name, std::string attribute_name, std::string attribute_value)
    : name(std::move(tag_name)),
      attr_name(std::move(attribute_name)),
      attr_value(std::move(attribute_value)) {}

std::string TXmlTag::open_text(std::string_view time_stamp) const {
  std::string text = "</data> <" + name;
  if (!attr_name.empty() && !attr_value.empty()) {
    text += " " + attr_name + "=\"" + attribute_text(attr_value) + "\"";
  }
  text += " time=\"";
  text += time_stamp;
  text += "\">\n";
  return text;
}

std::string TXmlTag::close_text() const {
  return "</" + name + "> <data>\n";
}

std::string TXmlTag::start_tag() const {
  return "<" + name + ">\n";
}

std::string TXmlTag::end_tag() const {
  return "</" + name + ">\n";
}

const TXmlTag& root_tag() {
  static const TXmlTag tag("Morvalin");
  return tag;
}

const TXmlTag& data_tag() {
  static const TXmlTag tag("data");
  return tag;
}

std::ostream& operator<<(std::ostream& os, const html_anchor& anchor) {
  return os << "<A NAME=\"" << anchor.name << "\"></A>\n";
}

std::ostream& operator<<(std::ostream& os, const xml_anchor& anchor) {
  return os << data_tag().end_tag() << "\n"
            << " <A NAME=\"" << anchor.name << "\"></A> "
            << "\n"
            << data_tag().start_tag() << "\n";
}

void result_title(std::ostream& os, std::string_view title) {
  os << "\n"
     << data_tag().end_tag() << "\n<header>\n"
     << title << "\n</header>"
     << "\n"
     << data_tag().start_tag() << "\n";
}

void write_document_head(std::ostream& os, bool xml, std::string_view style_folder) {
  if (!xml) {
    os << "\n<html>"
       << "\n<!--Morvalin results file-->\n"
       << "\n<head>"
       << "\n<style>"
       << "\nBODY {background-color: white; font-size: 8pt; font-family: Courier New}"
       << "\n</style>"
       << "\n</head>\n"
       << "\n<body bgcolor=white>\n"
       << "\n<PRE>"
       << "\n";
    return;
  }
  os << "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>"
     << "\n<?xml-stylesheet type=\"text/xsl\" href=\""
     << "file:///" << style_folder << "MorvalinStyleSheet.xsl"
     << "\"?>";
  write_document_body_start(os);
}

void write_document_body_start(std::ostream& os) {
  os << "\n<!--Morvalin results file-->\n"
     << "\n"
     << root_tag().start_tag() << "\n"
     << data_tag().start_tag() << "\n";
}

void write_document_continuation(std::ostream& os, bool xml) {
  if (xml) {
    os << "\n" << data_tag().start_tag() << "\n";
  } else {
    os << "\n<PRE>\n";
  }
}

void write_document_end(std::ostream& os, bool xml) {
  if (!xml) {
    os << "\n</body>"
       << "\n</PRE>"
       << "\n</html>\n"
       << "\n";
    return;
  }
  os << "\n" << data_tag().end_tag() << "\n" << root_tag().end_tag() << "\n";
}

std::string_view document_closing() {
  return "</Morvalin>\n\n";
}
