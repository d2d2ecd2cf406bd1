// The reader does with any text what the grammar says, however a stream hands it out: status,
// message, model, position and state of the stream are those of the reference reader; and the same
// with the text in memory.
#include "dmconfig/config_file.h"
#include "fuzz/reference_reader.h"
#include "fuzz/target.h"

namespace quarry::fuzz {

using storage::dmconfig::DMConfig;
using storage::dmconfig::DMConfigFile;

// What `load` does with a model that is not empty is what the grammar says.
template <typename Load>
static void TryLoad(const Reading& expected, Load load) {
  const CerrCapture cerr;
  DMConfig model;
  model.SetOptionValue("left", "over", "from before");
  Require(load(&model) == expected.status, "the status is the grammar's");
  Require(cerr.text() == expected.message, "the message is the grammar's");
  Require(SectionsOf(&model) == expected.sections, "the model is the grammar's");
}

// The first byte says how much of the text one of the streams makes available at a time.
void TryInput(const std::string& input) {
  if (input.empty()) return;
  const std::string text = input.substr(1);
  const Reading expected = ReadText(text);
  const bool silent = expected.message.empty();
  Saw(expected.status == 0 ? "loaded" : silent ? "refused silently" : "refused with a message");

  TryLoad(expected, [&](auto* model) { return DMConfigFile::LoadText(text, model); });
  const std::size_t some = static_cast<unsigned char>(input[0]) % 64U + 1U;
  for (const std::size_t chunk : {some, text.size() + 1U}) {
    ChunkBuffer buffer(text, chunk);
    std::istream in(&buffer);
    TryLoad(expected, [&](auto* model) { return DMConfigFile("name", "").LoadConfig(&in, model); });
    Require(in.eof() == expected.end_seen, "the end is seen as by getline");
    Require(in.fail() == expected.nothing_got, "the stream fails as by getline");

    in.clear();
    const std::string rest(std::istreambuf_iterator<char>(in), {});
    Require(rest == text.substr(expected.consumed), "nothing is read beyond the line");
  }
}

}  // namespace quarry::fuzz
