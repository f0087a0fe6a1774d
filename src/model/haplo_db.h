// Haplotype definitions of a project.
//
// A HaploDef is one distinct haplotype: its label (unique in the project), its
// definition text and, once associated, one allele pointer per locus into the
// project's TAlleleDB. Samples never hold definitions by value; they hold
// PHaploDef entries (definition pointer and count in the sample). Haplo_DB is
// the project's list of definitions in order of insertion, with a hash index
// by label: hapl_id must not change once a definition is in the list.
#pragma once

#include <istream>
#include <memory>
#include <ostream>
#include <vector>

#include "model/allele_db.h"
#include "model/my_string.h"
#include "model/profile_settings.h"

class DistMat;
class Project;

class HaploDef {
 public:
  HaploDef() = default;
  explicit HaploDef(const my_string& id) : hapl_id(id) {}

  // Takes the definition from the rest of a line (up to a line feed) or from a
  // text. Accepted characters by data type:
  //   DNA       letters, '-', the locus separator, the missing-data character
  //   RFLP      '0', '1', '-', the separator, the missing-data character
  //   MICROSAT  digits, the separator, the missing-data character
  //   STANDARD  the rest of the line unchanged
  //   FREQUENCY none: the definition stays empty
  // '#' starts a comment up to the line end and blanks are skipped; a carriage
  // return is dropped. Any other character raises the error of the data type
  // and gives 0; so does a failed stream or an empty definition (FREQUENCY
  // excepted). Trailing blanks and tabs are removed when the last character is
  // a blank. 1 on success.
  int read_data(std::istream& is, const ProfileSettings& profile);
  int read_data(const my_string& text, const ProfileSettings& profile);
  int read_data(std::istream& is, unsigned char data_type, char separator, char missing);

  // Enters each allele of the definition in `db` with `count` and, unless the
  // definition already has its alleles, appends their pointers. Separator 0:
  // every character is the allele of the next locus; otherwise the tokens
  // between separators are. `locus_count` receives the number of loci of the
  // definition. Returns it.
  int associate(TAlleleDB& db, char& separator, int& locus_count, double count);

  // Same alleles, pointer by pointer, and as many.
  bool same_alleles(const HaploDef& other) const;

  std::vector<TAllele*> alleles;  // one per locus, not owned
  int mat_index = -1;             // row in the user's distance matrix; -1 before association
  my_string hapl_id;              // label, unique in the project
  my_string hapl_content;         // definition text without trailing blanks
  int nb_loci_used = 0;           // loci in the definition
  int count = 0;                  // copies over all samples
};

// hapl_id, a tab and hapl_content; a blank and hapl_id for an empty definition.
std::ostream& operator<<(std::ostream& os, const HaploDef& def);

// One haplotype of a sample: the definition and its absolute count there.
struct PHaploDef {
  HaploDef* hapl = nullptr;  // not owned
  int freq = 0;
};

class Haplo_DB : public ProfileSettings {
 public:
  Haplo_DB() = default;
  Haplo_DB(const Haplo_DB&) = delete;
  Haplo_DB& operator=(const Haplo_DB&) = delete;
  // Takes over the profile of the project (the definitions stay).
  Haplo_DB& operator=(const ProfileSettings& profile);

  int size() const { return static_cast<int>(defs_.size()); }
  bool empty() const { return defs_.empty(); }
  // The definition at `index`, or null.
  HaploDef* operator[](int index) const;
  const std::vector<std::unique_ptr<HaploDef>>& definitions() const { return defs_; }

  // Appends a definition whose label is new; returns it, or null (and the
  // definition is dropped) when the label is taken.
  HaploDef* add(std::unique_ptr<HaploDef> def);
  // Removes the definition at `index`; later ones move up.
  void erase(int index);

  // Index of the definition with the same label, or 2147483647.
  int find_by_id(const HaploDef& def) const;
  int find_by_id(std::string_view id) const;
  // The definition with this label, or null.
  HaploDef* find(std::string_view id) const;
  // The first definition with this text, or null.
  HaploDef* find_by_content(const my_string& content) const;

  // Deletes all definitions.
  void clear();
  // List name back to "no_name", and clear.
  void reset();

  // The [[HaplotypeDefinition]] section of a project file, when not empty.
  void write(std::ostream& os) const;

  // Ties mat_index to the labels of the user's matrix. 1 when every
  // definition found its row, else 0 (see the log).
  int associate_with1(DistMat& matrix);
  // mat_index = position, when there are as many definitions as rows; else
  // error 135 and 0.
  int associate_with2(DistMat& matrix);

  my_string HaplListName = "no_name";  // "UNKNOWN" when the list is generated
  Project* project = nullptr;          // back pointer, not owned

 private:
  void rebuild_index();

  std::vector<std::unique_ptr<HaploDef>> defs_;
  TextIndex by_id_;
};
