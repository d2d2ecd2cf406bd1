# quarry_warnings: the warnings of our own targets; users do not inherit them. The presets turn them
# into errors.
add_library(quarry_warnings INTERFACE)
target_compile_options(quarry_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow
  -Wold-style-cast -Wcast-align -Wnon-virtual-dtor -Woverloaded-virtual)
