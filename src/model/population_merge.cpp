// Haplotypes made from phenotypes (pseudo-haplotypes), samples pooled into
// the sample of a group, and the haplotypes two samples share.
#include <cmath>
#include <cstddef>
#include <string>
#include <unordered_map>

#include "model/population.h"

namespace {

int rounded(double x) {
  return static_cast<int>(std::floor(x + 0.5));
}

// The text of a gamete: its allele texts joined by the separator (none for
// separator 0); the line as read while the gamete has no alleles.
void gamete_text(const TPopHaplotype* gamete, const my_string& line, char separator,
                 std::string& out) {
  out.clear();
  if (gamete == nullptr || gamete->alleles.empty()) {
    out = line.str();
    return;
  }
  for (std::size_t l = 0; l < gamete->alleles.size(); ++l) {
    if (l > 0 && separator != 0) out += separator;
    if (gamete->alleles[l] != nullptr) out += gamete->alleles[l]->allele_name.str();
  }
}

// A label not yet taken in `db`: the phenotype's name and the gamete's number,
// with a further number behind while that is taken.
my_string free_label(const Haplo_DB& db, const my_string& pheno_name, int which) {
  const std::string base = pheno_name.str() + "_" + std::to_string(which + 1);
  std::string label = base;
  for (int k = 1; db.find(label) != nullptr; ++k) label = base + "_" + std::to_string(k);
  return my_string(label);
}

// haplo_list with counts added per definition, in order of first appearance.
class HaploListBuilder {
 public:
  explicit HaploListBuilder(std::vector<PHaploDef>& list) : list_(list) {
    for (std::size_t i = 0; i < list_.size(); ++i) position_.emplace(list_[i].hapl, i);
  }
  void add(HaploDef* def, int count) {
    const auto [it, added] = position_.emplace(def, list_.size());
    if (added) {
      list_.push_back(PHaploDef{def, count});
    } else {
      list_[it->second].freq += count;
    }
  }

 private:
  std::vector<PHaploDef>& list_;
  std::unordered_map<const HaploDef*, std::size_t> position_;
};

}  // namespace

int Population::make_pseudo_haplotypes(Haplo_DB& db) {
  haplo_list.clear();
  std::unordered_map<std::string, HaploDef*> by_text;
  for (const auto& def : db.definitions()) by_text.emplace(def->hapl_content.str(), def.get());
  HaploListBuilder list(haplo_list);
  const char sep = separator();
  std::string text;
  for (const auto& p : pheno_db.phenotypes()) {
    const int count = rounded(p->freq);
    if (count <= 0) continue;
    for (int which = 0; which < 2; ++which) {
      const TPopHaplotype* gamete = which == 0 ? p->hapl1.get() : p->hapl2.get();
      gamete_text(gamete, which == 0 ? p->line1 : p->line2, sep, text);
      HaploDef* def = nullptr;
      if (const auto known = by_text.find(text); known != by_text.end()) {
        def = known->second;
      } else {
        auto made = std::make_unique<HaploDef>(free_label(db, p->pheno_name, which));
        made->hapl_content = text;
        if (gamete != nullptr) made->alleles = gamete->alleles;
        made->nb_loci_used = gamete != nullptr ? gamete->nb_loci() : 0;
        def = db.add(std::move(made));
        if (def == nullptr) continue;
        by_text.emplace(text, def);
      }
      def->count += count;
      list.add(def, count);
    }
  }
  Nb_haplo = static_cast<int>(haplo_list.size());
  Nb_orig_haplo = Nb_haplo;
  data_complete = 1;
  return Nb_haplo;
}

std::unique_ptr<PopGenetics> make_group_sample(unsigned char data_type,
                                               std::span<const Population* const> members,
                                               const my_string& name, int index, Haplo_DB& db) {
  Population pooled;
  if (!members.empty() && members.front() != nullptr) {
    pooled.profile = members.front()->profile;
    pooled.allele_db = members.front()->allele_db;
  }
  pooled.SampleName = name;
  pooled.sample_index = index;
  pooled.is_sample = 0;
  const bool genotypic = pooled.genotypic();
  HaploListBuilder list(pooled.haplo_list);
  double size = 0.0;
  int lines = 0;
  for (const Population* m : members) {
    if (m == nullptr) continue;
    size += m->sample_size;
    lines += m->Nb_haplo;
    if (genotypic) {
      for (const auto& p : m->pheno_db.phenotypes()) {
        auto copy = std::make_unique<TPhenotype>(*p);
        copy->genotypes.clear();  // they point into the member's own table
        copy->nb_genotypes = 0;
        pooled.pheno_db.add(std::move(copy));
      }
    } else {
      for (const PHaploDef& e : m->haplo_list) list.add(e.hapl, e.freq);
    }
  }
  pooled.set_sample_size(size);
  pooled.Nb_haplo = genotypic ? lines : static_cast<int>(pooled.haplo_list.size());
  pooled.Nb_orig_haplo = pooled.Nb_haplo;
  std::unique_ptr<PopGenetics> group = make_sample(data_type, pooled);
  if (genotypic) group->make_pseudo_haplotypes(db);
  return group;
}

int build_allele_vectors(Haplo_DB& db, TAlleleDB& alleles) {
  char separator = db.LocusSeparator;
  int loci = 0;
  for (const auto& def : db.definitions()) {
    def->associate(alleles, separator, loci, static_cast<double>(def->count));
  }
  return 1;
}

std::vector<std::pair<const HaploDef*, const HaploDef*>> shared_haplotypes(const Population& a,
                                                                           const Population& b,
                                                                           const TriMat& matrix) {
  std::vector<std::pair<const HaploDef*, const HaploDef*>> pairs;
  const bool same = &a == &b;
  const auto in_matrix = [&matrix](const HaploDef* d) {
    return d != nullptr && d->mat_index >= 0 && d->mat_index < matrix.dim();
  };
  for (std::size_t i = 0; i < a.haplo_list.size(); ++i) {
    const HaploDef* x = a.haplo_list[i].hapl;
    if (!in_matrix(x)) continue;
    for (std::size_t j = same ? i + 1 : 0; j < b.haplo_list.size(); ++j) {
      const HaploDef* y = b.haplo_list[j].hapl;
      if (in_matrix(y) && matrix(x->mat_index, y->mat_index) == 0.0) pairs.emplace_back(x, y);
    }
  }
  return pairs;
}
