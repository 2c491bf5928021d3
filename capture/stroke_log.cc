#include "capture/stroke_log.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "core/strings.h"
#include "core/stroke_log.h"
#include "recognition/shape_match.h"
#include "recognition/stroke_signature.h"

namespace gromlit {
namespace {

using Clock = std::chrono::steady_clock;

int log = -1;  // descriptor; -1 when strokes are not logged
bool withpoints = false;
const char* ending = "";  // class text of the stroke that is being answered
Clock::time_point released;

void Refuse(const char* path, const char* why) {
  std::fprintf(stderr, "%s: no log of strokes: %s\n", path, why);
}

bool Append(const std::string& text) {
  return write(log, text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

// Whether the file begins as a log does.
bool IsStrokeLog(int file) {
  const std::string header = std::string(kStrokeLogHeader) + "\n";
  std::string start(header.size(), '\0');
  return pread(file, start.data(), start.size(), 0) == static_cast<ssize_t>(start.size()) &&
         start == header;
}

std::string PointsOf(const Stroke& stroke) {
  std::string text;
  for (int i = 0; i < stroke.count; i++) {
    if (i > 0) text += ' ';
    text += std::to_string(stroke.x[i]) + ' ' + std::to_string(stroke.y[i]);
  }
  return text;
}

}  // namespace

void OpenStrokeLog() {
  const char* path = std::getenv("GROMLIT_LOG");
  if (path == nullptr || *path == '\0') return;
  const char* points = std::getenv("GROMLIT_LOG_POINTS");
  withpoints = points != nullptr && StrCmp(points, "1") == 0;
  const int file = open(path, O_RDWR | O_APPEND | O_CREAT | O_NONBLOCK | O_CLOEXEC, 0600);
  if (file < 0) return Refuse(path, std::strerror(errno));
  struct stat status {};
  const bool empty = fstat(file, &status) == 0 && status.st_size == 0;
  if (!S_ISREG(status.st_mode) || (!empty && !IsStrokeLog(file))) {
    Refuse(path, S_ISREG(status.st_mode) ? "the file holds something else" : "not a regular file");
    close(file);
    return;
  }
  log = file;
  // One that was made by hand may be open to others.
  if (fchmod(log, 0600) != 0 || (empty && !Append(std::string(kStrokeLogHeader) + "\n"))) {
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
  using std::chrono::duration_cast;
  const auto needed = duration_cast<std::chrono::microseconds>(Clock::now() - released);
  const auto now =
      duration_cast<std::chrono::milliseconds>(std::chrono::system_clock::now().time_since_epoch());
  char signature[kDrawnSignatureSize];
  StrokeSignature(signature, stroke.count, stroke.x, stroke.y);
  const bool byshape = how.way == kByShape;
  const ShapeRanking ranking =
      byshape && pin != nullptr ? RankByShape(pin, stroke) : ShapeRanking{};
  const bool ran = pin != nullptr && found >= 0;
  const std::string line =
      StrokeLogLine({.milliseconds = now.count(),
                     .classtext = ending,
                     .signature = signature,
                     .byshape = byshape,
                     .action = ran ? FieldText(pin->actions[found]->name) : std::string_view(),
                     .score = ranking.score,
                     .runnerup = ranking.nextscore,
                     .microseconds = needed.count(),
                     .points = withpoints ? PointsOf(stroke) : std::string()});
  // A full disk must not stop the strokes, and one complaint is enough.
  if (Append(line)) return;
  std::perror("GROMLIT_LOG");
  close(log);
  log = -1;
}

}  // namespace gromlit
