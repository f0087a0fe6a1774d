// The data lines of one sample of [[Samples]], read into a Population.
//
// Haplotypic data: one line a haplotype, `id frequency [data]`. The id is
// looked up in the project's Haplo_DB; a new one gets a definition there, an
// old one may go without data (or must repeat its definition exactly). The
// sample keeps PHaploDef entries (definition and count).
//
// Genotypic data: two lines an individual, `id frequency gamete1` and
// `gamete2`. Each individual becomes a TPhenotype of the sample's pheno_db
// with the two gamete texts; the alleles are entered later, when the run
// builds its allele vectors.
//
// On entry, the population's sample_size holds the SampleSize of the file (0
// when none was given); on success it holds the sum of the counts (twice the
// sum for genotypic data). The stream stands behind the SampleData line (or
// at the start of an EXTERN file, external 1, whose end closes the sample).
// Lines are counted in `line_number`; `line` holds the last line read. Each
// returns 1, or 0 after reporting the fault with its line.
#pragma once

#include <istream>

#include "model/haplo_db.h"
#include "model/my_string.h"
#include "model/population.h"

int New_read_gametic_data(Population& sample, std::istream& is, Haplo_DB& haplo_db, int external,
                          int& line_number, my_string& line);

int New_read_genotypic_data(Population& sample, std::istream& is, int external, int& line_number,
                            my_string& line);
