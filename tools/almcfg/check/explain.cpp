// Finds a rule's section in the compiled-in page. No state, the result is a copy; any thread may call.

#include "tools/almcfg/check/explain.h"

#include <algorithm>
#include <string_view>

#include "tools/almcfg/rules_page.h"

namespace almcfg {

std::string Explanation(const Rule& rule) {
  const std::string_view page = kRulesPage;
  const std::string heading = "\n#### `" + std::string(rule.name) + "`\n";
  const std::size_t start = std::min(page.find(heading), page.size() - heading.size()) + heading.size();
  const std::size_t end = std::min(page.find("\n##", start), page.size());
  std::string text(page.substr(start, end - start));
  for (std::size_t fence = 0; (fence = text.find("```\n", fence)) != std::string::npos;) {
    text.erase(fence, 4);
  }
  return std::string(rule.name) + " (" + NameOf(rule.severity) + ")\n" + text;
}

}  // namespace almcfg
