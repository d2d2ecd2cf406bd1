#include "fuzz/target.h"

#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <set>

#include "dmconfig/config_file.h"

namespace quarry::fuzz {

using storage::dmconfig::DMConfig;
using storage::dmconfig::DMConfigFile;

static std::set<std::string> seen;  // NOLINT(cert-err58-cpp)

void Require(bool holds, const char* property) {
  if (holds) return;
  std::cout << "broken: " << property << std::endl;
  std::abort();
}

void Saw(const char* what) { seen.insert(what); }
bool HasSeen(const std::string& what) { return seen.count(what) > 0; }

std::vector<std::string> Fields(const std::string& input, std::size_t count) {
  std::vector<std::string> fields(count);
  std::istringstream in(input);
  for (std::size_t i = 0; i + 1 < count; ++i) std::getline(in, fields[i], '\x1f');
  fields.back().assign(std::istreambuf_iterator<char>(in), {});
  return fields;
}

int Load(const std::string& text, DMConfig* model) { return DMConfigFile::LoadText(text, model); }

std::string Dump(DMConfig* model) {
  std::ostringstream out;
  std::string text;
  Require(DMConfigFile("", "").DumpConfig(&out, model) == 0, "a model that was loaded is dumped");
  Require(DMConfigFile::DumpText(model, &text) == 0, "and so into a text");
  Require(text == out.str(), "which is what the stream gets");
  return text;
}

}  // namespace quarry::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quarry::fuzz::TryInput(std::string(data, data + size));
  return 0;
}
