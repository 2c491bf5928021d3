// Tables of the reports, as Markdown on standard output.
#pragma once

#include <string>
#include <vector>

namespace gromlit {

void Row(const std::vector<std::string>& cells);
void Head(const std::string& title, const std::vector<std::string>& cells);

// "right / wrong / nothing" in percent of all.
std::string Shares(int right, int wrong, int all);

// Percent of all; 0 of none.
double PercentOf(int part, int all);

// What is promised of a figure, in percent.
struct Bar {
  std::string figure;
  double seen;
  bool least;  // whether `limit` is the least that it may be; else the most
  double limit;
};

bool Met(const Bar& bar);

// Prints a table of them; true when all are met.
bool PrintBars(const std::vector<Bar>& bars);

}  // namespace gromlit
