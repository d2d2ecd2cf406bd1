// Edits a temporary copy of a text in the user's editor.
#ifndef QUARRY_TOOLS_TERMINAL_EDITOR_H_
#define QUARRY_TOOLS_TERMINAL_EDITOR_H_

#include <string>

namespace quarry::tool {

// A copy of a text, readable by the user alone, in a folder of its own. It may hold the user's
// work, so it stays until it is discarded.
class EditorCopy {
 public:
  // `name` is that of the copy; editors choose their mode by it. Throws settings::Error.
  EditorCopy(const std::string& name, const std::string& text);
  EditorCopy(const EditorCopy&) = delete;
  EditorCopy& operator=(const EditorCopy&) = delete;

  // Runs $VISUAL, $EDITOR or vi on the copy and waits for its end; false when the editor fails.
  // Throws settings::Error. A signal that ends this program takes effect when the editor has ended;
  // a message says then where the copy is.
  bool Edit() const;

  std::string Read() const;

  // Removes the copy and its folder.
  void Discard();
  bool is_discarded() const { return discarded_; }

  const std::string& path() const { return path_; }

 private:
  std::string folder_;
  std::string path_;
  bool discarded_ = false;
};

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_TERMINAL_EDITOR_H_
