// The [[Structure]] section: groups of known samples, each sample in one
// group; faults end the reading with their message.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "input/project_data_support.h"

namespace {

using input_testing::dna_profile;
using input_testing::LoadedProject;
using input_testing::project_head;

// Samples A, B and C (lines 10 to 25); [[Structure]] on line 26, its lines from 27 on.
std::string with_structure(const std::string& structure) {
  std::string text = project_head(dna_profile, 3) + "[[Samples]]\n";
  for (const char* name : {"A", "B", "C"}) {
    // The first sample defines the haplotype, the others name it.
    const char* data = *name == 'A' ? "h 1 AC\n" : "h 1\n";
    text += "SampleName=\"" + std::string(name) + "\"\nSampleSize=1\nSampleData={\n" + data + "}\n";
  }
  return text + "[[Structure]]\n" + structure;
}

struct FaultCase {
  const char* what;
  std::string structure;
  std::vector<int> codes;
  std::string log;
};

TEST(StructureSection, FaultsEndTheReading) {
  const FaultCase cases[] = {
      {"unknown sample",
       "NbGroups=1\nGroup={\"A\" \"X\"}\n",
       {51},
       "\tError: Sample \"X\" defined in Group #1 on line 28 has not been defined in the "
       "[Samples] section.\n\tAborting reading project.\n"},
      {"twice in a group",
       "NbGroups=1\nGroup={\"A\"\n\"A\"}\n",
       {206},
       "\tError: Sample \"A\" defined in Group #1 on line 29 has been alredy included in group "
       "#1.\n\tAborting reading project.\n"},
      {"in two groups",
       "NbGroups=2\nGroup={\"A\"}\nGroup={\"B\" \"A\"}\n",
       {206},
       "\tError: Sample \"A\" defined in Group #2 on line 29 has been alredy included in group "
       "#1.\n"},
      {"unquoted names",
       "NbGroups=1\nGroup={A B}\n",
       {205},
       "\t\tError while exploring structure of Group # 1. It does not contain any population "
       "sample\n\t\t\tCheck your [[Structure]] section, for unquoted sample names\n\t\tAborting "
       "reading project.\n"},
      {"no opening brace",
       "NbGroups=1\nGroup=\n\n\"A\"}\n",
       {50},
       "\tError: Missing opening brace in Group #1. Aborting reading project\n"},
      {"groups before their number",
       "Group={\"A\"}\n",
       {49},
       "\tError: Unexpected \"Group\" section found on line 27. Expected number of group is "
       "zero. Check that \"NbGroups\" has been previously defined. Aborting reading project.\n"},
      {"fewer groups",
       "NbGroups=2\nGroup={\"A\"}\n",
       {47},
       "\tInvalid number of groups defined. 2were expected, while 1 have been found!\n\tCheck "
       "your [[Structure]] section, for missing group or unquoted sample names\n\tAborting "
       "reading project.\n"},
      {"external structure",
       "StructureName=EXTERN \"s.txt\"\nNbGroups=1\nGroup={\"A\"}\n",
       {195, 203},
       "\tWarning: External definition of the GENETIC STRUCTURE is not possible anymore.\n"
       "\tPlease incorporate it into the project. Skipping reading of the Genetic "
       "structure.\n"},
  };
  for (const FaultCase& c : cases) {
    LoadedProject p;
    p.read(with_structure(c.structure));
    EXPECT_EQ(p.result, 0) << c.what;
    EXPECT_EQ(p.codes, c.codes) << c.what << "\n" << p.log;
    EXPECT_TRUE(p.logged(c.log)) << c.what << "\n" << p.log;
  }
}

TEST(StructureSection, GroupsOverSeveralLines) {
  LoadedProject p;
  p.read(
      with_structure("StructureName=\"s\"\nNbGroups=2\nGroup=\n{\n  \"C\"\n \"A\" }\n"
                     "Group={ \"B\" } # the last\n"));
  ASSERT_EQ(p.result, 1) << p.log;
  EXPECT_TRUE(p.codes.empty()) << p.log;
  EXPECT_EQ(p.structure->StructureName, "s");
  ASSERT_EQ(p.structure->nb_groups(), 2);
  EXPECT_EQ(p.structure->groups[0].members, (std::vector<int>{2, 0}));
  EXPECT_EQ(p.structure->groups[1].members, (std::vector<int>{1}));
  EXPECT_EQ(p.structure->nb_samples(), 3);
  EXPECT_EQ(p.structure->group_of(1), 1);
  EXPECT_EQ(p.profile.NbGroups, 2);
}

TEST(StructureSection, ObsoleteKeywordsAndBadNameOnlyWarn) {
  LoadedProject p;
  p.read(
      with_structure("StructureName=s\nDistMatLabel=\"m\"\nIndividualLevel=1\nNbGroups=1\n"
                     "Group={\"A\" \"B\"}\n"));
  ASSERT_EQ(p.result, 1) << p.log;
  EXPECT_EQ(p.codes, (std::vector<int>{190, 46})) << p.log;
  EXPECT_TRUE(
      p.logged("\tWarning: Bad value assigned to StructureName on line 27\n"
               "!W46 Structure::NewReadStructure\n"
               "\tWarning: Keyword \"DistMatLabel\" is obsolete. Skipping keyword.\n"
               "\tWarning: Keyword \"IndividualLevel\" defined on line 29 is obsolete. "
               "Activation of this option is now made through the interface.\n"))
      << p.log;
}

// A [[Mantel]] line ends an unclosed group and goes back to the caller.
TEST(StructureSection, MantelLineEndsAnOpenGroup) {
  LoadedProject loaded;
  loaded.read(with_structure("NbGroups=1\nGroup={\"A\"}\n"));
  ASSERT_EQ(loaded.result, 1) << loaded.log;
  std::istringstream is("NbGroups=1\nGroup={\"A\"\n\"B\"\n[[Mantel]]\nMatrixSize=3\n");
  Structure structure;
  ProfileSettings profile;
  int line_number = 0;
  my_string line;
  unsigned char name = 0, nb = 0, label = 0, group = 0;
  input_testing::ReportCapture capture;
  EXPECT_EQ(structure.NewReadStructure(is, profile, loaded.samples.get(), line_number, line, name,
                                       nb, label, group),
            1);
  EXPECT_EQ(line, "[[Mantel]]");
  EXPECT_EQ(line_number, 4);
  ASSERT_EQ(structure.nb_groups(), 1);
  EXPECT_EQ(structure.groups[0].members, (std::vector<int>{0, 1}));
  EXPECT_EQ(nb, 1);
  EXPECT_EQ(group, 1);
  EXPECT_EQ(name, 0);
}

TEST(StructureSection, GroupsBeyondTheNumberAreLeft) {
  LoadedProject p;
  p.read(with_structure("NbGroups=1\nGroup={\"A\"}\nGroup={\"B\"}\n"));
  ASSERT_EQ(p.result, 1) << p.log;
  EXPECT_EQ(p.structure->nb_groups(), 1);
}

}  // namespace
