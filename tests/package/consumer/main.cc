// consumer FILE: an agent of the storage system, as another project writes it.

#include <iostream>
#include <memory>

#include "config/agent_config.h"
#include "dmconfig/config_file.h"
#include "dmconfig/status.h"

namespace dm = quarry::storage::dmconfig;

class Metab : public storage::utils::LibMetabInterface {
 public:
  cr_status_t GetRoutingTables(const std::string& url, const std::string& login,
                               const std::string& password, std::int32_t /*reserved*/,
                               const std::string& /*ssl_key_dir*/, const std::string& /*r_path*/,
                               const std::string& /*c_path*/) override {
    std::cout << login << ':' << password << " asks " << url << '\n';
    return 0;
  }
};

int main(int /*argc*/, char** argv) {
  dm::DMConfig model;
  if (dm::DMConfigFile(argv[1], "").LoadConfig(&model) != dm::kStatusOk) return 1;
  const auto metab = std::make_shared<Metab>();
  try {
    const storage::config::AgentCfg agent(metab, argv[1]);
    std::cout << "agent " << agent.numeric_option() << " of " << agent.config_path().filename()
              << '\n';
  } catch (const Cr_ErrnoException& error) {
    std::cout << error.what() << " (status " << error.status() << ")\n";
  }
}
