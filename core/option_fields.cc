#include "core/option_fields.h"

namespace gromlit {

int32_t& OptionNumber(GromlitUserOptions* options, const OptionField& field) {
  return *reinterpret_cast<int32_t*>(reinterpret_cast<char*>(options) + field.member);
}

int32_t OptionNumber(const GromlitUserOptions& options, const OptionField& field) {
  return *reinterpret_cast<const int32_t*>(reinterpret_cast<const char*>(&options) + field.member);
}

std::span<char> OptionBytes(GromlitUserOptions* options, const OptionField& field) {
  return {reinterpret_cast<char*>(options) + field.member, field.at.size};
}

std::span<const char> OptionBytes(const GromlitUserOptions& options, const OptionField& field) {
  return {reinterpret_cast<const char*>(&options) + field.member, field.at.size};
}

}  // namespace gromlit
