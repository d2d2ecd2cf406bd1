#include "dmconfig/config_file.h"

#include <forward_list>
#include <iostream>
#include <list>
#include <string_view>
#include <vector>

#include "dmconfig/heap_pages.h"
#include "dmconfig/line.h"
#include "dmconfig/line_source.h"
#include "dmconfig/option_store.h"
#include "dmconfig/status.h"
#include "dmconfig/unbuffered_file.h"

namespace quarry::storage::dmconfig {

namespace {

// The message written before the refused line; null when nothing is written.
const char* DiagnosticFor(LineFault fault) {
  switch (fault) {
    case LineFault::kTextAfterHeader:
      return "Found invalid line: ";
    case LineFault::kNoSection:
      return "Found an invalid line: ";
    case LineFault::kOptionNameEmpty:
      return "Found an invalid key: ";
    default:
      return nullptr;
  }
}

int Refuse(LineFault fault, std::string_view line) {
  if (const char* message = DiagnosticFor(fault)) {
    // Copied first, because std::cerr may write to the buffer that holds the line.
    const std::string text(line);
    std::cerr << message << text << std::endl;
  }
  return kStatusInvalidLine;
}

int ReportUnopened(const std::string& input_file) {
  std::cerr << "Failed to open input file:" << input_file << std::endl;
  return kStatusStreamFailed;
}

// Reads one text into one model.
class TextReader {
 public:
  explicit TextReader(DMConfig* config) : config_(config) {}

  template <typename Lines>
  int ReadAll(Lines* lines);

 private:
  // What the heap needs beside the texts, roughly.
  static constexpr std::size_t kOptionSize = 160;
  static constexpr std::size_t kSectionSize = 256;

  int ReadLine(std::string_view raw);
  int ReadComment(std::string_view line);
  int ReadHeader(std::string_view line);
  int ReadOption(std::string_view line);

  DMConfig* const config_;
  SectionOptionMap* section_ = nullptr;  // the current one; null before any
  HeapPages pages_;
  std::string pending_comment_;
  std::string name_;  // of the current line; a member so that its memory is reused
};

template <typename Lines>
int TextReader::ReadAll(Lines* lines) {
  std::string_view line;
  while (!lines->AtEnd()) {
    if (!lines->Next(&line)) return kStatusStreamFailed;
    const int status = ReadLine(line);
    if (status != kStatusOk) return status;
  }
  return kStatusOk;
}

int TextReader::ReadLine(std::string_view raw) {
  const std::string_view line = WithoutLeadingBlanks(raw);
  switch (KindOf(line)) {
    case LineKind::kBlank:
      return kStatusOk;
    case LineKind::kComment:
      return ReadComment(line);
    case LineKind::kHeader:
      return ReadHeader(line);
    case LineKind::kOption:
      return ReadOption(line);
  }
  return kStatusOk;
}

int TextReader::ReadComment(std::string_view line) {
  pending_comment_ += '\n';
  pending_comment_ += line;
  return kStatusOk;
}

int TextReader::ReadHeader(std::string_view line) {
  const HeaderLine header = ParseHeader(line);
  if (header.fault != LineFault::kNone) return Refuse(header.fault, line);

  name_ = header.name;
  pages_.Use(kSectionSize + pending_comment_.size());
  section_ = config_->GetOptionMap(name_);
  if (section_ == nullptr) return kStatusOutOfMemory;
  section_->comment = std::string(pending_comment_);  // no longer than needed
  pending_comment_.clear();
  return kStatusOk;
}

int TextReader::ReadOption(std::string_view line) {
  const OptionLine option = ParseOption(line, section_ != nullptr);
  if (option.fault != LineFault::kNone) return Refuse(option.fault, line);

  pages_.Use(kOptionSize + line.size() + pending_comment_.size());
  OptionValue* const present =
      AddOption(section_, std::string(option.name), option.value, pending_comment_);
  if (present != nullptr && pending_comment_.empty()) {
    present->value = option.value;
  } else if (present != nullptr) {
    StoreValueAndComment(present, option.value, pending_comment_);
  }
  pending_comment_.clear();
  return kStatusOk;
}

using Records = std::vector<const SectionOptionMap*>;

// Returns the records in the order of their sections' creation.
Records InOrder(const std::forward_list<SectionOptionMap>& latest_first, std::size_t count) {
  Records records(count);
  auto next = records.rbegin();
  for (const SectionOptionMap& record : latest_first) *next++ = &record;
  return records;
}

// Writes one model to one stream, or into one text.
class TextWriter {
 public:
  // The names of the sections, and their records in the same order. Each line goes from the text to
  // the stream; without one all lines stay.
  TextWriter(const std::list<std::string>& names, const Records& records, std::string* text,
             std::ostream* out)
      : names_(names), records_(records), text_(text), out_(out) {}

  int WriteAll();

 private:
  int WriteSection(const std::string& name, const SectionOptionMap& record);
  int WriteOptions(const SectionOptionMap& record);
  void WriteComment(const std::string& comment);
  void WriteLine();

  bool HasFailed() const { return out_ != nullptr && out_->fail(); }

  const std::list<std::string>& names_;
  const Records& records_;
  std::string* const text_;
  std::ostream* const out_;  // may be null
};

int TextWriter::WriteAll() {
  int status = kStatusOk;
  auto name = names_.begin();
  for (const SectionOptionMap* const record : records_) {
    if (name->empty()) {
      std::cerr << "Failed to get option list for section: " << *name << std::endl;
      return kStatusInvalidArgument;
    }
    const int section_status = WriteSection(*name++, *record);
    if (status == kStatusOk) status = section_status;
    if (HasFailed()) return kStatusStreamFailed;
  }
  return status;
}

int TextWriter::WriteSection(const std::string& name, const SectionOptionMap& record) {
  WriteComment(record.comment);
  *text_ += '[';
  *text_ += name;
  *text_ += ']';
  WriteLine();
  return WriteOptions(record);
}

int TextWriter::WriteOptions(const SectionOptionMap& record) {
  for (const auto& [name, stored] : record.option_map) {
    if (HasFailed()) return kStatusStreamFailed;
    if (name.empty()) {
      std::cerr << "Failed to get value for option: " << name << std::endl;
      return kStatusInvalidArgument;
    }
    WriteComment(stored.comment);
    *text_ += name;
    *text_ += '=';
    *text_ += stored.value;
    WriteLine();
  }
  return kStatusOk;
}

// Only the first character counts; later lines of a comment may lack a "#" or ";".
void TextWriter::WriteComment(const std::string& comment) {
  if (comment.empty()) return;
  if (KindOf(comment) != LineKind::kComment) *text_ += '#';
  *text_ += comment;
  WriteLine();
}

// Terminates the text and writes it to the stream line by line, flushing each.
void TextWriter::WriteLine() {
  *text_ += '\n';
  if (out_ == nullptr) return;
  for (std::string_view rest = *text_; !rest.empty();) {
    const std::size_t size = rest.find('\n') + 1;
    out_->write(rest.data(), static_cast<std::streamsize>(size)).flush();
    rest.remove_prefix(size);
  }
  text_->clear();
}

// Returns at least the size of the text that will be written: the texts, with "#" and a line feed
// for each comment, "[", "]" and a line feed for each section, "=" and a line feed for each option.
std::size_t SizeBound(const std::list<std::string>& names, const Records& records) {
  std::size_t size = 0;
  for (const std::string& name : names) size += name.size() + 3;
  for (const SectionOptionMap* const record : records) {
    size += record->comment.size() + 2;
    for (const auto& [name, stored] : record->option_map) {
      size += stored.comment.size() + 2 + name.size() + stored.value.size() + 2;
    }
  }
  return size;
}

}  // namespace

DMConfigFile::DMConfigFile(const std::string& input_file, const std::string& output_file)
    : input_file_(input_file), output_file_(output_file) {}

DMConfigFile::~DMConfigFile() = default;

int DMConfigFile::LoadConfig(DMConfig* config) {
  if (input_file_.empty() || config == nullptr) return kStatusInvalidArgument;
  config->Reset();
  FileLines lines(input_file_);
  if (!lines.IsOpen()) return ReportUnopened(input_file_);
  return TextReader(config).ReadAll(&lines);
}

int DMConfigFile::LoadConfig(std::istream* in, DMConfig* config) {
  if (in == nullptr || config == nullptr) return kStatusInvalidArgument;
  config->Reset();
  if (in->rdstate() != std::ios_base::goodbit) return ReportUnopened(input_file_);
  StreamLines lines(in);
  return TextReader(config).ReadAll(&lines);
}

int DMConfigFile::LoadText(std::string_view text, DMConfig* config) {
  if (config == nullptr) return kStatusInvalidArgument;
  config->Reset();
  TextLines lines(text);
  return TextReader(config).ReadAll(&lines);
}

int DMConfigFile::DumpConfig(DMConfig* model) {
  if (output_file_.empty() || model == nullptr) return kStatusInvalidArgument;
  UnbufferedFile buffer(output_file_);
  std::ostream file(&buffer);
  if (!buffer.is_open()) file.setstate(std::ios_base::failbit);
  return DumpConfig(&file, model);
}

int DMConfigFile::DumpConfig(std::ostream* out, DMConfig* model) {
  if (out == nullptr || model == nullptr) return kStatusInvalidArgument;
  if (out->rdstate() != std::ios_base::goodbit) {
    std::cerr << "Failed to open file: " << output_file_ << std::endl;
    return kStatusStreamFailed;
  }
  std::string line;
  const std::list<std::string>& names = model->section_list_;
  const Records records = InOrder(model->records_, names.size());
  const int status = TextWriter(names, records, &line, out).WriteAll();
  if (out->fail()) {
    std::cerr << "Failed to write file: " << output_file_ << std::endl;
    return kStatusStreamFailed;
  }
  return status;
}

int DMConfigFile::DumpText(DMConfig* model, std::string* text) {
  if (model == nullptr || text == nullptr) return kStatusInvalidArgument;
  text->clear();
  const std::list<std::string>& names = model->section_list_;
  const Records records = InOrder(model->records_, names.size());
  text->reserve(SizeBound(names, records));
  return TextWriter(names, records, text, nullptr).WriteAll();
}

}  // namespace quarry::storage::dmconfig
