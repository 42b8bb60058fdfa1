#include "findings.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>

namespace qz::tools {
namespace {

constexpr int kToldOfAKind = 3;

std::string message(const Finding& finding) {
  std::string text = finding.file + ":" + std::to_string(finding.place) + ": " +
                     std::string(severityName(finding.rule->severity)) + ": ";
  if (!finding.element.empty()) text += finding.element + ": ";
  if (!finding.call.empty()) text += "made by " + finding.call + ": ";
  text += finding.cause;
  if (!finding.rule->effect.empty()) text += ": " + std::string(finding.rule->effect);
  return text + "; " + std::string(finding.rule->advice) + " [" + std::string(finding.rule->id) +
         "]\n";
}

}  // namespace

std::string_view severityName(Severity severity) {
  constexpr std::string_view kNames[] = {"error", "warning", "performance", "remark"};
  return kNames[static_cast<std::size_t>(severity)];
}

void Findings::add(const Rule& rule, std::size_t place, std::string cause, std::string element) {
  if (cause.empty()) cause = rule.cause;
  all_.push_back({&rule, file_, place, std::move(element), {}, std::move(cause)});
}

void Findings::nameCalls(const std::string& recording, const std::map<std::string, int>& lines) {
  for (Finding& each : all_)
    for (std::string path = each.element; !path.empty(); path.erase(path.rfind('/')))
      if (const auto found = lines.find(path); found != lines.end()) {
        each.call = recording + ":" + std::to_string(found->second);
        break;
      }
}

void Findings::prepare(const Telling& telling) {
  std::erase_if(all_, [&](const Finding& each) {
    return telling.disabled.contains(std::string(each.rule->id)) ||
           (each.rule->severity == Severity::kRemark && !telling.all);
  });
  std::stable_sort(all_.begin(), all_.end(),
                   [](const Finding& a, const Finding& b) { return a.place < b.place; });
}

bool Findings::hasErrors() const {
  return std::any_of(all_.begin(), all_.end(),
                     [](const Finding& each) { return each.rule->severity == Severity::kError; });
}

std::string Findings::text(const Telling& telling) const {
  std::map<const Rule*, int> total, told;
  for (const Finding& each : all_) ++total[each.rule];
  std::string text;
  for (const Finding& each : all_) {
    const int count = ++told[each.rule];
    if (!telling.all && count > kToldOfAKind) continue;
    text += message(each);
    if (!telling.all && count == kToldOfAKind && total[each.rule] > count)
      text += file_ + ": and " + std::to_string(total[each.rule] - count) + " more [" +
              std::string(each.rule->id) + "]\n";
  }
  return text;
}

nlohmann::json Findings::json() const {
  nlohmann::json list = nlohmann::json::array();
  for (const Finding& each : all_) {
    nlohmann::json finding = {{"file", each.file},
                              {each.element.empty() ? "line" : "offset", each.place},
                              {"severity", severityName(each.rule->severity)},
                              {"id", each.rule->id},
                              {"cause", each.cause},
                              {"effect", each.rule->effect},
                              {"advice", each.rule->advice}};
    if (!each.element.empty()) finding["element"] = each.element;
    if (!each.call.empty()) finding["call"] = each.call;
    list.push_back(std::move(finding));
  }
  return list;
}

std::string rulesTable() {
  std::string table = "| Rule | The page has | What happens | What to do |\n|---|---|---|---|\n";
  for (const Rule& each : kRules) {
    table += "| `" + std::string(each.id) + "`, " + std::string(severityName(each.severity)) +
             (each.places == "D"   ? ", documents"
              : each.places == "R" ? ", recordings"
                                   : "") +
             " | " + std::string(each.cause) + " | " + std::string(each.effect) + " | ";
    for (const char c : each.advice) table += c == '<' ? "&lt;" : std::string(1, c);
    table += " |\n";
  }
  return table;
}

}  // namespace qz::tools
