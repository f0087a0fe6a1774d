// Builders of small samples for the tests of the sample classes.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "model/population.h"

namespace population_test {

// A project in miniature: the dictionaries that samples point into.
class Project {
 public:
  // A definition with this label and text, associated with the alleles
  // (separator 0: one allele per character).
  HaploDef* def(const std::string& id, const std::string& text, char separator = 0) {
    auto made = std::make_unique<HaploDef>(my_string(id));
    made->hapl_content = text;
    HaploDef* d = defs.add(std::move(made));
    int loci = 0;
    d->associate(alleles, separator, loci, 0.0);
    return d;
  }

  // A haplotypic sample of `type` with (text, count) entries.
  Population sample(unsigned char type, const std::vector<std::pair<std::string, int>>& entries,
                    char separator = 0) {
    Population p;
    p.profile.DataType = type;
    p.profile.LocusSeparator = separator;
    p.allele_db = &alleles;
    int total = 0;
    for (const auto& [text, count] : entries) {
      HaploDef* d = defs.find_by_content(my_string(text));
      if (d == nullptr) d = def("h" + std::to_string(defs.size()), text, separator);
      p.haplo_list.push_back(PHaploDef{d, count});
      total += count;
    }
    p.set_sample_size(total);
    p.Nb_haplo = static_cast<int>(entries.size());
    return p;
  }

  // A genotypic sample: (name, gamete 1, gamete 2, individuals) per phenotype,
  // the gametes as texts that build_allele_vectors splits.
  struct Genotype {
    std::string name;
    std::string line1;
    std::string line2;
    double freq;
  };
  Population genotypes(unsigned char type, const std::vector<Genotype>& list, int phase_known,
                       char separator = ' ') {
    Population p;
    p.profile.DataType = type;
    p.profile.GenotypicData = 1;
    p.profile.GameticPhase = phase_known;
    p.profile.LocusSeparator = separator;
    p.allele_db = &alleles;
    double individuals = 0.0;
    for (const Genotype& g : list) {
      auto ph = std::make_unique<TPhenotype>(nullptr, nullptr, p.pheno_db.size());
      ph->pheno_name = g.name;
      ph->line1 = g.line1;
      ph->line2 = g.line2;
      ph->freq = g.freq;
      p.pheno_db.add(std::move(ph));
      individuals += g.freq;
    }
    p.set_sample_size(2.0 * individuals);
    p.Nb_haplo = 2 * static_cast<int>(list.size());
    return p;
  }

  Haplo_DB defs;
  TAlleleDB alleles;
};

}  // namespace population_test
