// UnbufferedFile is a stream's buffer that writes to a file without keeping anything, for text that
// is flushed after every line. Text reaches it by std::ostream::write alone. Not installed.
#ifndef QUARRY_DMCONFIG_UNBUFFERED_FILE_H_
#define QUARRY_DMCONFIG_UNBUFFERED_FILE_H_

#include <streambuf>
#include <string>

namespace quarry::storage::dmconfig {

class UnbufferedFile : public std::streambuf {
 public:
  // Creates the file, or empties it, as std::ofstream does.
  explicit UnbufferedFile(const std::string& path);
  ~UnbufferedFile() override;
  UnbufferedFile(const UnbufferedFile&) = delete;
  UnbufferedFile& operator=(const UnbufferedFile&) = delete;

  bool is_open() const { return file_ != -1; }

 protected:
  // Returns how many bytes were written; fewer than `size` after a failure.
  std::streamsize xsputn(const char* text, std::streamsize size) override;

 private:
  const int file_;
};

}  // namespace quarry::storage::dmconfig

#endif  // QUARRY_DMCONFIG_UNBUFFERED_FILE_H_
