// Typed values of a snapshot's options, with a problem for every one that is wrong.
#ifndef QUARRY_SETTINGS_VALUE_READER_H_
#define QUARRY_SETTINGS_VALUE_READER_H_

#include <chrono>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "../platform/export.h"
#include "problem.h"
#include "snapshot.h"

namespace quarry::settings {

// What a number may be.
struct Bounds {
  std::int64_t min = std::numeric_limits<std::int64_t>::min();  // the least
  std::int64_t max = std::numeric_limits<std::int64_t>::max();  // the greatest
};

// Reads values one after the other and collects what is wrong with them, so that a program can
// report everything at once and start only when there is nothing:
//
//   ValueReader reader(snapshot);
//   const auto threads = reader.Integer("Server", "threads", 4, {1, 1024});
//   const auto timeout = reader.Duration("Server", "timeout", 30s);
//   const auto url = reader.Text("Ledger", "url");  // required
//   if (timeout < 1s) reader.Refuse("Server", "timeout", "the timeout is too short");
//   reader.ReportUnknownOptions();
//   for (const Problem& problem : reader.problems()) ...  // warnings among them may be accepted
//
// Each operation returns the value of the option. When it is absent: the fallback, or, without one,
// an empty value and a problem that names the section, the option and the nearest name. When the
// value is wrong: the fallback or an empty value, and a problem at the value that says what would
// be right. An empty value is 0, false, or without text or parts, so a check of it with Refuse may
// add a second problem about the same option.
//
// No problem quotes a value, which may be secret. The rules of problems are "setting-absent",
// "value" and "unknown-setting". Throws std::bad_alloc. One thread at a time may use a reader.
class QUARRY_EXPORT ValueReader {
 public:
  // Reads this snapshot.
  explicit ValueReader(Snapshot snapshot);
  // Leaves `other` so that it can only be assigned to and destroyed.
  ValueReader(ValueReader&& other) noexcept;
  // The same.
  ValueReader& operator=(ValueReader&& other) noexcept;
  ~ValueReader();

  // The value as it is; it may be empty. The view lives as long as any copy of the snapshot, or is
  // the fallback.
  std::string_view Text(std::string_view section, std::string_view option,
                        std::optional<std::string_view> fallback = {});

  // "true", "yes", "on" and "1", or "false", "no", "off" and "0", in any letter case.
  bool Boolean(std::string_view section, std::string_view option,
               std::optional<bool> fallback = {});

  // A decimal number, with a "-" before it or no sign, within the bounds.
  std::int64_t Integer(std::string_view section, std::string_view option,
                       std::optional<std::int64_t> fallback = {}, Bounds bounds = {});

  // A number of bytes without a sign: "4096", or with a unit, with or without blanks before it:
  // "B"; "kB", "MB", "GB", "TB", "PB", "EB", powers of 1000; "KiB", "MiB", "GiB", "TiB", "PiB",
  // "EiB", powers of 1024; in any letter case.
  std::uint64_t Bytes(std::string_view section, std::string_view option,
                      std::optional<std::uint64_t> fallback = {});

  // A duration without a sign: a whole number and a unit, with or without blanks between them:
  // "ns", "us", "ms", "s", "min", "h", "d"; "0" needs no unit.
  std::chrono::nanoseconds Duration(std::string_view section, std::string_view option,
                                    std::optional<std::chrono::nanoseconds> fallback = {});

  // The parts of the value between commas, without blanks at their ends; none of an empty value. An
  // empty part between commas is wrong. The views live as long as any copy of the snapshot, or are
  // the fallback's. An empty fallback is std::vector<std::string_view>(): {} is none.
  std::vector<std::string_view> List(std::string_view section, std::string_view option,
                                     std::optional<std::vector<std::string_view>> fallback = {});

  // Adds a problem of the caller's own checks, at the option's value, or about the section when the
  // option is absent.
  void Refuse(std::string_view section, std::string_view option, std::string text,
              std::string hint = "");

  // Adds a warning for every option that was not read so far, of the sections from which one was,
  // with the nearest name that was read. So call it last, once. Sections from which none was read,
  // such as one whose name is misspelled, are not reported.
  void ReportUnknownOptions();

  // What was found so far, in the order of the calls.
  const std::vector<Problem>& problems() const noexcept;

 private:
  class State;

  std::unique_ptr<State> state_;
};

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_VALUE_READER_H_
