// The one place where printed numbers get their format. Every print site
// names its format explicitly, so no site inherits stream state (width,
// precision, notation) left behind by an earlier one. Each helper returns a
// small value that streams itself; the stream's own flags are never changed.
//
//   os << fmt::fixed(x, 10, 5);     // "%10.5f"
//   os << fmt::general(x);          // what a stream prints by default ("%g", precision 6)
//   os << fmt::general(x, 12, 8);   // "%12.8g"
//   os << fmt::sci(x, 12, 4);       // "%12.4e"
//   os << fmt::integer(n, 5);       // "%5lld"
//   os << fmt::left(text, 12);      // text padded on the right to 12
//   os << fmt::right(text, 12);     // text padded on the left to 12
//   os << fmt::name(label, xml);    // a project's name, escaped in XML documents
#pragma once

#include <ostream>
#include <string>
#include <string_view>

namespace fmt {

struct Formatted {
  std::string text;
};

inline std::ostream& operator<<(std::ostream& os, const Formatted& f) {
  return os.write(f.text.data(), static_cast<std::streamsize>(f.text.size()));
}

// Fixed notation, right-aligned in `width` (0: no padding), `precision` decimals.
Formatted fixed(double value, int width, int precision);
// Fixed notation of an extended-precision value.
Formatted fixed_ld(long double value, int width, int precision);
// General notation as a default stream prints it: precision significant digits.
Formatted general(double value, int width = 0, int precision = 6);
Formatted general_ld(long double value, int width = 0, int precision = 6);
// Scientific notation.
Formatted sci(double value, int width, int precision);
// A whole number, right-aligned in `width`.
Formatted integer(long long value, int width = 0);
// Text padded with blanks to `width`, on the right (left) or on the left (right).
Formatted left(std::string_view text, int width);
Formatted right(std::string_view text, int width);

// A name from the project (project, sample, group, locus or haplotype label) as a result
// document shows it: in an XML document &, < and > become &amp;, &lt;, &gt; so that the
// document stays well-formed; an HTML document shows the name as it stands. Pad first,
// escape last: fmt::name(fmt::left(label, 12).text, xml) keeps the columns of a table.
Formatted name(std::string_view text, bool xml);
// The escaping itself (&, <, > only), for texts that are built before they are written.
std::string xml_escape(std::string_view text);

// The same conversions as plain strings, for building texts.
std::string to_fixed(double value, int precision);
std::string to_general(double value, int precision = 6);

}  // namespace fmt
