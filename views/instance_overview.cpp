#include "views/instance_overview.h"

#include <cstdio>

#include "config/state_probes.h"

namespace px::views {

namespace {

constexpr size_t kTitleColumns = 40;
constexpr size_t kRowTitleColumns = 30;  // the status view's "%-30s"

std::string padded(std::string text, size_t columns) {
  if (text.size() < columns) text.append(columns - text.size(), ' ');
  return text;
}

const char* state_word(const BlockPlan& plan, const ListedBlock& block) {
  if (plan.status_file.empty()) return server_state_name(ServerState::kUnknown);
  if (!block.status_line) return server_state_name(ServerState::kNotRunning);
  if (block.status_line->empty()) return server_state_name(ServerState::kUnknown);
  return server_state_name(state_of_status_line(*block.status_line, plan.config_file));
}

}  // namespace

std::vector<std::string> overview_lines(const std::vector<BlockPlan>& plans,
                                        const std::vector<ListedBlock>& blocks) {
  std::vector<std::string> lines;
  for (size_t i = 0; i < plans.size() && i < blocks.size(); ++i) {
    const BlockPlan& plan = plans[i];
    const ListedBlock& block = blocks[i];
    std::string line = padded(plan.title, kTitleColumns) + "  ";
    if (!block.listed) {
      const std::string& row = block.rows.empty() ? std::string() : block.rows.front();
      line += row.size() > kRowTitleColumns ? row.substr(kRowTitleColumns) : std::string();
    } else {
      line += padded(state_word(plan, block), 12) + "  " + std::to_string(block.waiting) + " waiting";
    }
    lines.push_back(std::move(line));
  }
  return lines;
}

}  // namespace px::views
