// The reader does with any text what the grammar says, however the stream hands it out: status,
// message, model, position and state of the stream are those of the reference reader.
#include "dmconfig/config_file.h"
#include "fuzz/reference_reader.h"
#include "fuzz/target.h"

namespace quarry::fuzz {

// The first byte says how much of the text one of the streams makes available at a time.
void TryInput(const std::string& input) {
  if (input.empty()) return;
  const std::string text = input.substr(1);
  const Reading expected = ReadText(text);
  const bool silent = expected.message.empty();
  Saw(expected.status == 0 ? "loaded" : silent ? "refused silently" : "refused with a message");

  const std::size_t some = static_cast<unsigned char>(input[0]) % 64U + 1U;
  for (const std::size_t chunk : {some, text.size() + 1U}) {
    ChunkBuffer buffer(text, chunk);
    std::istream in(&buffer);
    const CerrCapture cerr;
    storage::dmconfig::DMConfig model;
    model.SetOptionValue("left", "over", "from before");
    const int status = storage::dmconfig::DMConfigFile("name", "").LoadConfig(&in, &model);
    Require(status == expected.status, "the status is the grammar's");
    Require(cerr.text() == expected.message, "the message is the grammar's");
    Require(SectionsOf(&model) == expected.sections, "the model is the grammar's");
    Require(in.eof() == expected.end_seen, "the end is seen as by getline");
    Require(in.fail() == expected.nothing_got, "the stream fails as by getline");

    in.clear();
    const std::string rest(std::istreambuf_iterator<char>(in), {});
    Require(rest == text.substr(expected.consumed), "nothing is read beyond the line");
  }
}

}  // namespace quarry::fuzz
