// The metabase service library of the command "agent".
#ifndef QUARRY_TOOLS_COMMANDS_TRIAL_METAB_H_
#define QUARRY_TOOLS_COMMANDS_TRIAL_METAB_H_

#include <cstddef>
#include <string>
#include <vector>

#include "platform/lib_metab_interface.h"

namespace quarry::tool {

// Fetches routing tables as LocalMetab does, and describes them. Unless they are to be placed, it
// fetches them into a private folder in /tmp, which it removes again, and leaves the paths that a
// start passes alone.
class TrialMetab : public ::storage::utils::LibMetabInterface {
 public:
  struct Table {
    std::size_t bytes;
    std::string sha256;  // in hexadecimal digits
  };

  explicit TrialMetab(bool places_tables) : places_tables_(places_tables) {}

  // Returns the statuses of LocalMetab. Throws settings::Error when there can be no private folder.
  cr_status_t GetRoutingTables(const std::string& ledger_url, const std::string& cr_login,
                               const std::string& cr_password, std::int32_t reserved,
                               const std::string& ssl_key_dir, const std::string& r_path,
                               const std::string& c_path) override;

  // Those of `r_path` and `c_path`, once they were fetched.
  const std::vector<Table>& tables() const { return tables_; }

 private:
  const bool places_tables_;
  std::vector<Table> tables_;
};

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_COMMANDS_TRIAL_METAB_H_
