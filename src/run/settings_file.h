// Reading a settings file (.mvs) into the settings record.
//
// Each key is looked up on its own, by containment and case-sensitively: the
// first line holding the key and an '=' with at least one character behind
// it gives the value. So a key that is part of a longer key is found on the
// longer key's line if that line comes first, and the order of the file
// matters (DistanceMethod ahead of MismatchDistanceMethod, and so on).
//
// Keys up to KeepNullDistrib read as 0 (or empty) when the file lacks them;
// keys from EMEstimHaplFreqs on keep the value they had. A missing file is
// no failure here: the caller tests for it first.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "model/settings.h"

// Number of keys a settings file may hold, and the position (in reader
// order) of the first key that keeps its value when missing.
constexpr int settings_key_count = 122;
constexpr int first_kept_key = 102;

// The keys in reader order.
std::vector<std::string_view> settings_key_names();

// Looks `key` up in the file at `path`: 1 with the text behind the first '='
// (up to the line end, a character 0 or column `column_limit`), 0 with the
// empty text when no line gives one or the file cannot be opened.
int lookup(std::string_view key, std::string& value, int column_limit, const std::string& path);

// Reads every key of the file at `path` into `s`, stores the path, sets the
// derived haplotype_estimation_on and applies the run list's overrides of
// append_results and KeepNullDistrib.
void read_settings(settings& s, const std::string& path);
