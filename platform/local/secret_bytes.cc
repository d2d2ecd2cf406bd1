#include "platform/local/secret_bytes.h"

#include <sodium.h>

namespace quarry::platform {

SecretBytes::SecretBytes(std::size_t size)
    : data_(sodium_init() < 0 ? nullptr : static_cast<unsigned char*>(sodium_malloc(size))),
      size_(size) {}

SecretBytes::~SecretBytes() { sodium_free(data_); }

}  // namespace quarry::platform
