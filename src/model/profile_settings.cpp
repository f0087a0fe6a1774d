#include "model/profile_settings.h"

void ProfileSettings::reset_profile() {
  settings* const in_use = calculation_settings;
  *this = ProfileSettings();
  calculation_settings = in_use;
}

const char* data_type_name(unsigned char data_type) {
  static const char* const names[] = {"DNA", "RFLP", "MICROSAT", "STANDARD", "FREQUENCY"};
  return data_type <= data_type_code::FREQUENCY ? names[data_type] : "STANDARD";
}
