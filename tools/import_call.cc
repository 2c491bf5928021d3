#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <set>
#include <span>

#include "core/files.h"
#include "core/option_files.h"
#include "core/plugin_names.h"
#include "core/printable.h"
#include "core/set_aside.h"
#include "core/strings.h"
#include "core/symbol_files.h"
#include "tools/collection.h"
#include "tools/installation.h"
#include "tools/record_json.h"
#include "tools/sharing_calls.h"
#include "tools/text_input.h"
#include "tools/tool_io.h"

namespace gromlit {
namespace {

constexpr const char* kReplacedDirectory = "replaced";

// What becomes of one file. Without an image nothing is written.
struct Step {
  std::string word;         // new, unchanged, merged, replaced, skipped
  std::string name;         // below the installation directory
  std::string detail = {};  // may be empty
  std::vector<std::byte> image = {};
  bool replaces = false;    // a copy of what is there goes to replaced/ first
  bool incomplete = false;  // something of the document is not taken over
};

std::string Quote(std::string_view text) {
  return "\"" + std::string(text) + "\"";
}

// --- Merging ------------------------------------------------------------------------------------

bool SameAction(const GromlitAction& one, const GromlitAction& other) {
  const GromlitSymbol& a = one.sym;
  const GromlitSymbol& b = other.sym;
  return FieldText(one.name) == FieldText(other.name) && a.npoints == b.npoints &&
         std::equal(a.x + 1, a.x + 1 + a.npoints, b.x + 1) &&
         std::equal(a.y + 1, a.y + 1 + a.npoints, b.y + 1);
}

struct Merged {
  int added = 0;
  std::vector<std::string> no_room;  // names of actions
};

// Moves the actions that `into` does not have to its end.
Merged MergeActions(GromlitPlugin* from, GromlitPlugin* into) {
  Merged merged;
  std::vector<GromlitAction*> left;
  for (int i = 0; i < from->nactions; i++) {
    GromlitAction* action = from->actions[i];
    GromlitAction** const end = into->actions + into->nactions;
    const bool known = std::any_of(into->actions, end, [action](const GromlitAction* other) {
      return SameAction(*action, *other);
    });
    if (known || into->nactions == kMaxActions) {
      left.push_back(action);
      if (!known) merged.no_room.emplace_back(FieldText(action->name));
      continue;
    }
    *end = action;
    into->nactions++;
    merged.added++;
  }
  std::fill(std::begin(from->actions), std::end(from->actions), nullptr);
  std::copy(left.begin(), left.end(), from->actions);
  from->nactions = static_cast<uint8_t>(left.size());
  return merged;
}

std::string MergedDetail(const Merged& merged) {
  std::string detail =
      std::to_string(merged.added) + (merged.added == 1 ? " action" : " actions") + " added";
  if (!merged.no_room.empty()) {
    detail += ", no room for ";
    for (const std::string& name : merged.no_room)
      detail += (&name == &merged.no_room.front() ? "" : ", ") + Quote(name);
  }
  return detail;
}

// --- Planning -----------------------------------------------------------------------------------

bool IsTaken(const std::string& dir, const std::string& name) {
  struct stat info {};
  return lstat((dir + "/" + name).c_str(), &info) == 0;
}

class Planner {
 public:
  Planner(const std::string& dir, Installation* found, Existing existing)
      : dir_(dir), found_(found), existing_(existing) {}

  std::vector<Step> Plan(Collection* collection) {
    std::vector<Step> steps;
    for (const auto& file : collection->symbols) steps.push_back(PlanSymbol(*file));
    for (const auto& file : collection->plugins) steps.push_back(PlanPlugin(file.get()));
    if (collection->options != nullptr) steps.push_back(PlanOptions(*collection->options));
    return steps;
  }

 private:
  Step PlanSymbol(const DataFile& file) {
    const std::string key = KeyOf(file);
    const FoundFile* there = FileOfKey(&found_->symbols, key);
    const std::string name = there != nullptr ? there->name : Below(symbolDirectory, key);
    return Decide(file, name, there);
  }

  Step PlanPlugin(DataFile* file) {
    const std::string key = KeyOf(*file);
    FoundFile* there = FileOfKey(&found_->plugins, key);
    if (there == nullptr) return Decide(*file, FreePluginName(key), nullptr);
    if (existing_ != Existing::kMerge || SameFile(*file, *there))
      return Decide(*file, there->name, there);
    if (!there->file->damage.empty()) return Skip(there->name, "the one that is there is damaged");
    const Merged merged = MergeActions(&file->plugin, &there->file->plugin);
    const bool full = !merged.no_room.empty();
    if (merged.added == 0) {
      if (full) return Skip(there->name, MergedDetail(merged));
      return {.word = "unchanged", .name = there->name, .detail = "it has all actions"};
    }
    Step step = {.word = "merged",
                 .name = there->name,
                 .detail = MergedDetail(merged),
                 .image = FileImage(*there->file),
                 .incomplete = full};
    if (step.image.empty()) return Skip(there->name, "it would be larger than 64 MB");
    return step;
  }

  Step PlanOptions(const DataFile& file) {
    const FoundFile* there = found_->options.get();
    if (existing_ == Existing::kReplace || (there != nullptr && SameFile(file, *there)))
      return Decide(file, OptionsName(), there);
    return Skip(OptionsName(), "options are taken over with --replace only");
  }

  // `there` is the file of the same key, null where there is none.
  Step Decide(const DataFile& file, const std::string& name, const FoundFile* there) const {
    if (there != nullptr && SameFile(file, *there)) return {.word = "unchanged", .name = name};
    Step step = {.word = "new", .name = name, .image = FileImage(file)};
    if (!IsTaken(dir_, name)) return step;
    if (existing_ != Existing::kReplace) {
      return Skip(name, there == nullptr ? "there is something else of this name"
                                         : "the one that is there is another");
    }
    step.word = "replaced";
    step.replaces = true;
    return step;
  }

  static Step Skip(const std::string& name, const std::string& why) {
    return {.word = "skipped", .name = name, .detail = why, .incomplete = true};
  }

  static bool SameFile(const DataFile& file, const FoundFile& there) {
    return there.file->damage.empty() && !there.file->unusable &&
           FileImage(file) == FileImage(*there.file);
  }

  static std::string Below(const char* directory, const std::string& name) {
    return std::string(directory) + "/" + name;
  }

  // A name for a class that has no file: its own, or a variation where that is in use.
  std::string FreePluginName(const std::string& classname) {
    const std::string own = Below(pluginDirectory, OwnFileName(classname));
    const std::string base = own.substr(0, own.size() - std::strlen(GromlitPluginFileExt));
    std::string name = own;
    for (int n = 2; IsTaken(dir_, name) || !planned_.insert(name).second; n++)
      name = base + "_" + std::to_string(n) + GromlitPluginFileExt;
    return name;
  }

  const std::string& dir_;
  Installation* found_;
  Existing existing_;
  std::set<std::string> planned_;  // names of new plug-ins
};

// --- Doing --------------------------------------------------------------------------------------

// The line of a step. `copy` is where what it replaces went; empty for nothing.
std::string LineOf(const Step& step, const std::string& copy) {
  std::string detail = step.detail;
  if (!copy.empty()) detail += (detail.empty() ? "" : ", ") + ("the former one is " + copy);
  return Printable(step.word + " " + step.name + (detail.empty() ? "" : ": " + detail)) + "\n";
}

// The name of its copy below replaced/.
std::string CopiedName(const Step& step) {
  return step.name.substr(step.name.find('/') + 1);
}

bool Do(const std::string& dir, const Step& step) {
  const std::string path = dir + "/" + step.name;
  if (step.replaces && !SetAside(path, kReplacedDirectory, CopiedName(step))) return false;
  const std::string directory = dir + "/" + step.name.substr(0, step.name.find('/'));
  if (!MakeDirectory(directory.c_str())) return false;
  return SaveFile(path.c_str(), step.image);
}

int DoAll(const std::string& dir, const std::vector<Step>& steps, bool dry_run) {
  int status = kSuccess;
  for (const Step& step : steps) {
    std::string copy;
    if (step.replaces) {
      copy = FreeCopyPath(kReplacedDirectory, CopiedName(step));
      copy.erase(0, dir.size() + 1);
    }
    if (!dry_run && !step.image.empty() && !Do(dir, step))
      return Complain(dir + "/" + step.name, std::strerror(errno));
    Write(LineOf(step, copy));
    if (step.incomplete) status = kNegative;
  }
  return status;
}

}  // namespace

int ImportFiles(const std::string& input, const std::string& dir, Existing existing, bool dry_run) {
  const std::string source = InputName(input);
  std::string text;
  std::string error;
  if (!ReadTextInput(input, kMaxDocument, &text, &error)) return Complain(source, error);
  Collection collection;
  try {
    ReadCollection(text, &collection);
  } catch (const JsonError& e) {
    return Complain(source, e.what());
  }
  Installation found;
  if (!ReadInstallation(dir, &found, &error)) return Complain(dir, error);
  const std::vector<Step> steps = Planner(dir, &found, existing).Plan(&collection);
  // Temporaries and copies go below it.
  const char* const former = GromlitPath;
  GromlitPath = dir.c_str();
  const int status = DoAll(dir, steps, dry_run);
  GromlitPath = former;
  return status;
}

}  // namespace gromlit
