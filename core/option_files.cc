#include "core/option_files.h"

#include <array>
#include <vector>

#include "core/files.h"
#include "core/record_codec.h"
#include "core/report.h"
#include "core/retired.h"
#include "core/strings.h"

namespace gromlit {
namespace {

constexpr size_t kFileSize = kHeaderSize + kOptionsImageSize;
constexpr int kFirstButton = 1;
constexpr int kLastButton = 5;
constexpr int kDefaultButton = 3;

static_assert(std::string_view(GromlitOptionFileHeaderString).size() == kHeaderSize);
static_assert(kFileSize == 305);

// A value as one of `count` that are listed; the first one for any other.
template <typename Value>
Value Listed(int32_t value, Value count) {
  return 0 <= value && value < count ? static_cast<Value>(value) : Value{};
}

}  // namespace

GromlitUserOptions* LoadUserOptions(const char* fname) {
  std::vector<std::byte> file;
  if (!ReadFile(DataPath(optionDirectory, fname).c_str(), kFileSize, &file)) return nullptr;
  if (file.size() < kFileSize || !HasHeader(file, GromlitOptionFileHeaderString)) return nullptr;
  auto* options = new GromlitUserOptions();
  DecodeOptions(std::span(file).subspan(kHeaderSize), options);
  return options;
}

int SaveUserOptions(const GromlitUserOptions* usr, const char* fname) {
  std::array<std::byte, kFileSize> file;
  PutHeader(file, GromlitOptionFileHeaderString);
  EncodeOptions(*usr, std::span(file).subspan(kHeaderSize));
  if (SaveFile(DataPath(optionDirectory, fname).c_str(), file)) return 1;
  ReportSystemError("Save Options");
  return 0;
}

void DefaultUserOptions(GromlitUserOptions* usr) {
  for (const OptionField& field : kOptionFields) {
    if (!field.fallback.given) continue;
    if (field.kind == OptionKind::kNumber) {
      OptionNumber(usr, field) = field.fallback.number;
    } else {
      CopyText(OptionBytes(usr, field), field.fallback.text);
    }
  }
}

GromlitUserOptions* GetUserOptions() {
  Retire(user);
  user = LoadUserOptions(defaultOptionFile);
  if (user == nullptr) {
    user = new GromlitUserOptions();
    DefaultUserOptions(user);
  }
  return user;
}

Delivery DeliveryOf(const GromlitUserOptions* usr) {
  return usr != nullptr ? Listed(usr->temp1, kDeliveries) : kSentEvents;
}

bool Chosen(const GromlitUserOptions* usr, Behaviour bit) {
  return usr != nullptr && (usr->temp2 & bit) != 0;
}

MatchingWay MatchingWayOf(const GromlitUserOptions* usr) {
  return Listed(usr->temp3, kMatchingWays);
}

WindowManners MannersOf(const GromlitUserOptions* usr) {
  return usr->temp4 == kModernManners ? kModernManners : kPlainManners;
}

int EffectiveButton(const GromlitUserOptions* usr) {
  return usr->button >= kFirstButton && usr->button <= kLastButton ? usr->button : kDefaultButton;
}

}  // namespace gromlit
