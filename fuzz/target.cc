#include "fuzz/target.h"

#include <cstdint>
#include <cstdlib>
#include <map>

#include "dmconfig/config_file.h"

namespace quarry::fuzz {

namespace {

std::map<std::string, std::size_t>& Seen() {
  static std::map<std::string, std::size_t> seen;
  return seen;
}

}  // namespace

void Demand(bool kept, const char* promise) {
  if (kept) return;
  std::cout << "broken: " << promise << std::endl;
  std::abort();
}

void Saw(const char* what) { ++Seen()[what]; }
std::size_t TimesSeen(const std::string& what) { return Seen()[what]; }

std::vector<std::string> Fields(const std::string& input, std::size_t count) {
  constexpr char kSeparator = '\x1f';
  std::vector<std::string> fields(1);
  for (const char c : input) {
    if (c == kSeparator && fields.size() < count) {
      fields.emplace_back();
    } else {
      fields.back() += c;
    }
  }
  fields.resize(count);
  return fields;
}

int Load(const std::string& text, storage::dmconfig::DMConfig* model) {
  std::istringstream in(text);
  return storage::dmconfig::DMConfigFile("", "").LoadConfig(&in, model);
}

std::string Dump(storage::dmconfig::DMConfig* model) {
  std::ostringstream out;
  Demand(storage::dmconfig::DMConfigFile("", "").DumpConfig(&out, model) == 0,
         "a model that was loaded is dumped");
  return out.str();
}

}  // namespace quarry::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quarry::fuzz::TryInput(std::string(data, data + size));
  return 0;
}
