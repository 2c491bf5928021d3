// What a disk may hold after the power failed.
//
// The system calls of a save are recorded and played back onto a model that promises no more than
// the system does: what was written to a file is certain once that file has been synchronised, a
// name of a directory once that directory has; until then each may have reached the disk or not,
// whatever came before or after it, and a write may have reached it in part.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tests/support/syscalls.h"

namespace gromlit::testing {

// The regular files below a directory, by their paths relative to it; directories as "NAME/" with
// no contents, symbolic links as "-> TARGET".
using Tree = std::map<std::string, std::string>;
Tree TreeOf(const std::string& directory);
// Makes the directory hold exactly this.
void MakeTree(const std::string& directory, const Tree& tree);

// Records what calls do to the files below one directory. Made before the first of them.
class DiskModel {
 public:
  explicit DiskModel(const std::string& directory);

  // To be called at each stop of the child.
  void Note(const Stop& stop);

  // What was recorded, all of it done; for the test of the model itself.
  Tree Everything() const;

  // Calls `look` for each different tree that the power may leave when it fails after any of the
  // steps; `complete` is true when all steps were over. Up to 2^`choices` choices are tried for a
  // step, all there are or drawn at random, always the same ones.
  void ForEachOutcome(const std::function<void(const Tree& tree, bool complete)>& look,
                      size_t choices = 12) const;

  int steps() const { return static_cast<int>(steps_.size()); }

 private:
  enum class Kind { kWrite, kCut, kLink, kUnlink };
  struct Step {
    Kind kind;
    int inode;  // the file, or the directory of the name
    std::string name = {};
    int target = -1;  // of a link
    size_t at = 0;    // of a write; the size of a cut
    std::string bytes = {};
    int after = -1;    // the step without which this one does not happen
    int certain = -1;  // the number of steps and syncs after which it is certain; -1: never
    int time = 0;
  };
  struct Inode {
    bool directory = false;
    std::string contents = {};
    std::map<std::string, int> names = {};
  };
  struct Opened {
    int inode;
    size_t at;
  };
  using Disk = std::vector<Inode>;

  int Add(Disk* disk, bool directory) const;
  void Do(const Step& step, bool torn, Disk* disk) const;
  void Append(Step step);
  void Sync(int inode);
  // Where a path is: the inode of its directory and its last part; -1 outside.
  int Find(const std::string& path, std::string* last) const;
  int Inside(const std::string& path) const;
  void Walk(const Disk& disk, int inode, const std::string& prefix, Tree* tree) const;
  Tree TreeAfter(const std::vector<int>& chosen, int torn) const;

  std::string root_;
  Disk start_;
  Disk now_;
  std::vector<Step> steps_;
  std::map<int, Opened> open_;  // by descriptor
  int time_ = 0;
};

}  // namespace gromlit::testing
