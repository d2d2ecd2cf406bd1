// AgentCfg is the configuration of the storage system's agent, loaded from its file by the
// constructor.
//
//   try {
//     storage::config::AgentCfg cfg(lib_metab, "/etc/quarry/agent.conf");
//     Connect(cfg.ledger_url(), cfg.cr_login(), cfg.cr_password());
//   } catch (const Cr_ErrnoException& error) {
//     std::cerr << error.what() << '\n';
//   }
//
// Construction loads the file, reads seven settings, decrypts the password and has the metabase
// service library fetch the routing tables. It completes or throws; there is no partially
// constructed object. The settings, with names in any letter case:
//
//   [CR] login             required
//   [CR] password          required; sealed with the key in the file "auth.key" in ...
//   [SSL] key_dir          required; ... this folder
//   [Ledger] url           required
//   [Metabase] url         required
//   [Control] address      required
//   [Agent] numeric_option a number; 10102 when it is absent
//
// An empty value counts as present. The names are those of the platform library
// (platform/config_names.h); another platform library may define others.
//
// Failures are Cr_ErrnoException (platform/cr_runtime.h), in the order in which they are detected:
//   status  message                                            detail
//   4       Unable to parse the agent config file: "PATH"      none
//   4       Unable to get the CR login from config file        none
//   4       Unable to get the CR password from config file     none
//   4       Unable to load SSL key dir from config file        none
//   4       Unable to load LEDGER url from config file         none
//   4       Unable to load metabase url from config file       none
//   4       Unable to load ctrl address from config file       none
//   4       Unable to decrypt password from config file        none
//   9       Lib Metab (ledgerd) weak_ptr has expired           none
//   any     Unable to get the routing tables from ledgerd      text of the status
// In PATH every '"' and '&' is preceded by '&'. std::bad_alloc and whatever the metabase service
// library throws pass through. Nothing is caught.
//
// Before the first of these the reader writes a line to std::cerr when the file cannot be opened
// and for some faults (dmconfig/config_file.h). It writes none for an option line without "=", for
// "[x" and "[]", nor for a folder: PATH is then all that an agent's log says. "quarry-config check
// PATH" shows the line of any fault.
//
// An AgentCfg is a value: it may be copied, moved, returned, and replaced by another one, as when
// an agent reloads its file:
//
//   cfg = storage::config::AgentCfg(lib_metab, path);  // when it throws, cfg is unchanged
//
// Secrets: the plain password is wiped from an object's memory when the object is destroyed, moved
// from, assigned to, or its construction fails, and from every buffer that these operations used;
// so is the stored form when the password replaces it. What cannot be wiped are copies made
// elsewhere: by the caller from cr_password(), by the metabase service library from its argument,
// by the platform library while it decrypts; and what the system saves of the processor's
// registers, as at a signal or when a function is bound at its first call (LD_BIND_NOW=1 prevents
// the latter).
//
// No exception contains the password in either form. The reader's message on std::cerr can: it
// quotes the line that it refuses when that line precedes every header, begins with "=" or has text
// after a header's "]", whatever the line holds. Where others can read a program's standard error,
// check the file before the start: "quarry-config check" masks what it recognises as a password.
//
// Threads: one thread may construct, assign to or move from an object; while nobody does, any
// number may read and copy it. Separate objects share nothing.
#ifndef QUARRY_CONFIG_AGENT_CONFIG_H_
#define QUARRY_CONFIG_AGENT_CONFIG_H_

#include <boost/filesystem/path.hpp>
#include <cstdint>
#include <memory>
#include <string>

#include "../dmconfig/config.h"
#include "../platform/export.h"
#include "../platform/lib_metab_interface.h"

namespace storage::config {

// An agent's configuration, described at the top of config/agent_config.h. The references that the
// accessors return are valid as long as the object.
class QUARRY_EXPORT AgentCfg {
 public:
  // Copies both arguments. The handle is promoted last, after all settings have been read, and held
  // during the request only: the object never keeps the metabase service library alive. The file is
  // read once and the path is used as it is.
  AgentCfg(std::weak_ptr<utils::LibMetabInterface> lib_metab,
           const boost::filesystem::path& config_path);
  ~AgentCfg();

  // Each copy has a password of its own, in memory of its own. std::bad_alloc passes through.
  AgentCfg(const AgentCfg& other);
  // Wipes the password that it replaces. On std::bad_alloc the object is unchanged.
  AgentCfg& operator=(const AgentCfg& other);
  // Leaves no password in `other`, whose other values are unspecified; it may be assigned to and
  // destroyed.
  AgentCfg(AgentCfg&& other) noexcept;
  // Wipes the password that it replaces, and leaves `other` as a move construction does.
  AgentCfg& operator=(AgentCfg&& other) noexcept;

  // `[Ledger] url`.
  const std::string& ledger_url() const { return ledger_url_; }
  // `[CR] login`.
  const std::string& cr_login() const { return cr_login_; }
  // `[CR] password`, in plain text.
  const std::string& cr_password() const { return cr_password_.text; }
  // `[SSL] key_dir`.
  const std::string& ssl_key_dir() const { return ssl_key_dir_; }
  // The path of the first routing table, which the metabase service library has written:
  // "/tmp/r.rt", for every agent on the machine.
  const std::string& routing_table_r_path() const { return routing_table_r_path_; }
  // The path of the second one: "/tmp/c.rt".
  const std::string& routing_table_c_path() const { return routing_table_c_path_; }
  // The file's path as passed to the constructor.
  const boost::filesystem::path& config_path() const { return config_path_; }
  // `[Metabase] url`.
  const std::string& metabase_url() const { return metabase_url_; }
  // The handle as passed to the constructor; it may have expired since.
  const std::weak_ptr<utils::LibMetabInterface>& lib_metab() const { return lib_metab_; }
  // `[Control] address`.
  const std::string& ctrl_address() const { return ctrl_address_; }
  // `[Agent] numeric_option`: the value's leading decimal number, 0 when there is none, truncated
  // to 32 bits.
  std::int32_t numeric_option() const { return numeric_option_; }

 private:
  // A string whose memory is wiped whenever its text goes away.
  struct Password {
    Password() = default;
    ~Password();
    Password(const Password&) = default;
    Password& operator=(const Password&) = delete;
    Password(Password&& other) noexcept;
    Password& operator=(Password&& other) noexcept;

    void Wipe();

    std::string text;
  };

  // Each completes or throws; called once, in this order.
  void LoadConfigOrDie(quarry::storage::dmconfig::DMConfig* config);
  void GetConfigValuesOrDie(quarry::storage::dmconfig::DMConfig* config);
  void GetRoutingTablesOrDie();

  void GetNumericOption(quarry::storage::dmconfig::DMConfig* config);
  void DecryptPasswordOrDie();

  std::string ledger_url_;
  std::string cr_login_;
  Password cr_password_;  // the stored form until it is decrypted
  std::string ssl_key_dir_;
  std::string routing_table_r_path_;
  std::string routing_table_c_path_;
  boost::filesystem::path config_path_;
  std::string metabase_url_;
  std::weak_ptr<utils::LibMetabInterface> lib_metab_;
  std::string ctrl_address_;
  std::int32_t numeric_option_ = 0;
};

}  // namespace storage::config

#endif  // QUARRY_CONFIG_AGENT_CONFIG_H_
