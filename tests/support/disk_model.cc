#include "tests/support/disk_model.h"

#include <fcntl.h>
#include <sys/syscall.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <set>

#include "tests/support/files.h"

namespace gromlit::testing {
namespace fs = std::filesystem;

Tree TreeOf(const std::string& directory) {
  Tree tree;
  for (const auto& entry : fs::recursive_directory_iterator(directory)) {
    const std::string name = entry.path().lexically_relative(directory).string();
    if (entry.is_symlink())
      tree[name] = "-> " + fs::read_symlink(entry.path()).string();
    else if (entry.is_directory())
      tree[name + "/"] = "";
    else
      tree[name] = ReadText(entry.path().string());
  }
  return tree;
}

void MakeTree(const std::string& directory, const Tree& tree) {
  for (const auto& entry : fs::directory_iterator(directory)) fs::remove_all(entry.path());
  // A directory sorts before what is in it.
  for (const auto& [name, contents] : tree) {
    const std::string path = directory + "/" + name;
    if (name.ends_with("/"))
      fs::create_directory(path);
    else if (contents.starts_with("-> "))
      fs::create_symlink(contents.substr(3), path);
    else
      WriteText(path, contents);
  }
}

DiskModel::DiskModel(const std::string& directory) : root_(fs::canonical(directory).string()) {
  Add(&start_, true);
  now_ = start_;
  for (const auto& [name, contents] : TreeOf(root_)) {
    const bool is_directory = name.ends_with("/");
    std::string last;
    const int parent =
        Find(root_ + "/" + (is_directory ? name.substr(0, name.size() - 1) : name), &last);
    const int inode = Add(&start_, is_directory);
    start_[static_cast<size_t>(inode)].contents = contents;
    start_[static_cast<size_t>(parent)].names[last] = inode;
    now_ = start_;
  }
}

int DiskModel::Add(Disk* disk, bool directory) const {
  disk->push_back({directory, "", {}});
  return static_cast<int>(disk->size()) - 1;
}

int DiskModel::Find(const std::string& path, std::string* last) const {
  const std::string plain = fs::path(path).lexically_normal().string();
  if (!plain.starts_with(root_ + "/")) return -1;
  int at = 0;
  std::string rest = plain.substr(root_.size() + 1);
  for (size_t slash; (slash = rest.find('/')) != std::string::npos; rest.erase(0, slash + 1)) {
    const auto& names = now_[static_cast<size_t>(at)].names;
    const auto next = names.find(rest.substr(0, slash));
    if (next == names.end()) return -1;
    at = next->second;
  }
  *last = rest;
  return at;
}

int DiskModel::Inside(const std::string& path) const {
  if (fs::path(path).lexically_normal() == root_) return 0;
  std::string last;
  const int parent = Find(path, &last);
  if (parent < 0) return -1;
  const auto& names = now_[static_cast<size_t>(parent)].names;
  const auto found = names.find(last);
  return found == names.end() ? -1 : found->second;
}

void DiskModel::Do(const Step& step, bool torn, Disk* disk) const {
  Inode& inode = (*disk)[static_cast<size_t>(step.inode)];
  switch (step.kind) {
    case Kind::kWrite: {
      const std::string bytes = torn ? step.bytes.substr(0, step.bytes.size() / 2) : step.bytes;
      if (inode.contents.size() < step.at + bytes.size())
        inode.contents.resize(step.at + bytes.size());
      inode.contents.replace(step.at, bytes.size(), bytes);
      break;
    }
    case Kind::kCut:
      inode.contents.resize(step.at);
      break;
    case Kind::kLink:
      inode.names[step.name] = step.target;
      break;
    case Kind::kUnlink:
      inode.names.erase(step.name);
      break;
  }
}

void DiskModel::Append(Step step) {
  step.time = ++time_;
  Do(step, false, &now_);
  steps_.push_back(std::move(step));
}

void DiskModel::Sync(int inode) {
  ++time_;
  for (Step& step : steps_)
    if (step.inode == inode && step.certain < 0) step.certain = time_;
}

void DiskModel::Note(const Stop& stop) {
  if (stop.entering || stop.result < 0) return;
  const int fd = static_cast<int>(stop.arguments[0]);
  const auto known = open_.find(fd);
  Opened* opened = known == open_.end() ? nullptr : &known->second;
  std::string last;
  const auto create = [&](const std::string& path, bool directory) {
    const int parent = Find(path, &last);
    if (parent < 0) return;
    const int inode = Add(&start_, directory);
    Add(&now_, directory);
    Append({.kind = Kind::kLink, .inode = parent, .name = last, .target = inode});
  };
  switch (stop.number) {
    case SYS_openat: {
      const std::string path = stop.Path();
      if ((stop.arguments[2] & O_CREAT) != 0 && Inside(path) < 0) create(path, false);
      const int inode = Inside(fs::weakly_canonical(path).string());
      open_.erase(static_cast<int>(stop.result));
      if (inode >= 0) open_[static_cast<int>(stop.result)] = {inode, 0};
      break;
    }
    case SYS_write:
    case SYS_pwrite64: {
      if (opened == nullptr) break;
      const auto size = static_cast<size_t>(stop.result);
      const bool seeks = stop.number == SYS_pwrite64;
      const std::vector<std::byte> bytes = stop.Bytes(stop.arguments[1], size);
      const size_t at = seeks ? stop.arguments[3] : opened->at;
      Append({.kind = Kind::kWrite,
              .inode = opened->inode,
              .at = at,
              .bytes = std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size())});
      if (!seeks) opened->at += size;
      break;
    }
    case SYS_ftruncate:
      if (opened != nullptr)
        Append({.kind = Kind::kCut, .inode = opened->inode, .at = stop.arguments[1]});
      break;
    case SYS_fsync:
    case SYS_fdatasync:
      if (opened != nullptr) Sync(opened->inode);
      break;
    case SYS_mkdir:
      create(stop.Path(), true);
      break;
    case SYS_unlink:
    case SYS_unlinkat: {
      const int parent = Find(stop.Path(), &last);
      if (parent >= 0) Append({.kind = Kind::kUnlink, .inode = parent, .name = last});
      break;
    }
    case SYS_rename: {
      const std::string from = stop.Text(stop.arguments[0]);
      const int moved = Inside(from);
      const int parent = Find(stop.Text(stop.arguments[1]), &last);
      if (moved < 0 || parent < 0) break;
      Append({.kind = Kind::kLink, .inode = parent, .name = last, .target = moved});
      // The old name goes after the new one has come, or stays.
      const int linked = static_cast<int>(steps_.size()) - 1;
      const int former = Find(from, &last);
      Append({.kind = Kind::kUnlink, .inode = former, .name = last, .after = linked});
      break;
    }
    default:
      break;
  }
}

void DiskModel::Walk(const Disk& disk, int inode, const std::string& prefix, Tree* tree) const {
  for (const auto& [name, target] : disk[static_cast<size_t>(inode)].names) {
    const Inode& entry = disk[static_cast<size_t>(target)];
    (*tree)[prefix + name + (entry.directory ? "/" : "")] = entry.contents;
    if (entry.directory) Walk(disk, target, prefix + name + "/", tree);
  }
}

Tree DiskModel::Everything() const {
  Tree tree;
  Walk(now_, 0, "", &tree);
  return tree;
}

Tree DiskModel::TreeAfter(const std::vector<int>& chosen, int torn) const {
  Disk disk = start_;
  std::set<int> done;
  for (const int index : chosen) {
    const Step& step = steps_[static_cast<size_t>(index)];
    if (step.after >= 0 && !done.contains(step.after)) continue;
    Do(step, index == torn, &disk);
    done.insert(index);
  }
  Tree tree;
  Walk(disk, 0, "", &tree);
  return tree;
}

void DiskModel::ForEachOutcome(const std::function<void(const Tree& tree, bool complete)>& look,
                               size_t most) const {
  std::set<std::pair<Tree, bool>> seen;
  const auto show = [&](const Tree& tree, bool complete) {
    if (seen.emplace(tree, complete).second) look(tree, complete);
  };
  std::mt19937 random(1);
  for (int time = 0; time <= time_; time++) {
    std::vector<int> past;
    std::vector<int> open;
    for (int i = 0; i < steps(); i++) {
      const Step& step = steps_[static_cast<size_t>(i)];
      if (step.time > time) break;
      past.push_back(i);
      if (step.certain < 0 || step.certain > time) open.push_back(i);
    }
    const bool all = open.size() <= most;
    const uint32_t choices = 1U << (all ? open.size() : most);
    for (uint32_t choice = 0; choice < choices; choice++) {
      std::set<int> lost;
      for (size_t i = 0; i < open.size(); i++)
        if (all ? (choice >> i & 1) != 0 : random() % 2 != 0) lost.insert(open[i]);
      std::vector<int> chosen;
      std::copy_if(past.begin(), past.end(), std::back_inserter(chosen),
                   [&](int i) { return !lost.contains(i); });
      show(TreeAfter(chosen, -1), time == time_);
      for (const int i : open) {
        if (!lost.contains(i) && steps_[static_cast<size_t>(i)].kind == Kind::kWrite)
          show(TreeAfter(chosen, i), time == time_);
      }
    }
  }
}

}  // namespace gromlit::testing
