#include "output/references.h"

#include <array>

namespace {

using Row = References::Row;

// One line of bibliographic text per work. Texts hold no '&', '<' or '>', so
// they go into both dresses of the document as they stand.
constexpr std::array<Row, 74> rows{{
    // Analysis of molecular variance and population structure
    {"Excoffier_L_and_Smouse_P",
     "Excoffier, L., Smouse, P., and Quattro, J. 1992. Analysis of molecular variance inferred "
     "from metric distances among DNA haplotypes: Application to human mitochondrial DNA "
     "restriction data. Genetics 131: 479-491."},
    {"Excoffier_L_and_Smouse_P2",
     "Excoffier, L., and Smouse, P. 1994. Using allele frequencies and geographic subdivision to "
     "reconstruct gene genealogies within a species. Molecular variance parsimony. Genetics 136: "
     "343-359."},
    {"Excoffier_L",
     "Excoffier, L. 2001. Analysis of population subdivision. In: Handbook of Statistical "
     "Genetics, edited by Balding, D., Bishop, M., and Cannings, C., Wiley, Chichester, UK, pp. "
     "271-307."},
    {"Excoffier_L2",
     "Excoffier, L. 2004. Patterns of DNA sequence diversity and genetic structure after a range "
     "expansion: lessons from the infinite-island model. Molecular Ecology 13: 853-864."},
    {"Weir_B_and_Cockerham_C",
     "Weir, B. S., and Cockerham, C. C. 1984. Estimating F-statistics for the analysis of "
     "population structure. Evolution 38: 1358-1370."},
    {"Weir_B",
     "Weir, B. S. 1996. Genetic Data Analysis II: Methods for Discrete Population Genetic Data. "
     "Sinauer Assoc., Inc., Sunderland, MA, USA."},
    {"Cockerham_C", "Cockerham, C. C. 1969. Variance of gene frequencies. Evolution 23: 72-84."},
    {"Cockerham_C2", "Cockerham, C. C. 1973. Analyses of gene frequencies. Genetics 74: 679-700."},
    {"Wright_S",
     "Wright, S. 1951. The genetical structure of populations. Ann. Eugen. 15: 323-354."},
    {"Wright_S2",
     "Wright, S. 1965. The interpretation of population structure by F-statistics with special "
     "regard to systems of mating. Evolution 19: 395-420."},
    {"Nei_M2",
     "Nei, M. 1973. Analysis of gene diversity in subdivided populations. Proc. Natl. Acad. Sci. "
     "USA 70: 3321-3323."},
    {"Nei_M_and_Chesser_R",
     "Nei, M., and Chesser, R. K. 1983. Estimation of fixation indices and gene diversities. "
     "Ann. Hum. Genet. 47: 253-259."},
    {"Michalakis_Y_and_Excoffier_L",
     "Michalakis, Y., and Excoffier, L. 1996. A generic estimation of population subdivision "
     "using distances between alleles with special reference to microsatellite loci. Genetics "
     "142: 1061-1064."},
    {"Slatkin_M3",
     "Slatkin, M. 1995. A measure of population subdivision based on microsatellite allele "
     "frequencies. Genetics 139: 457-462."},
    {"Hudson_R_and_Slatkin_M",
     "Hudson, R. R., Slatkin, M., and Maddison, W. P. 1992. Estimation of levels of gene flow "
     "from DNA sequence data. Genetics 132: 583-589."},
    {"Lynch_M_and_Crease_T",
     "Lynch, M., and Crease, T. J. 1990. The analysis of population survey data on DNA sequence "
     "variation. Mol. Biol. Evol. 7: 377-394."},
    // Pairwise comparisons and distances between populations
    {"Reynolds_J_and_Weir_B",
     "Reynolds, J., Weir, B. S., and Cockerham, C. C. 1983. Estimation of the coancestry "
     "coefficient: basis for a short-term genetic distance. Genetics 105: 767-779."},
    {"Slatkin_M4",
     "Slatkin, M. 1991. Inbreeding coefficients and coalescence times. Genet. Res. 58: 167-175."},
    {"Gaggiotti_O_and_Excoffier_L",
     "Gaggiotti, O., and Excoffier, L. 2000. A simple method of removing the effect of a "
     "bottleneck and unequal population sizes on pairwise genetic distances. Proc. R. Soc. Lond. "
     "B 267: 81-87."},
    {"Rousset_F",
     "Rousset, F. 1997. Genetic differentiation and estimation of gene flow from F-statistics "
     "under isolation by distance. Genetics 145: 1219-1228."},
    {"Raymond_M_and_Rousset_F",
     "Raymond, M., and Rousset, F. 1995. An exact test for population differentiation. "
     "Evolution 49: 1280-1283."},
    {"Goldstein_D_and_Linares_A",
     "Goldstein, D. B., Linares, A. R., Cavalli-Sforza, L. L., and Feldman, M. W. 1995. An "
     "evaluation of genetic distances for use with microsatellite loci. Genetics 139: 463-471."},
    {"Zhivotovsky_L",
     "Zhivotovsky, L. A. 1999. A new genetic distance with application to constrained variation "
     "at microsatellite loci. Mol. Biol. Evol. 16: 467-471."},
    // Assignment of genotypes
    {"Paetkau_D_and_Waits_L",
     "Paetkau, D., Waits, L. P., Clarkson, P. L., Craighead, L., and Strobeck, C. 1997. An "
     "empirical evaluation of genetic distance statistics using microsatellite data from bear "
     "(Ursidae) populations. Genetics 147: 1943-1957."},
    {"Waser_P_and_Strobeck_C",
     "Waser, P. M., and Strobeck, C. 1998. Genetic signatures of interpopulation dispersal. "
     "Trends Ecol. Evol. 13: 43-44."},
    {"Rannala_B_and_Mountain_J",
     "Rannala, B., and Mountain, J. L. 1997. Detecting immigration by using multilocus "
     "genotypes. Proc. Natl. Acad. Sci. USA 94: 9197-9201."},
    // Mantel test
    {"Mantel_N",
     "Mantel, N. 1967. The detection of disease clustering and a generalized regression "
     "approach. Cancer Res. 27: 209-220."},
    {"Smouse_P_and_Long_J",
     "Smouse, P. E., Long, J. C., and Sokal, R. R. 1986. Multiple regression and correlation "
     "extensions of the Mantel test of matrix correspondence. Systematic Zoology 35: 627-632."},
    {"Sokal_R_and_Rohlf_F",
     "Sokal, R. R., and Rohlf, F. J. 1981. Biometry. 2nd ed. W. H. Freeman and Co., San "
     "Francisco."},
    // Minimum spanning trees and networks
    {"Rohlf_F",
     "Rohlf, F. J. 1973. Algorithm 76. Hierarchical clustering using the minimum spanning tree. "
     "The Computer Journal 16: 93-95."},
    {"Prim_R",
     "Prim, R. C. 1957. Shortest connection networks and some generalizations. Bell System "
     "Technical Journal 36: 1389-1401."},
    // Loci under selection
    {"Beaumont_M_and_Nichols_R",
     "Beaumont, M. A., and Nichols, R. A. 1996. Evaluating loci for use in the genetic analysis "
     "of population structure. Proc. R. Soc. Lond. B 263: 1619-1626."},
    {"Excoffier_L_and_Hofer_T",
     "Excoffier, L., Hofer, T., and Foll, M. 2009. Detecting loci under selection in a "
     "hierarchically structured population. Heredity 103: 285-298."},
    // Diversity indices and theta estimators
    {"Nei_M",
     "Nei, M. 1987. Molecular Evolutionary Genetics. Columbia University Press, New York, NY, "
     "USA."},
    {"Tajima_F2",
     "Tajima, F. 1983. Evolutionary relationship of DNA sequences in finite populations. "
     "Genetics 105: 437-460."},
    {"Tajima_F3",
     "Tajima, F. 1993. Measurement of DNA polymorphism. In: Mechanisms of Molecular Evolution, "
     "edited by Takahata, N., and Clark, A. G., Japan Scientific Societies Press, Tokyo, and "
     "Sinauer Associates, Sunderland, MA, pp. 37-59."},
    {"Watterson_G2",
     "Watterson, G. A. 1975. On the number of segregating sites in genetical models without "
     "recombination. Theoret. Popul. Biol. 7: 256-276."},
    {"Zouros_E",
     "Zouros, E. 1979. Mutation rates, population sizes and amounts of electrophoretic variation "
     "at enzyme loci in natural populations. Genetics 92: 623-646."},
    {"Kimura_M_and_Crow_J",
     "Kimura, M., and Crow, J. 1964. The number of alleles that can be maintained in a finite "
     "population. Genetics 49: 725-738."},
    {"Ohta_T_and_Kimura_M",
     "Ohta, T., and Kimura, M. 1973. A model of mutation appropriate to estimate the number of "
     "electrophoretically detectable alleles in a finite population. Genet. Res. 22: 201-204."},
    {"Garza_J_and_Williamson_E",
     "Garza, J. C., and Williamson, E. G. 2001. Detection of reduction in population size using "
     "data from microsatellite loci. Mol. Ecol. 10: 305-318."},
    {"Di_Rienzo_A_and_Peterson_A",
     "Di Rienzo, A., Peterson, A. C., Garza, J. C., Valdes, A. M., Slatkin, M., and Freimer, N. "
     "B. 1994. Mutational processes of simple-sequence repeat loci in human populations. Proc. "
     "Natl. Acad. Sci. USA 91: 3166-3170."},
    // Molecular distances
    {"Jukes_T_and_Cantor_C",
     "Jukes, T., and Cantor, C. 1969. Evolution of protein molecules. In: Mammalian Protein "
     "Metabolism, edited by Munro, H. N., Academic Press, New York, pp. 21-132."},
    {"Kimura_M",
     "Kimura, M. 1980. A simple method for estimating evolutionary rate of base substitutions "
     "through comparative studies of nucleotide sequences. J. Mol. Evol. 16: 111-120."},
    {"Tajima_F_and_Nei_M",
     "Tajima, F., and Nei, M. 1984. Estimation of evolutionary distance between nucleotide "
     "sequences. Mol. Biol. Evol. 1: 269-285."},
    {"Tamura_K",
     "Tamura, K. 1992. Estimation of the number of nucleotide substitutions when there are "
     "strong transition-transversion and G+C content biases. Mol. Biol. Evol. 9: 678-687."},
    {"Tamura_K_and_Nei_M",
     "Tamura, K., and Nei, M. 1993. Estimation of the number of nucleotide substitutions in the "
     "control region of mitochondrial DNA in humans and chimpanzees. Mol. Biol. Evol. 10: "
     "512-526."},
    {"Nei_M_and_Li_W",
     "Nei, M., and Li, W.-H. 1979. Mathematical model for studying genetic variation in terms of "
     "restriction endonucleases. Proc. Natl. Acad. Sci. USA 76: 5269-5273."},
    {"Nei_M_and_Tajima_F",
     "Nei, M., and Tajima, F. 1981. DNA polymorphism detectable by restriction endonucleases. "
     "Genetics 97: 145-163."},
    // Mismatch distribution and expansions
    {"Li_W",
     "Li, W.-H. 1977. Distribution of nucleotide differences between two randomly chosen "
     "cistrons in a finite population. Genetics 85: 331-337."},
    {"Rogers_A_and_Harpending_H",
     "Rogers, A. R., and Harpending, H. 1992. Population growth makes waves in the distribution "
     "of pairwise genetic differences. Mol. Biol. Evol. 9: 552-569."},
    {"Rogers_A",
     "Rogers, A. 1995. Genetic evidence for a Pleistocene population expansion. Evolution 49: "
     "608-615."},
    {"Harpending_H",
     "Harpending, H. C. 1994. Signature of ancient population growth in a low-resolution "
     "mitochondrial DNA mismatch distribution. Hum. Biol. 66: 591-600."},
    {"Slatkin_M_and_Hudson_R",
     "Slatkin, M., and Hudson, R. R. 1991. Pairwise comparisons of mitochondrial DNA sequences "
     "in stable and exponentially growing populations. Genetics 129: 555-562."},
    {"Schneider_S_and_Excoffier_L",
     "Schneider, S., and Excoffier, L. 1999. Estimation of past demographic parameters from the "
     "distribution of pairwise differences when the mutation rates vary among sites: Application "
     "to human mitochondrial DNA. Genetics 152: 1079-1089."},
    {"Ray_N_and_Currat_M",
     "Ray, N., Currat, M., and Excoffier, L. 2003. Intra-deme molecular diversity in spatially "
     "expanding populations. Mol. Biol. Evol. 20: 76-86."},
    {"Efron_B",
     "Efron, B. 1979. Bootstrap methods: another look at the jackknife. Ann. Statist. 7: 1-26."},
    // Coalescent simulation
    {"Kingman_J", "Kingman, J. F. C. 1982. The coalescent. Stochast. Proc. Appl. 13: 235-248."},
    {"Hudson_R",
     "Hudson, R. R. 1990. Gene genealogies and the coalescent process. Oxford Surveys in "
     "Evolutionary Biology 7: 1-44."},
    {"Hudson_R2",
     "Hudson, R. R. 1983. Properties of a neutral allele model with intragenic recombination. "
     "Theoret. Popul. Biol. 23: 183-201."},
    // Neutrality tests
    {"Tajima_F",
     "Tajima, F. 1989. Statistical method for testing the neutral mutation hypothesis by DNA "
     "polymorphism. Genetics 123: 585-595."},
    {"Fu_Y",
     "Fu, Y.-X. 1997. Statistical tests of neutrality of mutations against population growth, "
     "hitchhiking and background selection. Genetics 147: 915-925."},
    {"Ewens_W",
     "Ewens, W. J. 1972. The sampling theory of selectively neutral alleles. Theoret. Popul. "
     "Biol. 3: 87-112."},
    {"Watterson_G",
     "Watterson, G. A. 1978. The homozygosity test of neutrality. Genetics 88: 405-417."},
    {"Slatkin_M",
     "Slatkin, M. 1994. An exact test for neutrality based on the Ewens sampling distribution. "
     "Genet. Res. 64: 71-74."},
    {"Slatkin_M2",
     "Slatkin, M. 1996. A correction to the exact test based on the Ewens sampling distribution. "
     "Genet. Res. 68: 259-260."},
    {"Chakraborty_R",
     "Chakraborty, R. 1990. Mitochondrial DNA polymorphism reveals hidden heterogeneity within "
     "some Asian populations. Am. J. Hum. Genet. 47: 87-94."},
    // Hardy-Weinberg and linkage disequilibrium
    {"Guo_S_and_Thompson_E",
     "Guo, S., and Thompson, E. 1992. Performing the exact test of Hardy-Weinberg proportion for "
     "multiple alleles. Biometrics 48: 361-372."},
    {"Levene_H",
     "Levene, H. 1949. On a matching problem arising in genetics. Ann. Math. Stat. 20: 91-94."},
    {"Slatkin_M_and_Excoffier_L",
     "Slatkin, M., and Excoffier, L. 1996. Testing for linkage disequilibrium in genotypic data "
     "using the Expectation-Maximization algorithm. Heredity 76: 377-383."},
    {"Lewontin_R",
     "Lewontin, R. C. 1964. The interaction of selection and linkage. I. General considerations; "
     "heterotic models. Genetics 49: 49-67."},
    // Haplotype frequencies and gametic phase
    {"Excoffier_L_and_Slatkin_M",
     "Excoffier, L., and Slatkin, M. 1995. Maximum-likelihood estimation of molecular haplotype "
     "frequencies in a diploid population. Mol. Biol. Evol. 12: 921-927."},
    {"Dempster_A_and_Laird_N",
     "Dempster, A., Laird, N., and Rubin, D. B. 1977. Maximum likelihood estimation from "
     "incomplete data via the EM algorithm. J. R. Statist. Soc. B 39: 1-38."},
    {"Stephens_M_and_Smith_N",
     "Stephens, M., Smith, N. J., and Donnelly, P. 2001. A new statistical method for haplotype "
     "reconstruction from population data. Am. J. Hum. Genet. 68: 978-989."},
}};

}  // namespace

std::string References::citation(std::string_view key) const {
  for (const Row& row : rows) {
    if (row.key == key) return std::string(row.text);
  }
  return {};
}

std::span<const References::Row> References::table() {
  return rows;
}

void write_citations(std::ostream& os, bool xml, const std::vector<std::string>& texts) {
  for (size_t i = 0; i < texts.size(); ++i) {
    if (!xml) {
      os << "           <i>" << texts[i] << "</i>"
         << "\n";
      continue;
    }
    if (i == 0) os << "</data>\n";
    os << "<Reference>" << texts[i] << "</Reference>\n";
    if (i + 1 == texts.size()) os << "<data>\n";
  }
}

std::string labelled_citation(bool xml, std::string_view text) {
  if (xml) {
    return "Reference: </data>\n<Reference>" + std::string(text) + "</Reference>\n<data>\n";
  }
  return "Reference: <i>" + std::string(text) + "</i>";
}
