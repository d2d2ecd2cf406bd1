#include "benchmarks/programs.h"

#include <memory>

#include "config/agent_config.h"
#include "config/client_config.h"
#include "platform/cr_runtime.h"
#include "platform/lib_metab_interface.h"

// Replaces the function of the platform library.
extern "C" int DecryptPasswdWithKey(const char* /*key_file*/, const char* /*stored*/, char* out,
                                    std::size_t capacity) {
  out[std::string("password").copy(out, capacity - 1)] = '\0';
  return 0;
}

namespace quarry::benchmarks {

namespace {

class ImmediateMetab : public ::storage::utils::LibMetabInterface {
 public:
  cr_status_t GetRoutingTables(const std::string& /*ledger_url*/, const std::string& /*cr_login*/,
                               const std::string& /*cr_password*/, std::int32_t /*reserved*/,
                               const std::string& /*ssl_key_dir*/, const std::string& /*r_path*/,
                               const std::string& /*c_path*/) override {
    return 0;
  }
};

}  // namespace

const char kAgentText[] =
    "[CR]\nlogin = agent-st-07\npassword = sealed:v1:AAAA\n[SSL]\n"
    "key_dir = /etc/quarry/keys\n[Ledger]\nurl = file:///srv/quarry/ledger\n"
    "[Metabase]\nurl = https://proxy.hall-b.example:7501/\n[Control]\n"
    "address = 192.0.2.17:9600\n[Agent]\nnumeric_option = 10107\n[lynx]\n"
    "ingest_mode = on\n";

std::size_t StartAgent(const std::string& path) {
  static const auto kMetab = std::make_shared<ImmediateMetab>();
  const ::storage::config::AgentCfg cfg(kMetab, path);
  return cfg.cr_password().size();
}

int SetClient(const std::string& text) {
  ::storage::config::ClientCfg cfg;
  return cfg.SetCfg(text);
}

}  // namespace quarry::benchmarks
