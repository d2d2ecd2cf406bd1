#include "settings/renames.h"

#include <cstddef>

#include "settings/line_scanner.h"

namespace quarry::settings {

using storage::dmconfig::LineKind;

namespace {

// Adds the change of `name`, which is a view into the line, unless it is spelled so already.
void AddRename(const ScannedLine& line, std::string_view name, const std::string& new_name,
               TextEdit* edit) {
  if (name == new_name) return;
  const auto begin = static_cast<std::size_t>(name.data() - line.raw.data());
  std::string renamed(line.raw);
  renamed.replace(begin, name.size(), new_name);
  edit->push_back({line.number, 1, {std::move(renamed)}});
}

}  // namespace

TextEdit RenameSection(std::string_view text, const std::string& section,
                       const std::string& new_name) {
  TextEdit edit;
  LineScanner scanner(text);
  for (ScannedLine line; scanner.Next(&line);) {
    if (line.kind != LineKind::kHeader) continue;
    if (SameName(section, line.header.name)) {
      AddRename(line, line.header.name, new_name, &edit);
    }
  }
  return edit;
}

TextEdit RenameOption(std::string_view text, const std::string& section, const std::string& option,
                      const std::string& new_name) {
  TextEdit edit;
  bool in_section = false;
  LineScanner scanner(text);
  for (ScannedLine line; scanner.Next(&line);) {
    if (line.kind == LineKind::kHeader) {
      in_section = SameName(section, line.header.name);
    }
    if (line.kind == LineKind::kOption && in_section && SameName(option, line.option.name)) {
      AddRename(line, line.option.name, new_name, &edit);
    }
  }
  return edit;
}

}  // namespace quarry::settings
