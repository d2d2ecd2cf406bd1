// Promise: the reader does with any text what the grammar says, however the
// stream hands it out: status, message, model, position and state of the stream
// are those of the second reader.
#include "dmconfig/config_file.h"
#include "fuzz/second_reader.h"
#include "fuzz/target.h"

namespace quarry::fuzz {

namespace {

void ReadAndCompare(std::istream* in, const std::string& text, const Reading& wanted) {
  CerrCapture cerr;
  storage::dmconfig::DMConfig model;
  model.SetOptionValue("left", "over", "from before");
  const int status = storage::dmconfig::DMConfigFile("name", "").LoadConfig(in, &model);
  Demand(status == wanted.status, "the status is the grammar's");
  Demand(cerr.text() == wanted.message, "the message is the grammar's");
  Demand(SectionsOf(&model) == wanted.sections, "the model is the grammar's");
  Demand(in->eof() == wanted.end_seen, "the end is seen as by getline");
  Demand(in->fail() == wanted.nothing_got, "the stream fails as by getline");

  in->clear();
  const std::string rest(std::istreambuf_iterator<char>(*in), {});
  Demand(rest == text.substr(wanted.consumed), "nothing is read beyond the line");
}

}  // namespace

// The first byte says how much of the text the stream shows at a time.
void TryInput(const std::string& input) {
  if (input.empty()) return;
  const std::string text = input.substr(1);
  const Reading wanted = ReadText(text);
  Saw(wanted.status == 0       ? "loaded"
      : wanted.message.empty() ? "refused silently"
                               : "refused with a message");

  std::istringstream whole(text);
  ReadAndCompare(&whole, text, wanted);

  ChunkBuffer buffer(text, static_cast<unsigned char>(input[0]) % 64U + 1U);
  std::istream chunks(&buffer);
  ReadAndCompare(&chunks, text, wanted);

  std::ostringstream tied;
  std::istringstream line_by_line(text);
  line_by_line.tie(&tied);
  ReadAndCompare(&line_by_line, text, wanted);
}

}  // namespace quarry::fuzz
