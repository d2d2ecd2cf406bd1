#include "platform/config_names.h"

#include <string_view>

// The bytes between the names are reserved for settings that an agent start does not use; here they
// are NUL.
#define NUL_1 "\0"
#define NUL_4 NUL_1 NUL_1 NUL_1 NUL_1
#define NUL_16 NUL_4 NUL_4 NUL_4 NUL_4
#define NUL_64 NUL_16 NUL_16 NUL_16 NUL_16
#define NUL_256 NUL_64 NUL_64 NUL_64 NUL_64

extern "C" {

// clang-format off
constexpr char _dct_config_section_string_table_[] =
    "Agent"
    NUL_64 NUL_64 NUL_4 NUL_4 NUL_1 NUL_1 NUL_1
    "Metabase"
    NUL_4 NUL_4 NUL_4 NUL_1
    "SSL"
    NUL_16 NUL_16 NUL_4 NUL_1 NUL_1
    "Ledger"
    NUL_16 NUL_16 NUL_4 NUL_4
    "CR"
    NUL_64 NUL_4 NUL_1
    "Control";

constexpr char _dct_config_entry_string_table_[] =
    NUL_256 NUL_64 NUL_64 NUL_4 NUL_4
    "login"
    NUL_64 NUL_64 NUL_64 NUL_16 NUL_4 NUL_4 NUL_4
    "password"
    NUL_64 NUL_4 NUL_1 NUL_1
    "numeric_option"
    NUL_256 NUL_256 NUL_64 NUL_16 NUL_16 NUL_4 NUL_1
    "url"
    NUL_64 NUL_64 NUL_16 NUL_16 NUL_16 NUL_1 NUL_1
    "key_dir"
    NUL_256 NUL_256 NUL_256 NUL_256 NUL_64 NUL_64 NUL_64 NUL_16 NUL_16 NUL_16 NUL_1 NUL_1 NUL_1
    "address";
// clang-format on

}  // extern "C"

namespace storage::config {

namespace {

// Whether the table has `name` at `offset`, at its start or directly after a NUL.
template <std::size_t size>
constexpr bool StartsAt(const char (&table)[size], std::size_t offset, std::string_view name) {
  return offset + name.size() < size && (offset == 0 || table[offset - 1] == '\0') &&
         std::string_view(table + offset) == name;
}

static_assert(StartsAt(_dct_config_section_string_table_, kSectionAgent, "Agent"));
static_assert(StartsAt(_dct_config_section_string_table_, kSectionMetabase, "Metabase"));
static_assert(StartsAt(_dct_config_section_string_table_, kSectionSsl, "SSL"));
static_assert(StartsAt(_dct_config_section_string_table_, kSectionLedger, "Ledger"));
static_assert(StartsAt(_dct_config_section_string_table_, kSectionCr, "CR"));
static_assert(StartsAt(_dct_config_section_string_table_, kSectionControl, "Control"));

static_assert(StartsAt(_dct_config_entry_string_table_, kEntryLogin, "login"));
static_assert(StartsAt(_dct_config_entry_string_table_, kEntryPassword, "password"));
static_assert(StartsAt(_dct_config_entry_string_table_, kEntryNumericOption, "numeric_option"));
static_assert(StartsAt(_dct_config_entry_string_table_, kEntryUrl, "url"));
static_assert(StartsAt(_dct_config_entry_string_table_, kEntryKeyDir, "key_dir"));
static_assert(StartsAt(_dct_config_entry_string_table_, kEntryAddress, "address"));

// Login and password are two options of one section; the two URLs are one option name in two
// sections.
static_assert(kEntryLogin != kEntryPassword);
static_assert(kSectionLedger != kSectionMetabase);

}  // namespace

}  // namespace storage::config
