// The report "Settings used for Calculations" that heads the result document
// of a run: the general settings and one block per task asked for in
// TaskNumber, as the file asks for them (before the run mends or drops tasks
// that do not fit the data).
#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "model/settings.h"

// Writes the report. In an XML document it stands in a "title" element that
// carries `time_stamp`.
void print_settings_report(const settings& s, std::ostream& os, bool xml,
                           std::string_view time_stamp);

// The printed name of a molecular distance method for a data type.
std::string distance_method_label(unsigned char data_type, int method);
