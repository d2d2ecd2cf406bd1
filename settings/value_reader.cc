#include "settings/value_reader.h"

#include <algorithm>
#include <charconv>
#include <list>
#include <map>
#include <set>
#include <system_error>
#include <utility>

#include "dmconfig/line.h"
#include "dmconfig/string_case_cmp.h"
#include "settings/error.h"
#include "settings/line_scanner.h"
#include "settings/suggestions.h"

namespace quarry::settings {

using storage::dmconfig::StringCaseCmp;
using storage::dmconfig::Trimmed;

namespace {

// Why a value is wrong, and what would be right. No text: it is not.
struct Fault {
  std::string text;
  std::string hint;
};

struct Unit {
  const char* name;
  std::uint64_t size;
};

constexpr std::uint64_t Power(std::uint64_t base, unsigned exponent) {
  std::uint64_t power = 1;
  for (; exponent > 0; --exponent) power *= base;
  return power;
}

constexpr std::uint64_t kKilo = 1000, kKibi = 1024;
constexpr Unit kByteUnits[] = {
    {"", 1},
    {"B", 1},
    {"kB", kKilo},
    {"MB", Power(kKilo, 2)},
    {"GB", Power(kKilo, 3)},
    {"TB", Power(kKilo, 4)},
    {"PB", Power(kKilo, 5)},
    {"EB", Power(kKilo, 6)},
    {"KiB", kKibi},
    {"MiB", Power(kKibi, 2)},
    {"GiB", Power(kKibi, 3)},
    {"TiB", Power(kKibi, 4)},
    {"PiB", Power(kKibi, 5)},
    {"EiB", Power(kKibi, 6)},
};

constexpr std::uint64_t kSecond = Power(kKilo, 3), kMinute = 60 * kSecond, kHour = 60 * kMinute;
constexpr Unit kTimeUnits[] = {
    {"ns", 1},        {"us", kKilo}, {"ms", Power(kKilo, 2)}, {"s", kSecond},
    {"min", kMinute}, {"h", kHour},  {"d", 24 * kHour},
};

struct BooleanWord {
  const char* word;
  bool value;
};
constexpr BooleanWord kBooleanWords[] = {{"true", true}, {"false", false}, {"yes", true},
                                         {"no", false},  {"on", true},     {"off", false},
                                         {"1", true},    {"0", false}};

// Names end at a NUL, values do not.
bool IsWord(std::string_view value, std::string_view word) {
  return value.size() == word.size() && SameName(value, word);
}

Fault ParseBoolean(std::string_view value, bool* result) {
  for (const BooleanWord& one : kBooleanWords) {
    if (!IsWord(value, one.word)) continue;
    *result = one.value;
    return {};
  }
  return {"the value is not a boolean", "write true or false, yes or no, on or off, 1 or 0"};
}

// Reads the whole number at the begin of `*text` and removes it from there.
template <typename Number>
std::errc TakeNumber(std::string_view* text, Number* number) {
  const char* const end = text->data() + text->size();
  const auto [rest, error] = std::from_chars(text->data(), end, *number);
  text->remove_prefix(static_cast<std::size_t>(rest - text->data()));
  return error;
}

Fault ParseInteger(std::string_view value, Bounds bounds, std::int64_t* result) {
  const std::string hint =
      "write a number from " + std::to_string(bounds.min) + " to " + std::to_string(bounds.max);
  const std::errc error = TakeNumber(&value, result);
  if (error == std::errc::invalid_argument || !value.empty()) {
    return {"the value is not a whole number", hint};
  }
  if (error != std::errc() || *result < bounds.min || *result > bounds.max) {
    return {"the number is out of range", hint};
  }
  return {};
}

// A number without a sign and one of the units; 0 needs none.
template <std::size_t count>
Fault ParseQuantity(std::string_view value, const Unit (&units)[count], std::uint64_t max,
                    const Fault& malformed, const std::string& too_large, std::uint64_t* result) {
  std::uint64_t number = 0;
  const std::errc error = TakeNumber(&value, &number);
  if (error == std::errc::invalid_argument) return malformed;
  const std::string_view name = Trimmed(value);
  const auto* const unit = std::find_if(std::begin(units), std::end(units),
                                        [&](const Unit& one) { return IsWord(name, one.name); });
  const bool is_zero = error == std::errc() && number == 0 && name.empty();
  if (unit == std::end(units) && !is_zero) return malformed;
  if (is_zero) {
    *result = 0;
    return {};
  }
  if (error != std::errc() || number > max / unit->size) return {too_large, malformed.hint};
  *result = number * unit->size;
  return {};
}

Fault ParseBytes(std::string_view value, std::uint64_t* result) {
  return ParseQuantity(value, kByteUnits, std::numeric_limits<std::uint64_t>::max(),
                       {"the value is not a number of bytes",
                        "write a whole number, with a unit such as kB, MB, GB, KiB, MiB or GiB if "
                        "it is not of bytes"},
                       "the number of bytes is too large", result);
}

Fault ParseDuration(std::string_view value, std::chrono::nanoseconds* result) {
  std::uint64_t nanoseconds = 0;
  Fault fault = ParseQuantity(
      value, kTimeUnits, static_cast<std::uint64_t>(std::chrono::nanoseconds::max().count()),
      {"the value is not a duration", "write a whole number and one of ns, us, ms, s, min, h, d"},
      "the duration is too long", &nanoseconds);
  *result = std::chrono::nanoseconds(nanoseconds);
  return fault;
}

std::string_view WithoutBlanks(std::string_view text) {
  const std::string_view trimmed = Trimmed(text);
  return trimmed.find_first_not_of(" \t") == std::string_view::npos ? trimmed.substr(0, 0)
                                                                    : trimmed;
}

Fault ParseList(std::string_view value, std::vector<std::string_view>* result) {
  if (WithoutBlanks(value).empty()) return {};
  for (;;) {
    const std::size_t comma = value.find(',');
    const std::string_view part = WithoutBlanks(value.substr(0, comma));
    if (part.empty()) return {"a part of the list is empty", "write one comma between two parts"};
    result->push_back(part);
    if (comma == std::string_view::npos) return {};
    value.remove_prefix(comma + 1);
  }
}

// A carriage return at the end of a value is a part of it, and the reason why it is wrong.
void NameCarriageReturn(std::string_view value, Fault* fault) {
  if (value.empty() || value.back() != '\r') return;
  fault->text += ": it ends in a carriage return";
  fault->hint = "end lines in line feeds alone, as sed -i 's/\\r$//' does";
}

constexpr char kRuleValue[] = "value";
constexpr char kRuleAbsent[] = "setting-absent";
constexpr char kRuleUnknown[] = "unknown-setting";

// Where each line begins.
std::vector<const char*> LinesOf(const std::string& text) {
  std::vector<const char*> lines = {text.data()};
  for (const char& c : text) {
    if (c == '\n') lines.push_back(&c + 1);
  }
  return lines;
}

std::string NameOf(std::string_view section, std::string_view option) {
  return "option " + Quoted(option) + " in section " + Quoted(section);
}

// "did you mean "a"?", or nothing.
std::string HintFor(std::string_view wanted, const std::list<std::string>& names) {
  const auto near = SuggestNames(std::string(wanted), names);
  return near.empty() ? "" : "did you mean " + Quoted(near.front()) + "?";
}

}  // namespace

class ValueReader::State {
 public:
  explicit State(Snapshot snapshot) : snapshot_(std::move(snapshot)) {}

  // Null when the option is absent; adds a problem then if `is_required`.
  const Option* Find(std::string_view section, std::string_view option, bool is_required);

  // Reads the option with `parse(value, &result)`.
  template <typename Value, typename Parse>
  Value Read(std::string_view section, std::string_view option, std::optional<Value> fallback,
             Parse parse);

  void Refuse(std::string_view section, std::string_view option, Fault fault);
  void ReportUnknownOptions();

  const std::vector<Problem>& problems() const { return problems_; }

 private:
  using Names = std::set<std::string, StringCaseCmp>;

  void AddAbsent(std::string_view section, std::string_view option);
  void AddWrong(Problem problem, Fault fault);
  void AddUnknown(const Section& section, const Option& option, const Names& known);
  // `part` is a view into the text.
  Problem ProblemAt(std::string_view part);
  // At the section's header; about no line when it is null.
  Problem ProblemAt(const Section* section);

  const Snapshot snapshot_;
  std::vector<Problem> problems_;
  std::map<std::string, Names, StringCaseCmp> read_;  // options by sections
  std::vector<const char*> lines_;                    // where they begin; empty before a problem
};

template <typename Value, typename Parse>
Value ValueReader::State::Read(std::string_view section, std::string_view option,
                               std::optional<Value> fallback, Parse parse) {
  const Option* const found = Find(section, option, !fallback.has_value());
  Value value{};
  if (found != nullptr) {
    Fault fault = parse(found->value, &value);
    if (fault.text.empty()) return value;
    NameCarriageReturn(found->value, &fault);
    AddWrong(ProblemAt(found->value), std::move(fault));
  }
  return fallback ? *std::move(fallback) : Value{};
}

void ValueReader::State::Refuse(std::string_view section, std::string_view option, Fault fault) {
  const Option* const found = Find(section, option, false);
  AddWrong(found == nullptr ? ProblemAt(snapshot_.FindSection(section)) : ProblemAt(found->value),
           std::move(fault));
}

void ValueReader::State::ReportUnknownOptions() {
  for (const auto& [name, known] : read_) {
    const Section* const section = snapshot_.FindSection(name);
    if (section == nullptr) continue;
    for (const Option& option : section->options) {
      if (known.count(std::string(option.name)) == 0) AddUnknown(*section, option, known);
    }
  }
}

const Option* ValueReader::State::Find(std::string_view section, std::string_view option,
                                       bool is_required) {
  read_[std::string(section)].emplace(option);
  const Option* const found = snapshot_.Find(section, option);
  if (found == nullptr && is_required) AddAbsent(section, option);
  return found;
}

void ValueReader::State::AddAbsent(std::string_view section, std::string_view option) {
  const Section* const found = snapshot_.FindSection(section);
  std::list<std::string> names;
  if (found == nullptr) {
    for (const Section& other : snapshot_.sections()) names.emplace_back(other.name);
  } else {
    for (const Option& other : found->options) names.emplace_back(other.name);
  }
  Problem problem = ProblemAt(found);
  problem.rule = kRuleAbsent;
  problem.text = "there is no " + NameOf(section, option);
  problem.hint = HintFor(found == nullptr ? section : option, names);
  if (problem.hint.empty()) {
    problem.hint =
        "add \"" + std::string(option) + " = ...\" to section [" + std::string(section) + ']';
  }
  problems_.push_back(std::move(problem));
}

void ValueReader::State::AddWrong(Problem problem, Fault fault) {
  problem.rule = kRuleValue;
  problem.text = std::move(fault.text);
  problem.hint = std::move(fault.hint);
  problems_.push_back(std::move(problem));
}

void ValueReader::State::AddUnknown(const Section& section, const Option& option,
                                    const Names& known) {
  Problem problem = ProblemAt(option.name);
  problem.rule = kRuleUnknown;
  problem.text = NameOf(section.name, option.name) + " is not known";
  problem.hint = HintFor(option.name, {known.begin(), known.end()});
  problem.is_warning = true;
  problems_.push_back(std::move(problem));
}

Problem ValueReader::State::ProblemAt(const Section* section) {
  if (section != nullptr) return ProblemAt(section->name);
  Problem problem;
  problem.file = snapshot_.name();
  return problem;
}

Problem ValueReader::State::ProblemAt(std::string_view part) {
  if (lines_.empty()) lines_ = LinesOf(snapshot_.text());
  const auto line = std::prev(std::upper_bound(lines_.begin(), lines_.end(), part.data()));
  Problem problem;
  problem.file = snapshot_.name();
  problem.line = static_cast<std::size_t>(line - lines_.begin()) + 1;
  problem.column = static_cast<std::size_t>(part.data() - *line) + 1;
  problem.length = part.size();
  return problem;
}

ValueReader::ValueReader(Snapshot snapshot)
    : state_(std::make_unique<State>(std::move(snapshot))) {}

ValueReader::ValueReader(ValueReader&& other) noexcept = default;
ValueReader& ValueReader::operator=(ValueReader&& other) noexcept = default;
ValueReader::~ValueReader() = default;

std::string_view ValueReader::Text(std::string_view section, std::string_view option,
                                   std::optional<std::string_view> fallback) {
  const Option* const found = state_->Find(section, option, !fallback.has_value());
  return found != nullptr ? found->value : fallback.value_or(std::string_view());
}

bool ValueReader::Boolean(std::string_view section, std::string_view option,
                          std::optional<bool> fallback) {
  return state_->Read(section, option, fallback, ParseBoolean);
}

std::int64_t ValueReader::Integer(std::string_view section, std::string_view option,
                                  std::optional<std::int64_t> fallback, Bounds bounds) {
  return state_->Read(section, option, fallback,
                      [bounds](std::string_view value, std::int64_t* result) {
                        return ParseInteger(value, bounds, result);
                      });
}

std::uint64_t ValueReader::Bytes(std::string_view section, std::string_view option,
                                 std::optional<std::uint64_t> fallback) {
  return state_->Read(section, option, fallback, ParseBytes);
}

std::chrono::nanoseconds ValueReader::Duration(std::string_view section, std::string_view option,
                                               std::optional<std::chrono::nanoseconds> fallback) {
  return state_->Read(section, option, fallback, ParseDuration);
}

std::vector<std::string_view> ValueReader::List(
    std::string_view section, std::string_view option,
    std::optional<std::vector<std::string_view>> fallback) {
  return state_->Read(section, option, std::move(fallback), ParseList);
}

void ValueReader::Refuse(std::string_view section, std::string_view option, std::string text,
                         std::string hint) {
  state_->Refuse(section, option, {std::move(text), std::move(hint)});
}

void ValueReader::ReportUnknownOptions() { state_->ReportUnknownOptions(); }

const std::vector<Problem>& ValueReader::problems() const noexcept { return state_->problems(); }

}  // namespace quarry::settings
