// The names of the agent's settings. They are stored in two string tables, one of section names and
// one of option names; a name is identified by the offset, in bytes, at which it starts in its
// table, and is NUL-terminated. libquarry_platform.so defines the tables with the names shown after
// the offsets; a storage system's own library may define other names at the same offsets.
#ifndef QUARRY_PLATFORM_CONFIG_NAMES_H_
#define QUARRY_PLATFORM_CONFIG_NAMES_H_

#include <cstddef>

#include "export.h"

extern "C" {
// The string table of section names.
QUARRY_EXPORT extern const char _dct_config_section_string_table_[];
// The string table of option names.
QUARRY_EXPORT extern const char _dct_config_entry_string_table_[];
}

namespace storage::config {

inline constexpr std::size_t kSectionAgent = 0;       // "Agent"
inline constexpr std::size_t kSectionMetabase = 144;  // "Metabase"
inline constexpr std::size_t kSectionSsl = 165;       // "SSL"
inline constexpr std::size_t kSectionLedger = 206;    // "Ledger"
inline constexpr std::size_t kSectionCr = 252;        // "CR"
inline constexpr std::size_t kSectionControl = 323;   // "Control"

inline constexpr std::size_t kEntryLogin = 392;          // "login"
inline constexpr std::size_t kEntryPassword = 617;       // "password"
inline constexpr std::size_t kEntryNumericOption = 695;  // "numeric_option"
inline constexpr std::size_t kEntryUrl = 1322;           // "url"
inline constexpr std::size_t kEntryKeyDir = 1503;        // "key_dir"
inline constexpr std::size_t kEntryAddress = 2777;       // "address"

// Returns the section name at `offset`, NUL-terminated. It is never freed.
inline const char* SectionName(std::size_t offset) {
  return _dct_config_section_string_table_ + offset;
}

// Returns the option name at `offset`, NUL-terminated. It is never freed.
inline const char* EntryName(std::size_t offset) {
  return _dct_config_entry_string_table_ + offset;
}

}  // namespace storage::config

#endif  // QUARRY_PLATFORM_CONFIG_NAMES_H_
