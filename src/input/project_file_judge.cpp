#include "input/project_file_judge.h"

#include "model/report.h"

namespace {

// Logs the message of a missing keyword and remembers that it is a fault.
struct Missing {
  bool fault = false;
  void operator()(const char* text) {
    log_stream() << text;
    fault = true;
  }
};

void judge_profile(const ProjectFileFlags& f, const ProfileSettings& profile, Missing& missing) {
  const bool frequency_data = profile.is_frequency_data();
  if (!f.profile) missing("\t[PROFILE] section not defined. Check your project file.\n");
  if (!f.nb_samples)
    missing(
        "\tKeyword \"NbSamples\" not found. Undefined number of samples to read. Check your "
        "project file.\n");
  if (!f.data_type)
    missing("\tKeyword \"DataType\" not found. Undefined data type. Check your project file.\n");
  if (!f.genotypic_data)
    missing(
        "\tKeyword \"GenotypicData\" not found. Undefined data type. Check your project "
        "file.\n");
  if (!f.locus_separator && !frequency_data)
    missing("\tKeyword \"LocusSeparator\" not found. Check your project file.\n");
  if (!f.gametic_phase && profile.GenotypicData == 1)
    missing(
        "\tKeyword \"GameticPhase\" not found. Undefined gametic phase for genotypic data. "
        "Check your project file.\n");
  if (!f.recessive_allele && profile.RecessiveData == 1)
    log_stream() << "\tKeyword \"RecessiveAllele\" not found. Undefined recessive allele for "
                    "recessive data. \t\tUsing default value ("
                 << profile.RecessiveAllele << "). Check your project file.\n";
  if (!f.missing_data && !frequency_data)
    log_stream() << "\tKeyword \"MissingData\" not found. Using default value (\""
                 << profile.MissingData << "\"). Check your project file.\n";
  if (!f.data) missing("\t[DATA] section not defined. Check your project file.\n");
}

void judge_sections(const ProjectFileFlags& f, const ProfileSettings& profile, Missing& missing) {
  if (f.haplotype_definition && !f.hapl_list)
    missing(
        "\tKeyword \"HaplList\" not found in Haplotype section. Haplotype list not found. "
        "Check your project file.\n");
  if (f.distance_matrix && !f.matrix_size)
    missing(
        "\tKeyword \"MatrixSize\" not found in Distance Matrix section.Check your project "
        "file.\n");
  if (f.distance_matrix && !f.matrix_data)
    missing(
        "\tKeyword \"MatrixData\" not found in Distance Matrix section. Distance matrix is "
        "undefined. Check your project file.\n");
  if (!f.samples)
    missing(
        "\tSection \"Samples\" not found in project. At least one sample needs to be "
        "defined. Check your project file.\n");
  if (f.samples && !f.sample_size)
    log_stream() << "\tKeyword \"SampleSize\" not found in Samples section. Sample size is "
                    "undefined.\n"
                 << (profile.GenotypicData == 1
                         ? "\t\tUsing sum of genotype frequencies. Check your project file.\n"
                         : "\t\tUsing sum of haplotype frequencies. Check your project file.\n");
  if (f.samples && !f.sample_data)
    missing(
        "\tKeyword \"SampleData\" not found in Samples section. Sample data is undefined. "
        "Check your project file.\n");
  if (f.structure && !f.nb_groups)
    missing(
        "\tKeyword \"NbGroups\" not found in Structure section. Unknown number of groups to "
        "read. Check your project file.\n");
  if (f.structure && !f.group)
    missing(
        "\tKeyword \"Group\" not found in Structure section. No groups definition could be "
        "read. Check your project file.\n");
  if (!f.mantel) return;
  if (!f.mantel_matrix_size)
    missing(
        "\tKeyword \"MatrixSize\" not found in Mantel section. Undefined size of matrices to "
        "be read. Check your project file.\n");
  if (!f.matrix_number)
    missing(
        "\tKeyword \"MatrixNumber\" not found in Mantel section. Undefined number of "
        "matrices to be read. Check your project file.\n");
  if (!f.y_matrix_labels)
    missing(
        "\tKeyword \"YMatrixLabels\" not found in Mantel section. Undefined matrix labels. "
        "Check your project file.\n");
  if (!f.dist_mat_mantel)
    missing(
        "\tKeyword \"DistMatMantel\" not found in Mantel section. Undefined matrix data. "
        "Check your project file.\n");
  if (!f.used_y_matrix_labels)
    missing(
        "\tKeyword \"UsedYMatrixLabels\" not found in Mantel section. Undefined matrix "
        "labels to be used for Mantel test. Check your project file.\n");
}

}  // namespace

bool log_missing_keywords(const ProjectFileFlags& flags, const ProfileSettings& profile) {
  Missing missing;
  judge_profile(flags, profile, missing);
  judge_sections(flags, profile, missing);
  return missing.fault;
}
