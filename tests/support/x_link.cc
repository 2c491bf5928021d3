// x_link: runs a command whose X connections go over a slow link, and counts what goes over it.
//
//   x_link [--delay MS] [--hide EXTENSION] [--count FILE] --to DISPLAY -- COMMAND [ARGUMENT...]
//
//   --delay MS        time that each way takes, in milliseconds, fractions too (0)
//   --hide EXTENSION  the server is said not to have it; may be given again
//   --to DISPLAY      a local display such as :7
//   --count FILE      where the counts go at the end; to standard error otherwise
//
// A connection is one line: "connection 0 requests 210 replies 31 events 12 errors 0 round_trips 29
// bytes_to_server 9012 bytes_to_client 30112"; a last line "total ..." is their sum. What a round
// trip is, x_proxy.h says. The exit status is the command's, 128 and the signal that ended it, or 2
// for a wrong command line. SIGTERM and SIGINT are passed on to the command.
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/process.h"
#include "tests/support/x_proxy.h"

namespace {

using gromlit::testing::Process;
using gromlit::testing::XCounts;
using gromlit::testing::XProxy;

struct Arguments {
  double delay = 0;
  std::vector<std::string> hidden;
  std::string to;
  std::string count;
  std::vector<std::string> command;
};

bool Parse(int argc, char** argv, Arguments* arguments) {
  int i = 1;
  for (; i < argc && std::strcmp(argv[i], "--") != 0; i += 2) {
    if (i + 1 == argc) return false;
    const std::string name = argv[i];
    const char* value = argv[i + 1];
    if (name == "--delay") {
      char* end;
      arguments->delay = strtod(value, &end);
      if (end == value || *end != '\0' || !(arguments->delay >= 0 && arguments->delay < 1e6))
        return false;
    } else if (name == "--hide") {
      arguments->hidden.emplace_back(value);
    } else if (name == "--to") {
      arguments->to = value;
    } else if (name == "--count") {
      arguments->count = value;
    } else {
      return false;
    }
  }
  for (i++; i < argc; i++) arguments->command.emplace_back(argv[i]);
  return !arguments->to.empty() && !arguments->command.empty();
}

void Print(FILE* out, const std::string& what, const XCounts& counts) {
  std::fprintf(out,
               "%s requests %lu replies %lu events %lu errors %lu round_trips %lu "
               "bytes_to_server %zu bytes_to_client %zu\n",
               what.c_str(), counts.requests, counts.replies, counts.events, counts.errors,
               counts.round_trips, counts.bytes_to_server, counts.bytes_to_client);
}

volatile sig_atomic_t asked_to_end = 0;

int Run(const Arguments& arguments) {
  XProxy proxy(arguments.to);
  const std::chrono::microseconds delay(static_cast<long>(arguments.delay * 1000));
  proxy.SetDelay(delay, delay);
  for (const std::string& extension : arguments.hidden) proxy.HideExtension(extension);
  for (const int number : {SIGTERM, SIGINT})
    signal(number, [](int received) { asked_to_end = received; });

  Process process(arguments.command, "", {"DISPLAY=" + proxy.name()});
  while (process.Running()) {
    if (asked_to_end != 0) process.Kill(asked_to_end);
    asked_to_end = 0;
    usleep(2000);
  }
  FILE* out = arguments.count.empty() ? stderr : std::fopen(arguments.count.c_str(), "w");
  if (out == nullptr) {
    std::perror(arguments.count.c_str());
    return 1;
  }
  for (int i = 0; i < proxy.connections(); i++)
    Print(out, "connection " + std::to_string(i), proxy.Counts(i));
  Print(out, "total", proxy.Total());
  if (out != stderr && std::fclose(out) != 0) return 1;
  return process.Wait();
}

}  // namespace

int main(int argc, char** argv) {
  Arguments arguments;
  if (!Parse(argc, argv, &arguments)) {
    std::fprintf(stderr,
                 "usage: x_link [--delay MS] [--hide EXTENSION] [--count FILE] --to DISPLAY -- "
                 "COMMAND...\n");
    return 2;
  }
  try {
    return Run(arguments);
  } catch (const std::runtime_error& error) {
    std::fprintf(stderr, "x_link: %s\n", error.what());
    return 2;
  }
}
