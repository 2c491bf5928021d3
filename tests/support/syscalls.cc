#include "tests/support/syscalls.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <optional>
#include <system_error>

namespace gromlit::testing {
namespace {

constexpr size_t kMaxReport = 4000;
constexpr int kTrapOfCall = SIGTRAP | 0x80;

// Written by the child, read when it has ended.
struct Report {
  bool given;
  size_t size;
  char text[kMaxReport];
};

// How a call names its file.
enum class Names { kNothing, kDescriptor, kPath, kPathAt };

struct KnownCall {
  uint64_t number;
  const char* name;
  Names names;
};

constexpr KnownCall kCalls[] = {
    {SYS_read, "read", Names::kDescriptor},
    {SYS_pread64, "pread", Names::kDescriptor},
    {SYS_write, "write", Names::kDescriptor},
    {SYS_pwrite64, "pwrite", Names::kDescriptor},
    {SYS_lseek, "lseek", Names::kDescriptor},
    {SYS_fsync, "fsync", Names::kDescriptor},
    {SYS_fdatasync, "fdatasync", Names::kDescriptor},
    {SYS_ftruncate, "ftruncate", Names::kDescriptor},
    {SYS_fchmod, "fchmod", Names::kDescriptor},
    {SYS_fchown, "fchown", Names::kDescriptor},
    {SYS_fstat, "fstat", Names::kDescriptor},
    {SYS_flock, "flock", Names::kDescriptor},
    {SYS_getdents64, "getdents", Names::kDescriptor},
    {SYS_openat, "openat", Names::kPathAt},
    {SYS_newfstatat, "fstatat", Names::kPathAt},
    {SYS_readlinkat, "readlinkat", Names::kPathAt},
    {SYS_unlinkat, "unlinkat", Names::kPathAt},
    {SYS_mkdirat, "mkdirat", Names::kPathAt},
    {SYS_renameat, "renameat", Names::kPathAt},
    {SYS_renameat2, "renameat2", Names::kPathAt},
    {SYS_fchmodat, "fchmodat", Names::kPathAt},
#ifdef SYS_open
    {SYS_open, "open", Names::kPath},
    {SYS_stat, "stat", Names::kPath},
    {SYS_lstat, "lstat", Names::kPath},
    {SYS_access, "access", Names::kPath},
    {SYS_readlink, "readlink", Names::kPath},
    {SYS_unlink, "unlink", Names::kPath},
    {SYS_rename, "rename", Names::kPath},
    {SYS_mkdir, "mkdir", Names::kPath},
    {SYS_chmod, "chmod", Names::kPath},
#endif
};

const KnownCall* Find(uint64_t number) {
  const auto* call = std::find_if(std::begin(kCalls), std::end(kCalls),
                                  [&](const KnownCall& known) { return known.number == number; });
  return call == std::end(kCalls) ? nullptr : call;
}

// Errno of the last ptrace request as a text.
std::string Why(const char* what) {
  return std::string(what) + ": " + std::strerror(errno);
}

int NewMemory() {
  const int file = memfd_create("printed", MFD_CLOEXEC);
  if (file < 0) throw std::system_error(errno, std::generic_category(), "memfd_create");
  return file;
}

std::string ContentsOf(int file) {
  std::string text;
  char part[4096];
  off_t at = 0;
  for (ssize_t n = 0; (n = pread(file, part, sizeof part, at)) > 0; at += n)
    text.append(part, static_cast<size_t>(n));
  return text;
}

[[noreturn]] void BeChild(const std::function<void()>& first,
                          const std::function<std::string()>& body, int printed, Report* report) {
  dup2(printed, STDOUT_FILENO);
  dup2(printed, STDERR_FILENO);
  first();
  if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) _exit(127);
  raise(SIGSTOP);
  const std::string text = body();
  std::fflush(nullptr);
  report->size = std::min(text.size(), kMaxReport);
  std::memcpy(report->text, text.data(), report->size);
  report->given = true;
  _exit(0);
}

#ifdef __x86_64__
// Changes what the child is about to do, or what it is told.
class Registers {
 public:
  explicit Registers(pid_t child) : child_(child) {
    good_ = ptrace(PTRACE_GETREGS, child_, nullptr, &values_) == 0;
  }
  void Skip() { values_.orig_rax = static_cast<unsigned long long>(-1); }
  void Answer(int64_t result) { values_.rax = static_cast<unsigned long long>(result); }
  void ThirdArgument(uint64_t value) { values_.rdx = value; }
  bool Store() const { return good_ && ptrace(PTRACE_SETREGS, child_, nullptr, &values_) == 0; }

 private:
  pid_t child_;
  user_regs_struct values_{};
  bool good_ = false;
};
#endif

}  // namespace

std::string Stop::Name() const {
  const KnownCall* call = Find(number);
  std::string text = call == nullptr ? "call " + std::to_string(number) : call->name;
  const std::string path = Path();
  if (!path.empty()) text += " " + path;
  return (entering ? "before " : "after ") + text;
}

bool Stop::OnFiles() const {
  const KnownCall* call = Find(number);
  if (call == nullptr) return false;
  return call->names != Names::kDescriptor || static_cast<int>(arguments[0]) > STDERR_FILENO;
}

bool Stop::IsExit() const {
  return number == SYS_exit_group;
}

std::vector<std::byte> Stop::Bytes(uint64_t address, size_t size) const {
  std::vector<std::byte> bytes(size);
  const iovec here{bytes.data(), size};
  const iovec there{reinterpret_cast<void*>(address), size};
  const ssize_t got = process_vm_readv(child_, &here, 1, &there, 1, 0);
  bytes.resize(static_cast<size_t>(std::max<ssize_t>(got, 0)));
  return bytes;
}

std::string Stop::Text(uint64_t address) const {
  std::string text;
  constexpr size_t kPage = 4096;
  while (text.size() < PATH_MAX) {
    // Never over the end of a page: the next one may not be there.
    const std::vector<std::byte> part = Bytes(address, kPage - address % kPage);
    if (part.empty()) break;
    const auto* begin = reinterpret_cast<const char*>(part.data());
    const size_t length = strnlen(begin, part.size());
    text.append(begin, length);
    if (length < part.size()) break;
    address += part.size();
  }
  return text;
}

std::string Stop::Path() const {
  const auto of = [&](const std::string& link) -> std::string {
    char target[PATH_MAX];
    const std::string name = "/proc/" + std::to_string(child_) + "/" + link;
    const ssize_t n = readlink(name.c_str(), target, sizeof target);
    return n < 0 ? "" : std::string(target, static_cast<size_t>(n));
  };
  const auto descriptor = [&](uint64_t fd) { return of("fd/" + std::to_string(fd)); };
  const KnownCall* call = Find(number);
  if (call == nullptr || call->names == Names::kNothing) return "";
  if (call->names == Names::kDescriptor) return descriptor(arguments[0]);
  const std::string path = Text(arguments[call->names == Names::kPathAt ? 1 : 0]);
  if (path.starts_with("/")) return path;
  const bool cwd = call->names == Names::kPath || static_cast<int>(arguments[0]) == AT_FDCWD;
  const std::string from = cwd ? of("cwd") : descriptor(arguments[0]);
  return path.empty() ? from : from + "/" + path;
}

// One child on its way.
struct Tracing {
  pid_t child;
  const std::function<void(Stop&)>& at_stop;
  Ending* ending;
  bool let_go = false;
  int pending_error = 0;
  std::optional<uint64_t> former_count = {};
  uint64_t number = 0;
  std::array<uint64_t, 6> arguments = {};

  // One stop at a call; false when the child cannot be followed.
  bool AtCall() {
    __ptrace_syscall_info info{};
    if (ptrace(static_cast<__ptrace_request>(PTRACE_GET_SYSCALL_INFO), child,
               reinterpret_cast<void*>(sizeof info), &info) <= 0)
      return false;
    Stop stop(child);
    stop.entering = info.op == PTRACE_SYSCALL_INFO_ENTRY;
    if (stop.entering) {
      number = info.entry.nr;
      std::copy_n(info.entry.args, arguments.size(), arguments.begin());
      ending->calls++;
    } else if (info.op != PTRACE_SYSCALL_INFO_EXIT) {
      return true;
    }
    stop.index = ending->calls - 1;
    stop.number = number;
    stop.arguments = arguments;
    if (!stop.entering) {
      stop.result = info.exit.rval;
      if (!Restore(&stop)) return false;
    }
    if (!let_go) at_stop(stop);
    return Obey(stop);
  }

  // What was promised before the call comes true behind it.
  bool Restore([[maybe_unused]] Stop* stop) {
#ifdef __x86_64__
    if (pending_error == 0 && !former_count.has_value()) return true;
    Registers registers(child);
    if (pending_error != 0) {
      stop->result = -pending_error;
      registers.Answer(stop->result);
    }
    // The compiler counts on the kernel to leave it as it was.
    if (former_count.has_value()) registers.ThirdArgument(*former_count);
    pending_error = 0;
    former_count.reset();
    return registers.Store();
#else
    return true;
#endif
  }

  bool Obey(const Stop& stop) {
    let_go = let_go || stop.let_go_;
    if (stop.kill_) kill(child, SIGKILL);
    if (stop.signal_ != 0) kill(child, stop.signal_);
#ifdef __x86_64__
    if (stop.entering && (stop.error_ != 0 || stop.has_count_)) {
      Registers registers(child);
      if (stop.error_ != 0) {
        pending_error = stop.error_;
        registers.Skip();
      }
      if (stop.has_count_) {
        former_count = stop.arguments[2];
        registers.ThirdArgument(stop.count_);
      }
      return registers.Store();
    }
#endif
    return true;
  }

  void Follow() {
    int signal_to_give = 0;
    for (;;) {
      // A child that was killed in the meantime is no failure: the wait tells.
      const bool on_call = !let_go || pending_error != 0 || former_count.has_value();
      ptrace(on_call ? PTRACE_SYSCALL : PTRACE_CONT, child, nullptr,
             reinterpret_cast<void*>(static_cast<intptr_t>(signal_to_give)));
      signal_to_give = 0;
      int status = 0;
      if (waitpid(child, &status, __WALL) != child) return;
      if (WIFEXITED(status)) {
        ending->how = Ending::kExited;
        ending->status = WEXITSTATUS(status);
        return;
      }
      if (WIFSIGNALED(status)) {
        ending->how = Ending::kSignalled;
        ending->status = WTERMSIG(status);
        return;
      }
      if (WSTOPSIG(status) == kTrapOfCall) {
        if (!AtCall() && kill(child, 0) == 0) {
          kill(child, SIGKILL);
        }
      } else if (status >> 8 != (SIGTRAP | (PTRACE_EVENT_EXEC << 8))) {
        signal_to_give = WSTOPSIG(status);
      }
    }
  }
};

Ending RunTraced(const std::function<void()>& first, const std::function<std::string()>& body,
                 const std::function<void(Stop&)>& at_stop) {
  Ending ending;
  const int printed = NewMemory();
  void* shared =
      mmap(nullptr, sizeof(Report), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (shared == MAP_FAILED) throw std::system_error(errno, std::generic_category(), "mmap");
  auto* report = static_cast<Report*>(shared);
  std::fflush(nullptr);  // or the child prints it again
  const pid_t child = fork();
  if (child == 0) BeChild(first, body, printed, report);
  int status = 0;
  if (child < 0) {
    ending.report = Why("fork");
  } else if (waitpid(child, &status, 0) != child || !WIFSTOPPED(status)) {
    ending.report = "the child may not be traced";
  } else if (ptrace(PTRACE_SETOPTIONS, child, nullptr,
                    reinterpret_cast<void*>(PTRACE_O_EXITKILL | PTRACE_O_TRACESYSGOOD |
                                            PTRACE_O_TRACEEXEC)) != 0) {
    ending.report = Why("PTRACE_SETOPTIONS");
    kill(child, SIGKILL);
    waitpid(child, &status, 0);
  } else {
    Tracing{.child = child, .at_stop = at_stop, .ending = &ending}.Follow();
    if (ending.how == Ending::kExited && report->given) {
      ending.how = Ending::kReturned;
      ending.report.assign(report->text, report->size);
    }
  }
  ending.printed = ContentsOf(printed);
  close(printed);
  munmap(shared, sizeof(Report));
  return ending;
}

std::string WhyNotTraced() {
#ifndef __x86_64__
  return "system calls are changed on x86-64 only";
#else
  static const std::string reason = [] {
    bool seen = false;
    // A call that is there to be seen, and lied to.
    const Ending ending =
        RunTraced([] {}, [] { return std::to_string(access("/", F_OK) != 0 ? errno : 0); },
                  [&](Stop& stop) {
                    if (stop.number != SYS_access && stop.number != SYS_faccessat) return;
                    seen = true;
                    if (stop.entering) stop.Fail(EDOM);
                  });
    if (ending.how != Ending::kReturned)
      return "no child can be traced: " + ending.report + ending.printed;
    if (!seen || ending.report != std::to_string(EDOM))
      return std::string("system calls cannot be changed");
    return std::string();
  }();
  return reason;
#endif
}

}  // namespace gromlit::testing
