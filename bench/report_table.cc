#include "bench/report_table.h"

#include <cstdio>

namespace gromlit {
namespace {

std::string Percent(double v) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f %%", v);
  return text;
}

}  // namespace

void Row(const std::vector<std::string>& cells) {
  for (const std::string& cell : cells) std::printf("| %s ", cell.c_str());
  std::printf("|\n");
}

void Head(const std::string& title, const std::vector<std::string>& cells) {
  std::printf("\n**%s**\n\n", title.c_str());
  Row(cells);
  Row(std::vector<std::string>(cells.size(), "---"));
}

double PercentOf(int part, int all) {
  return all > 0 ? 100.0 * part / all : 0;
}

std::string Shares(int right, int wrong, int all) {
  char text[64];
  std::snprintf(text, sizeof text, "%.1f / %.2f / %.1f", PercentOf(right, all),
                PercentOf(wrong, all), 100 - PercentOf(right + wrong, all));
  return text;
}

bool Met(const Bar& bar) {
  return bar.least ? bar.seen >= bar.limit : bar.seen <= bar.limit;
}

bool PrintBars(const std::vector<Bar>& bars) {
  Head("What is promised", {"figure", "seen", "bar", "met"});
  bool met = true;
  for (const Bar& bar : bars) {
    Row({bar.figure, Percent(bar.seen), (bar.least ? "at least " : "at most ") + Percent(bar.limit),
         Met(bar) ? "yes" : "NO"});
    met = met && Met(bar);
  }
  return met;
}

}  // namespace gromlit
