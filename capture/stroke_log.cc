#include "capture/stroke_log.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

#include "core/report.h"
#include "core/strings.h"
#include "recognition/stroke_log.h"
#include "recognition/stroke_signature.h"

namespace gromlit {
namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kNoFile = "not a regular file";

int log = -1;  // descriptor; -1 when strokes are not logged
bool withpoints = false;
const char* ending = "";     // class text of the stroke that is being answered
Clock::time_point released;  // NOLINT(cert-err58-cpp): zero, a constant

void Refuse(const char* path, const char* why) {
  std::fprintf(stderr, "%s: no log of strokes: %s\n", path, why);
}

bool Append(const std::string& text) {
  return write(log, text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

// Whether the file begins as a log does.
bool IsStrokeLog(int file) {
  const std::string header = StrokeLogHeader();
  std::string start(header.size(), '\0');
  return pread(file, start.data(), start.size(), 0) == static_cast<ssize_t>(start.size()) &&
         start == header;
}

// Whether the file's last line is whole: a full disk may have cut the last stroke of an earlier
// run.
bool EndsALine(int file, off_t size) {
  char last = 0;
  return pread(file, &last, 1, size - 1) == 1 && last == '\n';
}

// UTC, such as 2026-01-31T12:00:00.007Z.
std::string Now() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  tm utc{};
  gmtime_r(&now.tv_sec, &utc);
  char text[64];
  const size_t n = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &utc);
  std::snprintf(text + n, sizeof text - n, ".%03dZ", static_cast<int>(now.tv_nsec / 1'000'000));
  return text;
}

std::string ScoreText(float score) {
  if (score < 0) return "";
  char text[32];
  std::snprintf(text, sizeof text, "%.4f", static_cast<double>(score));
  return text;
}

}  // namespace

void OpenStrokeLog() {
  const char* path = std::getenv("GROMLIT_LOG");
  if (path == nullptr || *path == '\0') return;
  const char* points = std::getenv("GROMLIT_LOG_POINTS");
  withpoints = points != nullptr && StrCmp(points, "1") == 0;
  // A link is none of the user's own making in a directory where others may write.
  constexpr int kFlags = O_RDWR | O_APPEND | O_CREAT | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY;
  const int file = open(path, kFlags | O_CLOEXEC, 0600);
  if (file < 0) return Refuse(path, errno == ELOOP ? kNoFile : std::strerror(errno));
  struct stat status {};
  const bool empty = fstat(file, &status) == 0 && status.st_size == 0;
  if (!S_ISREG(status.st_mode) || (!empty && !IsStrokeLog(file))) {
    Refuse(path, S_ISREG(status.st_mode) ? "the file holds something else" : kNoFile);
    close(file);
    return;
  }
  log = file;
  // One that was made by hand may be open to others.
  const std::string begin = empty ? StrokeLogHeader() : EndsALine(log, status.st_size) ? "" : "\n";
  if (fchmod(log, 0600) != 0 || !Append(begin)) {
    Refuse(path, std::strerror(errno));
    close(log);
    log = -1;
  }
}

void StrokeEnds(const char* classtext) {
  if (log < 0) return;
  ending = classtext;
  released = Clock::now();
}

void LogStroke(const GromlitPlugin* pin, const Stroke& stroke, const Matching& how, int found) {
  if (log < 0) return;
  const auto needed =
      std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - released).count();
  const Scores scores = pin != nullptr ? ScoresOf(pin, stroke, how) : Scores{};
  char signature[kDrawnSignatureSize];
  StrokeSignature(signature, stroke.count, stroke.x, stroke.y);
  std::string fields[kLogColumns];
  fields[kLogTime] = Now();
  fields[kLogClass] = EscapeLogField(ending);
  fields[kLogSignature] = signature;
  fields[kLogWay] = kLogWayNames[static_cast<size_t>(WayOf(how))];
  fields[kLogAction] = pin != nullptr && found >= 0
                           ? EscapeLogField(FieldText(pin->actions[found]->name))
                           : kLogNone;
  fields[kLogScore] = ScoreText(scores.best);
  fields[kLogRunnerUp] = ScoreText(scores.next);
  fields[kLogMicroseconds] = std::to_string(needed);
  if (withpoints) fields[kLogPoints] = LogPoints(stroke);
  std::string line;
  for (const std::string& field : fields) line += field + '\t';
  line.back() = '\n';
  // A full disk must not stop the strokes, and one complaint is enough.
  if (Append(line)) return;
  ReportSystemError("GROMLIT_LOG");
  close(log);
  log = -1;
}

}  // namespace gromlit
