// DMConfigFile reads configuration text into a DMConfig (dmconfig/config.h) and writes it.
//
//   DMConfig model;
//   DMConfigFile file("/etc/quarry/agent.conf", "");
//   const int status = file.LoadConfig(&model);
//   if (status != kStatusOk) return status;
//
// The text is a sequence of lines that end in a line feed (optional on the last one). Leading
// spaces, tabs and carriage returns of a line are ignored.
//
//   # comment        a whole line that begins with "#" or ";". A run of them,
//                    blank lines allowed between, belongs to the header or
//                    option line that follows, or to nothing at the text's end
//   [section]        the name is everything up to the first "]", whitespace
//                    included; only spaces, tabs and carriage returns may
//                    follow. A name seen before, in any case of letters,
//                    continues that section, and its comment is replaced, by
//                    none when none precedes
//   name = value     split at the first "="; spaces and tabs around both parts
//                    are removed, but a value of nothing else is kept whole. A
//                    name seen before in the section sets that option again and
//                    keeps its comment unless a new one precedes
//
// There are no trailing comments, quotes, escapes or continuation lines: all these characters
// belong to the value. So does a carriage return at the end of an option line. Any other byte is
// stored as it is; lines may be of any length.
//
// Reading stops at the first line that is none of these.
//
// Written text has the sections in order of creation and their options in order of names, as
// "[section]" and "name=value" without added whitespace or blank lines. A comment is above what it
// belongs to; "#" is put in front of one whose first character is neither "#" nor ";", so one that
// was read (it begins with a line feed) gains the line "#" at its top, again with every load and
// dump. Removing that line feed before the dump prevents it (docs/library.md).
//
// Texts are written as they are: one with a line feed adds lines, and so options and sections of
// its choice. The caller must refuse what would not read back unchanged, from users above all:
//   section name  a line feed, "]"
//   option name   a line feed, "="; one of "[", "#", ";" or a carriage return at
//                 the start; a space or tab at either end
//   value         a line feed; a space or tab at either end, unless all are
//   comment       a line that begins with neither "#" nor ";". Any other reads
//                 back with a line feed in front
#ifndef QUARRY_DMCONFIG_CONFIG_FILE_H_
#define QUARRY_DMCONFIG_CONFIG_FILE_H_

#include <iosfwd>
#include <string>
#include <string_view>

#include "../platform/export.h"
#include "config.h"

namespace quarry::storage::dmconfig {

// Keeps two file names and nothing else, so one object serves any number of loads. Threads may load
// through one object at the same time, each into a model of its own; their lines on std::cerr may
// interleave.
class QUARRY_EXPORT DMConfigFile {
 public:
  // Copies both names. Either may be empty; the operations that need it then return -1.
  DMConfigFile(const std::string& input_file, const std::string& output_file);
  ~DMConfigFile();
  // Copies the other's names.
  DMConfigFile(const DMConfigFile&) = default;
  // Replaces its names with copies of the other's.
  DMConfigFile& operator=(const DMConfigFile&) = default;

  // Reads the file named `input_file` into `*config`, which is emptied first. The file is open
  // during the call only; a pipe will do. Returns what the second form returns, -4 when the file
  // cannot be opened, and -1 also when the name is empty (the model is unchanged then). Memory that
  // runs out for a line that one call of read(2) did not bring whole is -4, too.
  [[nodiscard]] int LoadConfig(DMConfig* config);

  // Reads `*in`, from its current position to its end, into `*config`, which is emptied first. Both
  // are borrowed; the stream's own code must not use the model meanwhile. Returns (names in
  // dmconfig/status.h)
  //    0  the whole text was read
  //   -1  a null pointer; the model is unchanged
  //   -2  an invalid line. The model holds what the lines before it stored, and
  //       the stream is positioned at the line after it
  //   -4  the stream was not good() at the start (the model is empty), or it
  //       failed before its end (the model holds the lines read until then).
  //       Memory that runs out inside std::getline, for a line that is not
  //       entirely in the stream's buffer, is such a failure: it sets badbit
  //   -5  memory ran out while a section was being created; the model holds
  //       what the lines before stored
  // The stream is left, flags included, as reading line by line with std::getline leaves it.
  //
  // Some failures also write one line to std::cerr, each message followed by the text that it is
  // about, a line without its leading spaces, tabs and carriage returns:
  //   "Failed to open input file:"  and the input file's name, for -4 at the
  //                                 start
  //   "Found invalid line: "        text after a section header
  //   "Found an invalid line: "     an option line before any section
  //   "Found an invalid key: "      a line that begins with "="
  // The others write nothing: the other causes of -2 ("[" without "]", "[]", an option line without
  // "="), a stream that fails before its end (a folder can be opened, but not read), -1, -5. So
  // report the status and the file's name; "quarry-config check FILE" shows the line.
  //
  // Throws only what the stream (when its exception mask is set) or an allocation throws; the model
  // then holds what was stored before.
  [[nodiscard]] int LoadConfig(std::istream* in, DMConfig* config);

  // Reads a text in memory, which is borrowed and not copied, into `*config`, which is emptied
  // first; so the text must not be one that the model holds. Returns and reports what reading it
  // from a stream does, but -4 never; throws what an allocation throws.
  [[nodiscard]] static int LoadText(std::string_view text, DMConfig* config);

  // Writes the model to the file named `output_file`, which is truncated or created. Returns what
  // the second form returns, -4 when the file cannot be opened, and -1 also when the name is empty;
  // for an empty file name or a null pointer no file is touched. The file is overwritten in place:
  // where it must never be half written, write to another one and rename that.
  [[nodiscard]] int DumpConfig(DMConfig* model);

  // Writes the model to `*out` at its current position, and flushes after every line. Both are
  // borrowed; the model is not changed. A model that has many lines is written faster in one piece,
  // as DumpText makes it. Returns
  //    0  everything was written
  //   -1  a null pointer; nothing is written
  //   -4  the stream was not good() at the start, and nothing is written, or it
  //       failed meanwhile, and writing stopped there
  //   -1  a section or option name is empty (such names come only by way of
  //       GetOptionMap). At such a section writing stops; at such an option the
  //       rest of its section is left out, and the status is returned at the end
  //
  // Every failure except a null pointer or an empty file name also writes one line to std::cerr,
  // each message followed by the name that it is about:
  //   "Failed to open file: "                        the output file's name
  //   "Failed to write file: "                       the output file's name
  //   "Failed to get option list for section: "      the section's
  //   "Failed to get value for option: "             the option's
  //
  // Throws only what the stream (when its exception mask is set) or an allocation throws.
  [[nodiscard]] int DumpConfig(std::ostream* out, DMConfig* model);

  // Replaces `*text` by what would be written to a stream. Both are borrowed; the model is not
  // changed. Returns and reports what writing to a stream does, but -4 never; throws what an
  // allocation throws, and `*text` is then empty.
  [[nodiscard]] static int DumpText(DMConfig* model, std::string* text);

 private:
  std::string input_file_;
  std::string output_file_;
};

}  // namespace quarry::storage::dmconfig

#endif  // QUARRY_DMCONFIG_CONFIG_FILE_H_
