// The reader of [[HaplotypeDefinition]] data: the lines behind `HaplList= {`,
// or the whole of an EXTERN file (external 1), whose end closes the list.
#pragma once

#include <istream>

#include "model/haplo_db.h"
#include "model/profile_settings.h"

// One haplotype a line, `id data`, up to a '}' (the data before it count).
// Each id must be new in `haplo_db`; the definition is read as the profile's
// data type requires. Lines are counted in `line_number`. 1, or 0 after an
// ERROR (31, 33, 40, 69, 194).
int NewReadHaplotypeList(Haplo_DB& haplo_db, std::istream& is, const ProfileSettings& profile,
                         int external, int& line_number);
