#include "core/plugin_pages.h"

#include <cstddef>

namespace gromlit {
namespace {

constexpr size_t kPageItems = 20;  // of one menu of plug-ins, the "more" item included

}  // namespace

std::vector<PluginPage> PluginMenuPages() {
  std::vector<GromlitPlugin*> all;
  for (const auto* node = allPlugins; node != nullptr && node->plugin != nullptr; node = node->next)
    all.push_back(node->plugin);
  std::vector<PluginPage> pages;
  for (size_t first = 0; first < all.size();) {
    const size_t left = all.size() - first;
    const bool more = left > kPageItems;
    const size_t n = more ? kPageItems - 1 : left;
    const auto begin = all.begin() + static_cast<std::ptrdiff_t>(first);
    pages.push_back({more, {begin, begin + static_cast<std::ptrdiff_t>(n)}});
    first += n;
  }
  return pages;
}

}  // namespace gromlit
