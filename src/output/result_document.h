// The result document of a run and the tree menu beside it.
//
// A run writes one running text in one of two dresses: HTML (one
// preformatted block) or XML (text in "data" elements, tables in elements of
// their own for the style sheet). Beside it stand the frame page, the tree
// page and the tree script R + ".js", whose entries link to anchors in the
// document. ResultDocument owns the document's stream and the state that all
// writers share: the XML flag, the print_sections switch, the time stamp that
// elements carry and the run stamp that anchors are named by.
//
// The run opens it with begin_run() and ends it with close() on every way out.
// An analysis writes a section like this (doc being result_document(), or a
// document that a test made and pointed at a string stream with use_stream()):
//
//   std::ostream& out = doc.stream();
//   if (doc.print_sections()) doc.open_tree_leaf(2, "_pop_amova", "AMOVA");  // anchor + menu
//   out << rule << "\n== " << title << rule;              // texts of the analysis
//   doc.write_citations({"Excoffier_L_and_Smouse_P"});     // keys: references.h
//   TXmlTag tag("mismatchDemogExp", "pop", sample_name);
//   if (doc.xml()) out << doc.open_text(tag);            // a table for the style sheet
//   out << doc.name(label) << "\t" << fmt::fixed(x, 10, 5) << "\n";
//   if (doc.xml()) out << tag.close_text();
//
// Names from the project go through doc.name() (or fmt::name), which escapes
// them in XML. A file that can't be opened leaves its stream failed: writes
// then do nothing and the run goes on.
#pragma once

#include <ctime>
#include <fstream>
#include <initializer_list>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

#include "output/run_files.h"
#include "output/xml_tag.h"

class ResultDocument {
 public:
  // What a run tells the document as it starts.
  struct RunStart {
    RunFiles files;              // RunFiles::derive(document name, core directory)
    std::string core_directory;  // with its trailing '/': icons and style sheet
    std::string project_file;    // the project's file name; its folder is dropped where shown
    std::string date;            // the run's date, format_date()
    bool xml = true;             // XMLOutput
    bool append = false;         // append_results
  };

  ResultDocument();
  ~ResultDocument();
  ResultDocument(const ResultDocument&) = delete;
  ResultDocument& operator=(const ResultDocument&) = delete;

  // Opens the document (new, truncated, or continued inside an old XML root),
  // writes the frame pages, the head of the tree or its continuation, the
  // document's head, the title "Morvalin results" and the menu folder
  // "Run of " + date. False when the document could not be opened.
  bool begin_run(const RunStart& run);
  // True when this run continues a document that was there (append_results set).
  bool continues_old_document() const { return continued_; }
  // Writes the document's end and closes its stream. Does nothing when none is open.
  void close();
  // Makes a borrowed stream the document (tests, tools); no tree script is written.
  void use_stream(std::ostream& out, bool xml);

  std::ostream& stream() { return *out_; }
  bool xml() const { return xml_; }
  void set_xml(bool xml) { xml_ = xml; }
  bool print_sections() const { return print_sections_; }
  void set_print_sections(bool on) { print_sections_ = on; }
  // "not set yet" until a run starts, then the run's date.
  const std::string& time_stamp() const { return time_stamp_; }
  // The run's date with blanks and tabs removed.
  const std::string& run_stamp() const { return run_stamp_; }
  const RunFiles& files() const { return files_; }

  // Entries of the menu: each writes the anchor into the document and a line
  // to the tree script. The anchor is named anchor_name(cls).
  void open_tree_folder(int level, std::string_view cls, std::string_view caption);
  void open_tree_leaf(int level, std::string_view cls, std::string_view caption);
  // A sample's leaf: anchor class "_" + cls + sample_index, the sample's name as caption.
  void open_sample_leaf(int level, std::string_view cls, int sample_index,
                        std::string_view sample_name);
  // A folder line without anchor and with an empty link ("Samples", "Groups").
  void tree_line_folder(int level, std::string_view caption);
  // The run stamp with '\', ':' and '/' as '_', then the class.
  std::string anchor_name(std::string_view cls) const;

  // The opening text of an element, stamped with this run's time.
  std::string open_text(const TXmlTag& tag) const { return tag.open_text(time_stamp_); }
  // The citations of `keys`, in the document's dress.
  void write_citations(std::initializer_list<std::string_view> keys);
  // A name from the project as the document shows it (escaped in XML).
  std::string name(std::string_view text) const;

 private:
  void open_document(const RunStart& run, bool exists);
  bool reopen_xml_document();
  void write_tree_start(const RunStart& run);
  void write_anchor_and_entry(int level, const std::string& anchor, std::string_view caption,
                              bool folder);

  std::ostream null_{nullptr};
  std::unique_ptr<std::ofstream> file_;
  std::ostream* out_ = &null_;
  bool xml_ = true;
  bool print_sections_ = true;
  bool continued_ = false;
  std::string time_stamp_ = "not set yet";
  std::string run_stamp_;
  RunFiles files_;
};

// The document of the run in hand, shared by the run control and all analyses.
ResultDocument& result_document();

// A date as documents and the log show it: "%d/%m/%y at %H:%M:%S".
std::string format_date(const std::tm& time);
// The end-of-run date: the same with ")" behind, so that the line
// "END OF RUN NUMBER n (" + date + ")" ends in "))".
std::string format_end_date(const std::tm& time);
// The local time now.
std::tm local_time_now();
