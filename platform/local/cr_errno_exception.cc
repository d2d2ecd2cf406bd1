#include <string>

#include "platform/cr_runtime.h"

struct Cr_ErrnoException::Texts {
  Texts(const char* message_text, const char* detail_text)
      : message(message_text == nullptr ? "" : message_text),
        detail(detail_text == nullptr ? "" : detail_text),
        has_message(message_text != nullptr),
        has_detail(detail_text != nullptr),
        what(has_message && has_detail ? message + ": " + detail : message + detail) {}

  const std::string message, detail;
  const bool has_message, has_detail;
  const std::string what;
};

Cr_ErrnoException::Cr_ErrnoException(cr_status_t status, const char* message, const char* detail)
    : status_(status), texts_(std::make_shared<const Texts>(message, detail)) {}

Cr_ErrnoException::Cr_ErrnoException(cr_status_t status, const std::stringstream& message,
                                     const char* detail)
    : Cr_ErrnoException(status, message.str().c_str(), detail) {}

Cr_ErrnoException::Cr_ErrnoException(const Cr_ErrnoException&) noexcept = default;
Cr_ErrnoException& Cr_ErrnoException::operator=(const Cr_ErrnoException&) noexcept = default;
Cr_ErrnoException::~Cr_ErrnoException() = default;

cr_status_t Cr_ErrnoException::status() const noexcept { return status_; }

const char* Cr_ErrnoException::message() const noexcept {
  return texts_->has_message ? texts_->message.c_str() : nullptr;
}

const char* Cr_ErrnoException::detail() const noexcept {
  return texts_->has_detail ? texts_->detail.c_str() : nullptr;
}

const char* Cr_ErrnoException::what() const noexcept { return texts_->what.c_str(); }
