#include "output/result_document.h"

#include <filesystem>
#include <vector>

#include "model/report.h"
#include "output/frame_pages.h"
#include "output/number_format.h"
#include "output/references.h"
#include "output/tree_menu.h"

namespace {

std::string without_blanks(std::string_view text) {
  std::string out;
  for (const char c : text) {
    if (c != ' ' && c != '\t') out += c;
  }
  return out;
}

bool file_ends_with(const std::string& path, std::string_view tail) {
  std::ifstream in(path, std::ios::binary | std::ios::ate);
  if (!in) return false;
  const std::streamoff size = in.tellg();
  if (size < static_cast<std::streamoff>(tail.size())) return false;
  in.seekg(size - static_cast<std::streamoff>(tail.size()));
  std::string end(tail.size(), '\0');
  in.read(end.data(), static_cast<std::streamsize>(end.size()));
  return in && end == tail;
}

}  // namespace

ResultDocument::ResultDocument() = default;

ResultDocument::~ResultDocument() = default;

bool ResultDocument::begin_run(const RunStart& run) {
  close();
  files_ = run.files;
  xml_ = run.xml;
  time_stamp_ = run.date;
  run_stamp_ = without_blanks(run.date);
  std::error_code ignored;
  const bool exists = std::filesystem::exists(files_.document, ignored);
  continued_ = run.append && exists;
  if (!run.append) {
    std::filesystem::remove(files_.tree_script, ignored);
    std::filesystem::remove(files_.tree_page, ignored);
  }
  open_document(run, exists);
  write_frame_pages(files_, run.project_file);
  if (!continued_) write_tree_start(run);
  result_title(*out_, "Morvalin results");
  open_tree_folder(1, "", "Run of " + run.date);
  return file_ != nullptr && file_->good();
}

void ResultDocument::open_document(const RunStart& run, bool exists) {
  if (run.append && run.xml && exists) {
    if (reopen_xml_document()) {
      write_document_continuation(*out_, true);
    } else {
      log_stream() << "\nWARNING: the result document " << files_.document
                   << " does not end with the closing tag of its root element;"
                   << " the new run is appended as a new document body\n";
      file_ = std::make_unique<std::ofstream>(files_.document, std::ios::binary | std::ios::app);
      out_ = file_.get();
      write_document_body_start(*out_);
    }
    return;
  }
  file_ = std::make_unique<std::ofstream>(files_.document, std::ios::binary | std::ios::trunc);
  out_ = file_.get();
  if (continued_) write_document_continuation(*out_, false);
}

// Cuts the closing of the old root off the document and opens it for
// appending, so that the new run goes inside the same root element.
bool ResultDocument::reopen_xml_document() {
  const std::string_view closing = document_closing();
  if (!file_ends_with(files_.document, closing)) return false;
  std::error_code error;
  const auto size = std::filesystem::file_size(files_.document, error);
  if (error) return false;
  std::filesystem::resize_file(files_.document, size - closing.size(), error);
  if (error) return false;
  file_ = std::make_unique<std::ofstream>(files_.document, std::ios::binary | std::ios::app);
  out_ = file_.get();
  return true;
}

void ResultDocument::write_tree_start(const RunStart& run) {
  std::ofstream script(files_.tree_script,
                       std::ios::binary | (run.append ? std::ios::app : std::ios::trunc));
  tree_head(script, run.core_directory, "MORVALIN RESULTS (" + file_name_of(run.project_file) + ")",
            "");
  tree_log_leaf(script, files_.log);
  write_document_head(*out_, xml_, folder_of(files_.tree_style));
}

void ResultDocument::close() {
  if (out_ != &null_) {
    write_document_end(*out_, xml_);
    out_->flush();
  }
  file_.reset();
  out_ = &null_;
}

void ResultDocument::use_stream(std::ostream& out, bool xml) {
  file_.reset();
  out_ = &out;
  xml_ = xml;
  files_ = RunFiles{};
}

std::string ResultDocument::anchor_name(std::string_view cls) const {
  std::string name = run_stamp_;
  for (char& c : name) {
    if (c == '\\' || c == ':' || c == '/') c = '_';
  }
  name += cls;
  return name;
}

void ResultDocument::write_anchor_and_entry(int level, const std::string& anchor,
                                            std::string_view caption, bool folder) {
  if (xml_) {
    *out_ << xml_anchor{anchor};
  } else {
    *out_ << html_anchor{anchor};
  }
  if (files_.tree_script.empty()) return;
  std::ofstream script(files_.tree_script, std::ios::binary | std::ios::app);
  const std::string link = file_name_of(files_.document) + "#" + anchor;
  if (folder) {
    tree_folder(script, level, caption, link);
  } else {
    tree_leaf(script, level, caption, link);
  }
}

void ResultDocument::open_tree_folder(int level, std::string_view cls, std::string_view caption) {
  write_anchor_and_entry(level, anchor_name(cls), caption, true);
}

void ResultDocument::open_tree_leaf(int level, std::string_view cls, std::string_view caption) {
  write_anchor_and_entry(level, anchor_name(cls), caption, false);
}

void ResultDocument::open_sample_leaf(int level, std::string_view cls, int sample_index,
                                      std::string_view sample_name) {
  std::string cls_of_sample = "_";
  cls_of_sample += cls;
  cls_of_sample += fmt::integer(sample_index).text;
  write_anchor_and_entry(level, anchor_name(cls_of_sample), sample_name, false);
}

void ResultDocument::tree_line_folder(int level, std::string_view caption) {
  if (files_.tree_script.empty()) return;
  std::ofstream script(files_.tree_script, std::ios::binary | std::ios::app);
  tree_folder(script, level, caption, "");
}

void ResultDocument::write_citations(std::initializer_list<std::string_view> keys) {
  const References references;
  std::vector<std::string> texts;
  for (const std::string_view key : keys) texts.push_back(references.citation(key));
  ::write_citations(*out_, xml_, texts);
}

std::string ResultDocument::name(std::string_view text) const {
  return fmt::name(text, xml_).text;
}

ResultDocument& result_document() {
  static ResultDocument document;
  return document;
}

std::string format_date(const std::tm& time) {
  char buffer[80];
  const size_t n = std::strftime(buffer, sizeof buffer, "%d/%m/%y at %H:%M:%S", &time);
  return std::string(buffer, n);
}

std::string format_end_date(const std::tm& time) {
  return format_date(time) + ")";
}

std::tm local_time_now() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return local;
}
