#include "output/xml_checker.h"

#include <cctype>
#include <set>

namespace {

class Checker {
 public:
  explicit Checker(std::string_view text) : s_(text) {}

  XmlCheck run() {
    if (s_.substr(0, 5) == "<?xml") {
      if (!skip_past("?>")) return fail("unclosed XML declaration");
    }
    while (result_.error.empty() && pos_ < s_.size()) step();
    if (result_.error.empty() && !open_.empty()) fail("unclosed element <" + open_.back() + ">");
    if (result_.error.empty() && roots_ != 1)
      fail("document has " + std::to_string(roots_) + " root elements");
    return result_;
  }

 private:
  void step() {
    if (s_.compare(pos_, 4, "<!--") == 0) {
      const size_t end = s_.find("-->", pos_ + 4);
      if (end == std::string_view::npos) return (void)fail("unclosed comment");
      if (s_.substr(pos_ + 4, end - pos_ - 4).find("--") != std::string_view::npos) {
        return (void)fail("'--' inside a comment");
      }
      pos_ = end + 3;
    } else if (s_.compare(pos_, 5, "<?xml") == 0 && !is_name_char(at(pos_ + 5))) {
      fail("XML declaration not at the start");
    } else if (s_.compare(pos_, 2, "<?") == 0) {
      if (!skip_past("?>")) fail("unclosed processing instruction");
    } else if (s_.compare(pos_, 2, "</") == 0) {
      end_tag();
    } else if (at(pos_) == '<') {
      start_tag();
    } else {
      text();
    }
  }

  void start_tag() {
    ++pos_;
    const std::string name = read_name();
    if (name.empty()) return (void)fail("bad element name");
    if (open_.empty()) {
      if (++roots_ > 1) return (void)fail("second root element <" + name + ">");
    }
    result_.elements.push_back(name);
    std::set<std::string> attributes;
    for (;;) {
      skip_blanks();
      if (s_.compare(pos_, 2, "/>") == 0) {
        pos_ += 2;
        return;
      }
      if (at(pos_) == '>') {
        ++pos_;
        open_.push_back(name);
        return;
      }
      const std::string attribute = read_name();
      if (attribute.empty()) return (void)fail("bad attribute in <" + name + ">");
      if (!attributes.insert(attribute).second) return (void)fail("repeated attribute");
      skip_blanks();
      if (at(pos_) != '=') return (void)fail("attribute without '='");
      ++pos_;
      skip_blanks();
      const char quote = at(pos_);
      if (quote != '"' && quote != '\'') return (void)fail("unquoted attribute");
      const size_t end = s_.find(quote, pos_ + 1);
      if (end == std::string_view::npos) return (void)fail("unclosed attribute value");
      const std::string_view value = s_.substr(pos_ + 1, end - pos_ - 1);
      if (value.find('<') != std::string_view::npos) return (void)fail("'<' in attribute");
      if (!entities_ok(value)) return;
      pos_ = end + 1;
    }
  }

  void end_tag() {
    pos_ += 2;
    const std::string name = read_name();
    skip_blanks();
    if (at(pos_) != '>') return (void)fail("bad end tag </" + name);
    ++pos_;
    if (open_.empty() || open_.back() != name) {
      return (void)fail("end tag </" + name + "> does not close " +
                        (open_.empty() ? std::string("anything") : "<" + open_.back() + ">"));
    }
    open_.pop_back();
  }

  void text() {
    const size_t end = s_.find('<', pos_);
    const std::string_view chunk =
        s_.substr(pos_, end == std::string_view::npos ? end : end - pos_);
    pos_ = end == std::string_view::npos ? s_.size() : end;
    if (open_.empty()) {
      for (const char c : chunk) {
        if (!std::isspace(static_cast<unsigned char>(c))) {
          return (void)fail("text outside the root element");
        }
      }
      return;
    }
    if (!entities_ok(chunk)) return;
    result_.texts.push_back(resolve(chunk));
  }

  bool entities_ok(std::string_view chunk) {
    static const std::set<std::string_view> named{"amp", "lt", "gt", "quot", "apos"};
    for (size_t i = chunk.find('&'); i != std::string_view::npos; i = chunk.find('&', i + 1)) {
      const size_t semi = chunk.find(';', i);
      if (semi == std::string_view::npos) return fail("bare '&'"), false;
      const std::string_view entity = chunk.substr(i + 1, semi - i - 1);
      const bool numeric = entity.size() > 1 && entity[0] == '#';
      if (!numeric && named.count(entity) == 0) {
        return fail("unknown entity &" + std::string(entity) + ";"), false;
      }
    }
    return true;
  }

  static std::string resolve(std::string_view chunk) {
    std::string out;
    for (size_t i = 0; i < chunk.size(); ++i) {
      if (chunk[i] != '&') {
        out += chunk[i];
        continue;
      }
      const size_t semi = chunk.find(';', i);
      const std::string_view entity = chunk.substr(i + 1, semi - i - 1);
      if (entity == "amp") out += '&';
      if (entity == "lt") out += '<';
      if (entity == "gt") out += '>';
      if (entity == "quot") out += '"';
      if (entity == "apos") out += '\'';
      i = semi;
    }
    return out;
  }

  std::string read_name() {
    const size_t start = pos_;
    if (pos_ < s_.size() && (std::isalpha(static_cast<unsigned char>(s_[pos_])) ||
                             s_[pos_] == '_' || s_[pos_] == ':')) {
      ++pos_;
      while (pos_ < s_.size() && is_name_char(s_[pos_])) ++pos_;
    }
    return std::string(s_.substr(start, pos_ - start));
  }

  static bool is_name_char(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == ':' || c == '.' ||
           c == '-';
  }
  char at(size_t i) const { return i < s_.size() ? s_[i] : '\0'; }
  void skip_blanks() {
    while (pos_ < s_.size() && std::isspace(static_cast<unsigned char>(s_[pos_]))) ++pos_;
  }
  bool skip_past(std::string_view marker) {
    const size_t end = s_.find(marker, pos_ + 2);
    if (end == std::string_view::npos) return false;
    pos_ = end + marker.size();
    return true;
  }
  XmlCheck fail(const std::string& why) {
    if (result_.error.empty()) {
      result_.error = why + " at byte " + std::to_string(pos_);
    }
    return result_;
  }

  std::string_view s_;
  size_t pos_ = 0;
  std::vector<std::string> open_;
  int roots_ = 0;
  XmlCheck result_;
};

}  // namespace

XmlCheck check_xml(std::string_view document) {
  return Checker(document).run();
}
